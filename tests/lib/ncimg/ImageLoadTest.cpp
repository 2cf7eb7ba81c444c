#include "BmpWriter.h"
#include "ImageLoad.h"
#include "ImageLoadOrientation.h"
#include "ImageLoadSupport.h"
#include "ImageLoadTestSupport.h"
#include "TgaWriter.h"

#include <gtest/gtest.h>

#include <algorithm>

using lx::PackedDib;

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

}  // namespace

TEST(PlausibleSize, CapsHostileHeadersButNotDecodersWithoutAnInputSize) {
    EXPECT_TRUE(lx::PlausibleSize(6000, 4000, SIZE_MAX));  // system decoders know no input size
    EXPECT_TRUE(lx::PlausibleSize(6000, 4000, 24'000'000 / 1024));
    EXPECT_FALSE(lx::PlausibleSize(6000, 4000, 100));  // 24 MP claimed by a 100-byte file
    EXPECT_TRUE(lx::PlausibleSize(2048, 2048, 0));     // small canvases always pass
    EXPECT_FALSE(lx::PlausibleSize(30000, 30000, SIZE_MAX));  // beyond the pixel cap
    EXPECT_FALSE(lx::PlausibleSize(-1, 10, SIZE_MAX));
}
