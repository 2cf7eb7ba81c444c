#include "ImageTypes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

namespace lx {
namespace {

// A path in a buffer of the size every tool uses, so in-place edits are checked for room.
struct PathBuffer {
    explicit PathBuffer(const std::wstring& text) {
        std::fill(std::begin(chars), std::end(chars), L'#');
        std::wmemcpy(chars, text.c_str(), std::min(text.size() + 1, kPathChars));
    }
    std::wstring str() const { return chars; }
    wchar_t chars[kPathChars];
};

TEST(ImageTypeFromPath, FollowsTheExtensionOfTheFileNameAlone) {
    const struct {
        const wchar_t* path;
        ImageType type;
    } kCases[] = {
        {L"C:\\photos\\IMG_0001.JPE", kImageJpeg}, {L"scan.Xjg", kImagePng}, {L"P1000.rw2", kImageRw2},
        {L"still.jp2", kImageJpeg2000}, {L"a.TIFF", kImageTiff}, {L"a.pgm", kImagePnm}, {L"a.RGB", kImageSgi},
        {L"a.3fr", kImageLastRaw}, {L"a.sr2", kImageSrf}, {L"a.cr2", kImageFirstRaw}, {L"a.dib", kImageBmp},
        {L"README", kImageUnknown}, {L"", kImageUnknown}, {L"photo.", kImageUnknown},
        {L"photo.jpg.bak", kImageUnknown},  // only the last dot counts
        {L"photo.jpgx", kImageUnknown},     // the whole extension, not a prefix
        {L"photo.jp", kImageUnknown},       // nor a prefix of one
        {L"a.\u00cdCO", kImageUnknown},     // non-ASCII letters are not folded
        {L"C:\\a.jpg\\file", kImageUnknown}, {L"C:/a.jpg/file", kImageUnknown},
        {L"C:/photos.2024/IMG0001.png", kImagePng},
    };
    for (const auto& c : kCases) EXPECT_EQ(ImageTypeFromPath(c.path), c.type) << c.path;
    EXPECT_EQ(ImageTypeFromPath(nullptr), kImageUnknown);
}

TEST(MayCarryExif, OnlyJpegTiffAndRawKinds) {
    std::vector<int> carriers;
    for (int type = -2; type <= 45; ++type) {
        if (MayCarryExif(type)) carriers.push_back(type);
    }
    std::vector<int> expected = {kImageJpeg, kImageTiff};
    for (int raw = kImageFirstRaw; raw <= kImageLastRaw; ++raw) expected.push_back(raw);
    EXPECT_EQ(carriers, expected);
}

TEST(ForceSaveExtension, ReplacesOnlyTheFileNamesExtension) {
    const struct {
        const wchar_t* path;
        ImageType target;
        const wchar_t* expected;
    } kCases[] = {
        // A path whose type already is the target keeps its own spelling.
        {L"C:\\work\\scan.dib", kImageBmp, L"C:\\work\\scan.dib"},
        {L"C:\\work\\photo.JPEG", kImageJpeg, L"C:\\work\\photo.JPEG"},
        {L"photo.pnm", kImagePnm, L"photo.pnm"},  // stays, although a fresh name gets .ppm
        {L"C:\\work\\photo.png", kImageJpeg, L"C:\\work\\photo.jpg"},
        {L"C:\\work\\photo.bmp", kImagePnm, L"C:\\work\\photo.ppm"},
        {L"C:\\work\\photo.jpg.bak", kImageJpeg, L"C:\\work\\photo.jpg.jpg"},
        {L"a.tif", kImageJpeg2000, L"a.jp2"},
        {L"C:\\work.d\\photo", kImagePng, L"C:\\work.d\\photo.png"},
        // A dot in a folder name is never the extension, whichever separator precedes the name.
        {L"C:/Users/me/photos.2024/IMG0001", kImageJpeg, L"C:/Users/me/photos.2024/IMG0001.jpg"},
        {L"C:\\Users\\me/photos.2024/IMG0001", kImageGif, L"C:\\Users\\me/photos.2024/IMG0001.gif"},
        {L"photos.2024/IMG.0001.bmp", kImageTiff, L"photos.2024/IMG.0001.tif"},
    };
    for (const auto& c : kCases) {
        PathBuffer path(c.path);
        EXPECT_TRUE(ForceSaveExtension(path.chars, c.target)) << c.path;
        EXPECT_EQ(path.str(), c.expected) << c.path;
    }
}

TEST(ForceSaveExtension, RefusesTypesWithoutAnOwnExtensionAndLeavesAPathTooLongForTheShellRename) {
    // Sun raster and SGI are save-filter rows but have no forced extension.
    for (int target : {+kImageRas, +kImageSgi, +kImageUnknown, +kImageMag, +kImagePsd, 12, 22, +kImagePcd, +kImageCrw,
                       +kImage3fr, +kImageTableEnd, 1000}) {  // 12 and 22 are never produced
        PathBuffer path(L"C:\\work\\photo.png");
        EXPECT_FALSE(ForceSaveExtension(path.chars, target)) << target;
        EXPECT_EQ(path.str(), L"C:\\work\\photo.png") << target;
    }
    // 505 characters: fits the 520-character buffer, not the classic 260-character limit.
    const std::wstring longPath = L"C:\\" + std::wstring(498, L'n') + L".png";
    PathBuffer path(longPath);
    EXPECT_TRUE(ForceSaveExtension(path.chars, kImageJpeg));
    EXPECT_EQ(path.str(), longPath);
    EXPECT_EQ(path.chars[longPath.size() + 1], L'#');  // nothing written past the terminator

    // A dot in the buffer's last usable place: a new extension would run past the buffer.
    const std::wstring full = L"C:\\" + std::wstring(514, L'n') + L".";
    ASSERT_EQ(full.size(), kPathChars - 2);
    PathBuffer edge(full);
    EXPECT_TRUE(ForceSaveExtension(edge.chars, kImageJpeg));
    EXPECT_EQ(edge.str(), full);
}

TEST(SaveTables, EndWithTheSentinelInDisplayOrderNameTheirOutputAndLookUpOnlyInside) {
    std::vector<int> formats;
    for (const SaveFormat* f = kSaveFormats; f->id != kImageTableEnd; ++f) formats.push_back(f->id);
    EXPECT_EQ(formats, (std::vector<int>{kImageJpeg, kImageBmp, kImageGif, kImageTiff, kImageTga, kImagePcx,
                                         kImageFpx, kImagePng, kImagePnm, kImageJpeg2000}));
    EXPECT_STREQ(kSaveFormats[0].shortName, L"JPEG");
    EXPECT_STREQ(kSaveFormats[9].shortName, L"JPEG2000");
    EXPECT_STREQ(kSaveFormats[9].longName, L"JPEG-2000 ISO/IEC 15444-1");
    EXPECT_STREQ(kSaveFormats[8].longName, L"Portable aNy Map");

    std::vector<int> filters;
    for (const SaveFilterType* f = kSaveFilterTypes; f->id != kImageTableEnd; ++f) filters.push_back(f->id);
    EXPECT_EQ(filters, (std::vector<int>{kImageJpeg, kImageBmp, kImageGif, kImagePng, kImageTiff, kImageFpx,
                                         kImageTga, kImageRas, kImagePcx, kImagePnm, kImageJpeg2000, kImageSgi}));
    EXPECT_STREQ(kSaveFilterTypes[9].extension, L".pnm");

    // The conversion dialog relies on each of its formats forcing an extension.
    for (const SaveFormat* f = kSaveFormats; f->id != kImageTableEnd; ++f) {
        PathBuffer path(L"out.xyz");
        EXPECT_TRUE(ForceSaveExtension(path.chars, f->id)) << f->id;
        EXPECT_EQ(ImageTypeFromPath(path.chars), f->id) << f->id;
    }
    // A filter index is looked up only inside the table.
    ASSERT_NE(SaveFilterTypeAt(0), nullptr);
    EXPECT_EQ(SaveFilterTypeAt(0)->id, kImageJpeg);
    ASSERT_NE(SaveFilterTypeAt(11), nullptr);
    EXPECT_EQ(SaveFilterTypeAt(11)->id, kImageSgi);
    EXPECT_EQ(SaveFilterTypeAt(12), nullptr);
    EXPECT_EQ(SaveFilterTypeAt(-1), nullptr);
}

}  // namespace
}  // namespace lx
