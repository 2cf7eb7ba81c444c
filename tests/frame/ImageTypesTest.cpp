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
    EXPECT_EQ(lx::ImageTypeFromPath(L"C:\\photos\\IMG_0001.JPE"), 2);
    EXPECT_EQ(lx::ImageTypeFromPath(L"scan.Xjg"), 10);
    EXPECT_EQ(lx::ImageTypeFromPath(L"P1000.rw2"), 37);
    EXPECT_EQ(lx::ImageTypeFromPath(L"still.jp2"), 24);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.TIFF"), 4);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.pgm"), 17);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.RGB"), 14);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.3fr"), 39);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.sr2"), 32);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.cr2"), 26);
}

TEST(ImageTypeFromPath, GivesUnknownForNoUsableExtension) {
    EXPECT_EQ(lx::ImageTypeFromPath(nullptr), 0);
    EXPECT_EQ(lx::ImageTypeFromPath(L"README"), 0);
    EXPECT_EQ(lx::ImageTypeFromPath(L""), 0);
    EXPECT_EQ(lx::ImageTypeFromPath(L"photo."), 0);
    EXPECT_EQ(lx::ImageTypeFromPath(L"photo.jpg.bak"), 0);   // only the last dot counts
    EXPECT_EQ(lx::ImageTypeFromPath(L"photo.jpgx"), 0);      // whole extension, not a prefix
    EXPECT_EQ(lx::ImageTypeFromPath(L"photo.jp"), 0);        // nor a prefix of one
    EXPECT_EQ(lx::ImageTypeFromPath(L"C:\\a.jpg\\file"), 0);
    EXPECT_EQ(lx::ImageTypeFromPath(L"a.\u00cdCO"), 0);      // non-ASCII letters are not folded
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

TEST(ForceSaveExtension, KeepsAPathThatAlreadyHasTheTargetType) {
    PathBuffer dib(L"C:\\work\\scan.dib");
    EXPECT_TRUE(lx::ForceSaveExtension(dib.chars, 1));
    EXPECT_EQ(dib.str(), L"C:\\work\\scan.dib");

    PathBuffer jpeg(L"C:\\work\\photo.JPEG");
    EXPECT_TRUE(lx::ForceSaveExtension(jpeg.chars, 2));
    EXPECT_EQ(jpeg.str(), L"C:\\work\\photo.JPEG");
}

TEST(ForceSaveExtension, ReplacesAnotherTypesExtension) {
    PathBuffer png(L"C:\\work\\photo.png");
    EXPECT_TRUE(lx::ForceSaveExtension(png.chars, 2));
    EXPECT_EQ(png.str(), L"C:\\work\\photo.jpg");

    PathBuffer bare(L"C:\\work.d\\photo");
    EXPECT_TRUE(lx::ForceSaveExtension(bare.chars, 10));
    EXPECT_EQ(bare.str(), L"C:\\work.d\\photo.png");

    PathBuffer twoDots(L"C:\\work\\photo.jpg.bak");
    EXPECT_TRUE(lx::ForceSaveExtension(twoDots.chars, 2));
    EXPECT_EQ(twoDots.str(), L"C:\\work\\photo.jpg.jpg");

    PathBuffer jpeg2000(L"a.tif");
    EXPECT_TRUE(lx::ForceSaveExtension(jpeg2000.chars, 24));
    EXPECT_EQ(jpeg2000.str(), L"a.jp2");
}

TEST(ForceSaveExtension, NamesPnmOutputsPpm) {
    PathBuffer bmp(L"C:\\work\\photo.bmp");
    EXPECT_TRUE(lx::ForceSaveExtension(bmp.chars, 17));
    EXPECT_EQ(bmp.str(), L"C:\\work\\photo.ppm");
    // .pnm already is type 17 and stays, although a fresh name would get .ppm.
    PathBuffer pnm(L"photo.pnm");
    EXPECT_TRUE(lx::ForceSaveExtension(pnm.chars, 17));
    EXPECT_EQ(pnm.str(), L"photo.pnm");
}

TEST(ForceSaveExtension, RefusesTypesWithoutAnOwnExtension) {
    // 9 (Sun raster) and 14 (SGI) are save-filter rows but have no forced extension.
    for (int target : {9, 14, 0, 7, 11, 12, 22, 25, 26, 39, -1, 1000}) {
        PathBuffer path(L"C:\\work\\photo.png");
        EXPECT_FALSE(lx::ForceSaveExtension(path.chars, target)) << target;
        EXPECT_EQ(path.str(), L"C:\\work\\photo.png") << target;
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

TEST(RenamePathExtension, BehavesLikeTheShellRename) {
    PathBuffer blankAfterDot(L"C:\\a.b c");
    EXPECT_TRUE(lx::RenamePathExtension(blankAfterDot.chars, L".jpg"));
    EXPECT_EQ(blankAfterDot.str(), L"C:\\a.b c.jpg");  // a blank ends the extension search

    PathBuffer folderDot(L"C:\\my.photos\\img");
    EXPECT_TRUE(lx::RenamePathExtension(folderDot.chars, L".gif"));
    EXPECT_EQ(folderDot.str(), L"C:\\my.photos\\img.gif");

    // Right at the limit: the dot at 255 plus ".jpg" is 259 characters, still accepted;
    // one more is refused.
    const std::wstring at255 = std::wstring(255, L'a') + L".png";
    PathBuffer fits(at255);
    EXPECT_TRUE(lx::RenamePathExtension(fits.chars, L".jpg"));
    EXPECT_EQ(fits.str(), std::wstring(255, L'a') + L".jpg");
    const std::wstring at256 = std::wstring(256, L'a') + L".png";
    PathBuffer tooLong(at256);
    EXPECT_FALSE(lx::RenamePathExtension(tooLong.chars, L".jpg"));
    EXPECT_EQ(tooLong.str(), at256);

    EXPECT_FALSE(lx::RenamePathExtension(nullptr, L".jpg"));
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
