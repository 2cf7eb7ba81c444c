// The image type tables against what only Windows has: the shell's own
// PathRenameExtensionW and the module's string table.
#include "ImageTypes.h"

#include "ModuleResources.h"

#include <shlwapi.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(RenamePathExtension, AgreesWithTheShell) {
    const std::wstring cases[] = {
        L"C:\\photos\\a.png",
        L"C:\\photos\\a",
        L"C:\\my.photos\\a",
        L"C:\\photos\\a.b c",
        L"C:\\photos\\a.jpg.bak",
        L"a.",
        L".hidden",
        L"",
        L"C:\\" + std::wstring(251, L'x') + L".png",  // dot at 254: ".jpg" still fits
        L"C:\\" + std::wstring(252, L'x') + L".png",  // dot at 255
        L"C:\\" + std::wstring(253, L'x') + L".png",  // dot at 256: refused
        L"C:\\" + std::wstring(400, L'x') + L".png",
    };
    for (const std::wstring& text : cases) {
        wchar_t ours[lx::kPathChars] = {};
        wchar_t shell[lx::kPathChars] = {};
        lstrcpynW(ours, text.c_str(), lx::kPathChars);
        lstrcpynW(shell, text.c_str(), lx::kPathChars);
        const bool ourResult = lx::RenamePathExtension(ours, L".jpg");
        const bool shellResult = PathRenameExtensionW(shell, L".jpg") != FALSE;
        EXPECT_EQ(ourResult, shellResult) << text.size() << " " << std::string(text.begin(), text.begin() + std::min<size_t>(text.size(), 40));
        EXPECT_STREQ(ours, shell);
    }
    EXPECT_FALSE(lx::RenamePathExtension(nullptr, L".jpg"));
}

// The save dialog's filter index selects a row of the filter-type table, so the table and
// the "save as any format" list must stay in step, row for row.
TEST(SaveFilterTypes, MatchTheSaveFilterList) {
    const std::wstring list = lx::LoadResString(4094);
    std::vector<std::wstring> pieces;
    size_t start = 0;
    for (size_t bar = list.find(L'|'); bar != std::wstring::npos; bar = list.find(L'|', start)) {
        pieces.push_back(list.substr(start, bar - start));
        start = bar + 1;
    }
    ASSERT_GE(pieces.size(), 2u);
    ASSERT_TRUE(pieces.back().empty());  // the list ends with "||"
    pieces.pop_back();
    ASSERT_EQ(pieces.size() % 2, 0u);

    size_t rows = 0;
    while (lx::kSaveFilterTypes[rows].id != -1) ++rows;
    ASSERT_EQ(pieces.size() / 2, rows);
    for (size_t i = 0; i < rows; ++i) {
        const std::wstring& pattern = pieces[2 * i + 1];
        const std::wstring extension = lx::kSaveFilterTypes[i].extension;
        if (lx::kSaveFilterTypes[i].id == 17) {
            EXPECT_EQ(pattern, L"*.ppm");  // the list shows .ppm, the table keeps .pnm
            continue;
        }
        EXPECT_EQ(pattern.substr(1, extension.size()), extension) << i;
        EXPECT_EQ(lx::ImageTypeFromPath((L"x" + extension).c_str()), lx::kSaveFilterTypes[i].id) << i;
    }
}

}  // namespace
