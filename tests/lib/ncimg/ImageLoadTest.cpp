// Loading, saving and probing through the format table's entry points: files by name and by
// content, the Exif orientation, the depth conversions of saving, and camera raw files, which
// fall back to their largest embedded image. JPEG files load with our own decoder, upright,
// and at a reduced size when a smaller picture is wanted; which embedded image is chosen, its
// bytes and the orientation to apply are the same everywhere.
#include "BmpWriter.h"
#include "ImageLoad.h"
#include "ImageLoadOrientation.h"
#include "ImageLoadSupport.h"
#include "ImageLoadTestSupport.h"
#include "ImageProbe.h"
#include "ImageSave.h"
#include "ImageSaveConvert.h"
#include "JpegReader.h"
#include "JpegWriter.h"
#include "PnmWriter.h"
#include "RawPreview.h"
#include "RawTestFiles.h"
#include "TgaWriter.h"

#include <gtest/gtest.h>

#include <string>

namespace lx {
namespace {

TEST(LoadImageFile, UnreadableOrUnknownFilesGiveNothing) {
    lxtest::ScratchDir dir("load-bad");
    EXPECT_FALSE(lx::LoadImageFile(dir / "missing.bmp"));
    EXPECT_FALSE(lx::LoadImageFile(dir.path()));  // a folder
    lxtest::WriteFile(dir / "text.tga", std::string("not a picture at all"));
    EXPECT_FALSE(lx::LoadImageFile(dir / "text.tga"));
    lxtest::WriteFile(dir / "empty.bmp", std::string());
    EXPECT_FALSE(lx::LoadImageFile(dir / "empty.bmp"));
}

TEST(LoadImageFile, TargaOnlyCountsUnderItsOwnName) {
    const std::vector<uint8_t> tga = lx::EncodeTga(lxtest::SyntheticRgb(5, 4));
    EXPECT_TRUE(lx::LoadImageBytes(tga, "x.tga"));
#ifndef _WIN32
    // Our readers take Targa only by name; on Windows the system decoders are asked next,
    // and some (Wine's) recognise Targa by content.
    EXPECT_FALSE(lx::LoadImageBytes(tga, "x.dat"));
#endif
}

TEST(LoadFromMemory, BitmapBlocksAndJpegWithoutASystemDecoder) {
    const PackedDib dib = lxtest::SyntheticPalette(4);
    const auto back = lx::LoadBmpFromMemory(lx::EncodeBmp(dib));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->bytes(), dib.bytes());
    EXPECT_FALSE(lx::LoadBmpFromMemory(std::vector<uint8_t>{'B', 'M', 0}));
    const std::vector<uint8_t> notJpeg = {'B', 'M', 0, 0};
    EXPECT_FALSE(lx::LoadJpegFromMemory(notJpeg));
}

#ifndef _WIN32
TEST(ExifOrientation, ReadFromJpegAndTiffFiles) {
    LX_REQUIRE_TOOLS("convert exiftool");
    lxtest::ScratchDir dir("orientation");
    // ImageMagick writes the tag into TIFF files; JPEG files get theirs from exiftool.
    const auto tiff = dir / "o.tif";
    ASSERT_TRUE(lxtest::MagickMake("rose: -orient RightTop TIFF:", tiff));
    EXPECT_EQ(lx::ReadExifOrientation(lxtest::ReadFile(tiff)), 6);
    ASSERT_TRUE(lxtest::MagickMake("rose: -orient BottomLeft -endian MSB TIFF:", tiff));
    EXPECT_EQ(lx::ReadExifOrientation(lxtest::ReadFile(tiff)), 4);
    const auto jpeg = dir / "o.jpg";
    ASSERT_TRUE(lxtest::MagickMake("rose: JPEG:", jpeg));
    EXPECT_EQ(lx::ReadExifOrientation(lxtest::ReadFile(jpeg)), 0);
    ASSERT_EQ(lxtest::Run("exiftool -q -Orientation#=8 -overwrite_original '" + jpeg.string() + "'"), 0);
    EXPECT_EQ(lx::ReadExifOrientation(lxtest::ReadFile(jpeg)), 8);
    const std::vector<uint8_t> cut = {0xff, 0xd8, 0xff, 0xe1, 0x00, 0x40, 'E', 'x'};
    EXPECT_EQ(lx::ReadExifOrientation(cut), 0);
}

// A photograph turned a quarter by its orientation covers a wanted box with its sides
// swapped; anything not JPEG loads whole.
TEST(LoadImageFileToCover, JpegAtTheSmallestCoveringScaleUpright) {
    LX_REQUIRE_TOOLS("cjpeg exiftool");
    lxtest::ScratchDir dir("cover");
    lxtest::WriteFile(dir / "p.ppm", EncodePnm(lxtest::SyntheticRgb(64, 40)));
    const auto jpeg = dir / "p.jpg";
    ASSERT_EQ(lxtest::Run("cjpeg -quality 95 -outfile '" + jpeg.string() + "' '" + (dir / "p.ppm").string() + "'"), 0);
    ASSERT_EQ(lxtest::Run("exiftool -q -Orientation#=6 -overwrite_original '" + jpeg.string() + "'"), 0);
    const struct { int wantWidth, wantHeight, width, height, denom; } cases[] = {
        {1, 1, 5, 8, 8}, {10, 16, 10, 16, 4}, {11, 17, 20, 32, 2}, {40, 64, 40, 64, 1}, {400, 400, 40, 64, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.wantWidth);
        PictureSize full;
        const auto dib = LoadImageFileToCover(jpeg, c.wantWidth, c.wantHeight, &full);
        ASSERT_TRUE(dib);
        EXPECT_EQ(dib->width(), c.width);
        EXPECT_EQ(dib->height(), c.height);
        EXPECT_TRUE(full.width == 40 && full.height == 64);
        // Orientation 6 puts the stored top-left corner at the top right.
        const auto stored = ReadJpeg(lxtest::ReadFile(jpeg), c.denom);
        ASSERT_TRUE(stored);
        EXPECT_EQ(dib->pixel(dib->width() - 1, 0), stored->pixel(0, 0));
    }
    const auto whole = LoadImageFile(jpeg);
    ASSERT_TRUE(whole);
    EXPECT_TRUE(whole->width() == 40 && whole->height() == 64);
    const PackedDib bitmap = lxtest::SyntheticRgb(30, 20);
    lxtest::WriteFile(dir / "b.bmp", EncodeBmp(bitmap));
    PictureSize full;
    const auto bmp = LoadImageFileToCover(dir / "b.bmp", 2, 2, &full);
    ASSERT_TRUE(bmp);
    EXPECT_TRUE(bmp->width() == 30 && full.width == 30 && full.height == 20);
}

#endif

TEST(ExifOrientation, EachValueMovesTheTopLeftCornerWhereItBelongs) {
    // A 3 x 2 picture with a marked top-left pixel; where the mark ends up after each turn.
    PackedDib dib = PackedDib::Create(3, 2, 24);
    dib.row(0)[0] = 255;
    struct Expect { int orientation, width, x, y; };
    const Expect expected[] = {{1, 3, 0, 0}, {2, 3, 2, 0}, {3, 3, 2, 1}, {4, 3, 0, 1},
                               {5, 2, 0, 0}, {6, 2, 1, 0}, {7, 2, 1, 2}, {8, 2, 0, 2}};
    for (const Expect& e : expected) {
        PackedDib turned = dib;
        ASSERT_TRUE(lx::OrientUpright(turned, e.orientation));
        ASSERT_EQ(turned.width(), e.width) << e.orientation;
        EXPECT_EQ(turned.pixel(e.x, e.y), 0xff0000ffu) << "orientation " << e.orientation;
    }
    // A transposing turn also moves the top-right pixel to the bottom-left.
    PackedDib corner = PackedDib::Create(3, 2, 24);
    corner.row(0)[2 * 3] = 255;
    ASSERT_TRUE(lx::OrientUpright(corner, 5));
    EXPECT_EQ(corner.pixel(0, 2), 0xff0000ffu);
}

TEST(PlausibleSize, CapsHostileHeadersButNotDecodersWithoutAnInputSize) {
    EXPECT_TRUE(lx::PlausibleSize(6000, 4000, SIZE_MAX));  // system decoders know no input size
    EXPECT_TRUE(lx::PlausibleSize(6000, 4000, 24'000'000 / 1024));
    EXPECT_FALSE(lx::PlausibleSize(6000, 4000, 100));  // 24 MP claimed by a 100-byte file
    EXPECT_TRUE(lx::PlausibleSize(2048, 2048, 0));     // small canvases always pass
    EXPECT_FALSE(lx::PlausibleSize(30000, 30000, SIZE_MAX));  // beyond the pixel cap
    EXPECT_FALSE(lx::PlausibleSize(-1, 10, SIZE_MAX));
}

#ifndef _WIN32
TEST(ImageSave, JpegWithTheCallersRecord) {
    LX_REQUIRE_TOOLS("convert identify");
    lxtest::ScratchDir dir("save-jpeg");
    lx::JpegSaveRecord record;
    record.quality = 95;
    record.progressive = 1;
    const PackedDib dib = lxtest::SyntheticRgb(64, 32);
    ASSERT_NE(lx::SaveJpegFile(dir / "a.jpg", dib, record), 0);
    const lxtest::Rgba back = lxtest::OracleRead(dir / "a.jpg");
    ASSERT_EQ(back.width, 64);
    EXPECT_EQ(lxtest::Run("identify -format %[interlace] '" + (dir / "a.jpg").string() + "' | grep -q JPEG"), 0);
    ASSERT_NE(lx::SaveImageByType(dir / "b.jpg", dib, lx::kImageJpeg), 0);
    EXPECT_EQ(lxtest::OracleRead(dir / "b.jpg").height, 32);
}
#endif

TEST(ImageSave, JapaneseNamesWork) {
    lxtest::ScratchDir dir("save-jp");
    const std::filesystem::path name = dir.path() / std::filesystem::path(u8"写真の保存.png");
    ASSERT_NE(lx::SavePngFile(name, lxtest::SyntheticRgb()), 0);
    EXPECT_TRUE(std::filesystem::exists(name));
}

TEST(ImageSave, UnwrittenFormatsAndEmptyImagesWriteNothing) {
    lxtest::ScratchDir dir("save-none");
    const PackedDib dib = lxtest::SyntheticRgb();
    EXPECT_EQ(lx::SaveFlashPixFile(dir / "a.fpx", dib, 2, 90), 0);
    EXPECT_EQ(lx::SaveJpeg2000File(dir / "a.jp2", dib), 0);
    EXPECT_EQ(lx::SaveJpeg2000File(dir / "b.jp2", dib, 8), 0);
    EXPECT_EQ(lx::SaveImageByType(dir / "a.fpx", dib, lx::kImageFpx), 0);
    EXPECT_EQ(lx::SavePngFile(dir / "e.png", PackedDib()), 0);
    EXPECT_EQ(lx::SaveBmpFile(dir / "e.bmp", PackedDib()), 0);
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST(ConvertDepth, EveryDepthBecomesTheSamePictureAt24Bits) {
    for (const PackedDib& dib : {lxtest::SyntheticPalette(1), lxtest::SyntheticPalette(4), lxtest::SyntheticPalette(8),
                                 lxtest::SyntheticRgb()}) {
        const auto rgb = lx::ConvertDepth(dib, 24);
        ASSERT_TRUE(rgb);
        EXPECT_EQ(rgb->bitCount(), 24);
        EXPECT_TRUE(lxtest::SamePixels(*rgb, lxtest::PixelsOf(dib)));
    }
    PackedDib five = PackedDib::Create(2, 1, 16);
    lx::WriteLe16(five.row(0), 0x7c00);  // pure red in 5-5-5
    const auto rgb = lx::ConvertDepth(five, 24);
    ASSERT_TRUE(rgb);
    EXPECT_EQ(rgb->pixel(0, 0), 0xffff0000u);
    EXPECT_EQ(rgb->pixel(1, 0), 0xff000000u);
    EXPECT_FALSE(lx::ConvertDepth(five, 8));
    EXPECT_FALSE(lx::ConvertDepth(PackedDib(), 24));
}

TEST(CreateBlankImage, FillsWithAWindowsColourValue) {
    const PackedDib dib = lx::CreateBlankImage(5, 3, 0x00336699);  // blue 0x33, green 0x66, red 0x99
    ASSERT_FALSE(dib.empty());
    EXPECT_EQ(dib.bitCount(), 24);
    EXPECT_EQ(dib.pixel(0, 0), 0xff996633u);
    EXPECT_EQ(dib.pixel(4, 2), 0xff996633u);
    EXPECT_TRUE(lx::CreateBlankImage(0, 3, 0).empty());
}

TEST(HasUsableAlpha, ZeroOrFullAlphaIsNoAlpha) {
    PackedDib dib = PackedDib::Create(2, 1, 32);
    EXPECT_FALSE(lx::HasUsableAlpha(dib));
    dib.row(0)[3] = 255, dib.row(0)[7] = 255;
    EXPECT_FALSE(lx::HasUsableAlpha(dib));
    dib.row(0)[7] = 10;
    EXPECT_TRUE(lx::HasUsableAlpha(dib));
}

// Heads that only a signature or a name tells apart; the files of every format are probed
// in FormatTableTest.
TEST(ImageProbe, SignaturesNamesAndRefusals) {
    using namespace std::string_literals;
    const struct {
        std::string head;
        const char* name;
        ImageType type;
    } kCases[] = {
        {"II\x1a\0\0\0HEAPCCDR"s, "", kImageCrw},
        {"FUJIFILMCCD-RAW 0201", "", kImageRaf},
        {"\0MRM\0\0"s, "", kImageMrw},
        {"FOVb", "", kImageX3f},
        {"IIRO\x08\0\0\0"s, "p.orf", kImageOrf},
        {"IIRO\x08\0\0\0"s, "p.bin", kImageUnknown},  // only the name makes it raw
        {"II*\0"s, "p.rw2", kImageRw2},
        {"II*\0"s, "p.CR2", kImageCrw},
        {"II*\0"s, "p.tif", kImageTiff},
        {"", "", kImageUnknown},
        {"BM", "", kImageUnknown},      // too short to hold a header size
        {"P7 1 1", "", kImageUnknown},  // PAM is not read
        {"hello world", "", kImageUnknown},
    };
    for (const auto& c : kCases) {
        const std::vector<uint8_t> head(c.head.begin(), c.head.end());
        EXPECT_EQ(ProbeImageBytes(head, {}, c.name), c.type) << c.head << " " << c.name;
    }
    EXPECT_EQ(ProbeImageType("/nonexistent/file.jpg"), kImageUnknown);
}

TEST(ImageProbe, TargaByItsFooterOrByItsNameWithAConsistentHeader) {
    std::vector<uint8_t> tga(18, 0);
    tga[2] = 2, tga[12] = 1, tga[14] = 1, tga[16] = 24;
    tga.insert(tga.end(), {1, 2, 3});
    EXPECT_EQ(ProbeImageBytes(tga, tga), kImageUnknown);
    EXPECT_EQ(ProbeImageBytes(tga, tga, "a.tga"), kImageUnknown);
    EXPECT_EQ(ProbeImageBytesTrustingName(tga, tga, "a.tga"), kImageTga);
    EXPECT_EQ(ProbeImageBytesTrustingName(tga, tga, "a.bin"), kImageUnknown);
    const char footer[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";
    tga.insert(tga.end(), footer, footer + sizeof footer);
    EXPECT_EQ(ProbeImageBytes(tga, tga), kImageTga);
}

std::vector<uint8_t> PreviewJpeg() { return lx::EncodeJpeg(lxtest::SyntheticRgb(40, 24), lx::JpegSaveRecord{}); }

std::optional<lx::RawPreview> Find(const std::vector<uint8_t>& file) {
    lx::MemorySource source(file);
    return lx::FindRawPreview(source);
}

TEST(RawPreview, TheLargestImageIsChosenAsStoredWithTheRawOrientation) {
    const std::vector<uint8_t> jpeg = PreviewJpeg();
    ASSERT_FALSE(jpeg.empty());
    const auto preview = Find(lxtest::MakeRawLikeFile({jpeg, lxtest::SyntheticRgb(16, 12), 6}));
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->format, lx::EmbeddedFormat::Jpeg);
    EXPECT_EQ(preview->bytes, jpeg);
    EXPECT_EQ(preview->orientation, 6);

    // A thumbnail larger than the JPEG wins over it.
    const auto bigThumb = Find(lxtest::MakeRawLikeFile({jpeg, lxtest::SyntheticRgb(48, 30), 0}));
    ASSERT_TRUE(bigThumb);
    EXPECT_EQ(bigThumb->format, lx::EmbeddedFormat::Bmp);
    EXPECT_EQ(bigThumb->orientation, 0);
}

TEST(RawPreview, ThumbnailLoadsUprightFromFileAndMemory) {
    const PackedDib thumb = lxtest::SyntheticRgb(16, 12);
    lxtest::ScratchDir dir("raw-preview");
    for (int orientation : {0, 1, 3, 6, 8}) {
        PackedDib upright = thumb;
        ASSERT_TRUE(lx::OrientUpright(upright, orientation));
        const std::vector<uint8_t> file = lxtest::MakeRawLikeFile({{}, thumb, orientation});
        for (const char* leaf : {"a.nef", "b.dng", "c.cr2"}) {
            lxtest::WriteFile(dir / leaf, file);
            const auto dib = lx::LoadImageFile(dir / leaf);
            ASSERT_TRUE(dib) << leaf << " orientation " << orientation;
            EXPECT_EQ(dib->bitCount(), 24);
            EXPECT_TRUE(lxtest::SamePixels(*dib, lxtest::PixelsOf(upright))) << leaf << " orientation " << orientation;
        }
        const auto fromMemory = lx::LoadImageBytes(file, "d.arw");
        ASSERT_TRUE(fromMemory);
        EXPECT_TRUE(lxtest::SamePixels(*fromMemory, lxtest::PixelsOf(upright))) << "memory, orientation " << orientation;
    }
    // The turn is the one the orientation names: 6 puts the top-left corner at the top right.
    const auto turned = lx::LoadImageBytes(lxtest::MakeRawLikeFile({{}, thumb, 6}), "e.nef");
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->width(), 12);
    EXPECT_EQ(turned->height(), 16);
    EXPECT_EQ(turned->pixel(11, 0), thumb.pixel(0, 0));
}

TEST(RawPreview, OnlyRawKindsFallBackAndDamagedFilesFail) {
    const std::vector<uint8_t> file = lxtest::MakeRawLikeFile({{}, lxtest::SyntheticRgb(16, 12), 0});
    // The same structure as a TIFF is the TIFF codec's business, not a preview.
    EXPECT_FALSE(lx::LoadImageBytes(file, "a.tif"));
    EXPECT_FALSE(Find(lxtest::MakeRawLikeFile({{}, {}, 6})));
    EXPECT_FALSE(lx::LoadImageBytes(lxtest::MakeRawLikeFile({{}, {}, 6}), "a.nef"));
    // Cut inside the header, the IFDs and the thumbnail's pixels (the sensor data comes last).
    for (size_t cut : {size_t{0}, size_t{8}, file.size() / 3, file.size() - 100}) {
        const std::vector<uint8_t> part(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_FALSE(lx::LoadImageBytes(part, "a.nef")) << cut;
    }
    lxtest::ScratchDir dir("raw-missing");
    EXPECT_FALSE(lx::LoadRawPreview(dir / "missing.nef"));
}

}  // namespace
}  // namespace lx
