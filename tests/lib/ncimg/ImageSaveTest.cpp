#include "ImageLoadTestSupport.h"
#include "ImageSave.h"
#include "ImageSaveConvert.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

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

}  // namespace
