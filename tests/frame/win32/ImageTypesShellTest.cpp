// The portable extension rename against the shell's own PathRenameExtensionW.
#include "ImageTypes.h"

#include <shlwapi.h>

#include <gtest/gtest.h>

#include <string>

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
}

}  // namespace
