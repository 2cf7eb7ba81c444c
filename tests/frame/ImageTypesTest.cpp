#include "ImageTypes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

namespace {

// A path in a buffer of the size every tool uses, so in-place edits are checked for room.
struct PathBuffer {
    explicit PathBuffer(const std::wstring& text) {
        std::fill(std::begin(chars), std::end(chars), L'#');
        std::wmemcpy(chars, text.c_str(), std::min(text.size() + 1, lx::kPathChars));
    }
    std::wstring str() const { return chars; }
    wchar_t chars[lx::kPathChars];
};

TEST(ImageTypeFromPath, FollowsTheTableWithoutRegardToCase) {
    const struct {
        const wchar_t* path;
        int type;
    } cases[] = {
        {L"C:\\photos\\IMG_0001.JPE", 2}, {L"scan.Xjg", 10}, {L"P1000.rw2", 37}, {L"still.jp2", 24},
        {L"a.TIFF", 4}, {L"a.pgm", 17}, {L"a.RGB", 14}, {L"a.3fr", 39}, {L"a.sr2", 32}, {L"a.cr2", 26},
        {nullptr, 0}, {L"README", 0}, {L"", 0}, {L"photo.", 0},
        {L"photo.jpg.bak", 0},     // only the last dot counts
        {L"photo.jpgx", 0},        // whole extension, not a prefix
        {L"photo.jp", 0},          // nor a prefix of one
        {L"C:\\a.jpg\\file", 0},
        {L"a.\u00cdCO", 0},        // non-ASCII letters are not folded
    };
    for (const auto& c : cases) EXPECT_EQ(lx::ImageTypeFromPath(c.path), c.type) << (c.path ? c.path : L"null");
}

TEST(MayCarryExif, OnlyJpegTiffAndRawKinds) {
    std::vector<int> carriers;
    for (int type = -2; type <= 45; ++type) {
        if (lx::MayCarryExif(type)) carriers.push_back(type);
    }
    std::vector<int> expected = {2, 4};
    for (int raw = 26; raw <= 39; ++raw) expected.push_back(raw);
    EXPECT_EQ(carriers, expected);
}

TEST(ForceSaveExtension, KeepsTheTargetTypesExtensionAndReplacesAnyOther) {
    const struct {
        const wchar_t* path;
        int target;
        const wchar_t* result;  // null: refused, the path left as it is
    } cases[] = {
        {L"C:\\work\\scan.dib", 1, L"C:\\work\\scan.dib"},
        {L"C:\\work\\photo.JPEG", 2, L"C:\\work\\photo.JPEG"},
        {L"C:\\work\\photo.png", 2, L"C:\\work\\photo.jpg"},
        {L"C:\\work.d\\photo", 10, L"C:\\work.d\\photo.png"},
        {L"C:\\work\\photo.jpg.bak", 2, L"C:\\work\\photo.jpg.jpg"},
        {L"a.tif", 24, L"a.jp2"},
        {L"C:\\work\\photo.bmp", 17, L"C:\\work\\photo.ppm"},  // PNM outputs are named .ppm,
        {L"photo.pnm", 17, L"photo.pnm"},                        // but .pnm already is type 17
        // 9 (Sun raster) and 14 (SGI) are save-filter rows without a forced extension.
        {L"photo.png", 9, nullptr}, {L"photo.png", 14, nullptr}, {L"photo.png", 0, nullptr},
        {L"photo.png", 7, nullptr}, {L"photo.png", 22, nullptr}, {L"photo.png", 26, nullptr},
        {L"photo.png", -1, nullptr}, {L"photo.png", 1000, nullptr},
    };
    for (const auto& c : cases) {
        PathBuffer path(c.path);
        EXPECT_EQ(lx::ForceSaveExtension(path.chars, c.target), c.result != nullptr) << c.path << " " << c.target;
        EXPECT_EQ(path.str(), c.result ? c.result : c.path) << c.target;
    }
}

TEST(ForceSaveExtension, LeavesAPathTooLongForTheShellRename) {
    // 505 characters: fits the 520-character buffer, not the classic 260-character limit.
    const std::wstring longPath = L"C:\\" + std::wstring(498, L'n') + L".png";
    PathBuffer path(longPath);
    EXPECT_TRUE(lx::ForceSaveExtension(path.chars, 2));
    EXPECT_EQ(path.str(), longPath);
    EXPECT_EQ(path.chars[longPath.size() + 1], L'#');  // nothing written past the terminator

    // A dot in the buffer's last usable place: a new extension would run past the buffer.
    const std::wstring full = L"C:\\" + std::wstring(514, L'n') + L".";
    ASSERT_EQ(full.size(), lx::kPathChars - 2);
    PathBuffer edge(full);
    EXPECT_TRUE(lx::ForceSaveExtension(edge.chars, 2));
    EXPECT_EQ(edge.str(), full);
}

TEST(SaveTables, EndWithTheSentinelInDisplayOrder) {
    std::vector<int> formats;
    for (const lx::SaveFormat* f = lx::kSaveFormats; f->id != -1; ++f) formats.push_back(f->id);
    EXPECT_EQ(formats, (std::vector<int>{2, 1, 3, 4, 5, 6, 23, 10, 17, 24}));
    EXPECT_STREQ(lx::kSaveFormats[0].shortName, L"JPEG");
    EXPECT_STREQ(lx::kSaveFormats[9].shortName, L"JPEG2000");
    EXPECT_STREQ(lx::kSaveFormats[9].longName, L"JPEG-2000 ISO/IEC 15444-1");
    EXPECT_STREQ(lx::kSaveFormats[8].longName, L"Portable aNy Map");

    std::vector<int> filters;
    for (const lx::SaveFilterType* f = lx::kSaveFilterTypes; f->id != -1; ++f) filters.push_back(f->id);
    EXPECT_EQ(filters, (std::vector<int>{2, 1, 3, 10, 4, 23, 5, 9, 6, 17, 24, 14}));
    EXPECT_STREQ(lx::kSaveFilterTypes[9].extension, L".pnm");
}

TEST(SaveTables, EveryOfferedFormatCanNameItsOutput) {
    // The conversion dialog relies on each of its formats forcing an extension.
    for (const lx::SaveFormat* f = lx::kSaveFormats; f->id != -1; ++f) {
        PathBuffer path(L"out.xyz");
        EXPECT_TRUE(lx::ForceSaveExtension(path.chars, f->id)) << f->id;
        EXPECT_EQ(lx::ImageTypeFromPath(path.chars), f->id) << f->id;
    }
}

TEST(SaveTables, FilterIndexLooksUpOnlyInsideTheTable) {
    ASSERT_NE(lx::SaveFilterTypeAt(0), nullptr);
    EXPECT_EQ(lx::SaveFilterTypeAt(0)->id, 2);
    ASSERT_NE(lx::SaveFilterTypeAt(11), nullptr);
    EXPECT_EQ(lx::SaveFilterTypeAt(11)->id, 14);
    EXPECT_EQ(lx::SaveFilterTypeAt(12), nullptr);
    EXPECT_EQ(lx::SaveFilterTypeAt(-1), nullptr);
}

}  // namespace
