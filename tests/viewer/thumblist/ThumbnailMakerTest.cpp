// The portable thumbnail maker: sizes, depth and pixels of the reduced picture (Pillow's box
// reduction as the oracle), the embedded-picture fast path with orientation (TIFF files
// made by ImageMagick whose second page is an RGB thumbnail), and damaged files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "ByteSource.h"
#include "ImageCodecs.h"
#include "TestFiles.h"
#include "ThumbnailMaker.h"

using namespace lx;

using lxtest::ScratchDir;

namespace {

// A picture whose left half is red and right half blue, as 24-bit.
PackedDib Halves(int width, int height) {
    PackedDib dib = PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t* p = dib.row(y) + x * 3;
            p[2] = x < width / 2 ? 255 : 0;
            p[0] = x < width / 2 ? 0 : 255;
        }
    return dib;
}

void SaveBmp(const PackedDib& dib, const std::filesystem::path& path) { ASSERT_NE(SaveBmpFile(path, dib), 0); }

uint32_t Rgb(const PackedDib& dib, int x, int y) { return dib.pixel(x, y) & 0xffffff; }

bool HaveImageMagick() { return lxtest::Run("convert -version >/dev/null 2>&1") == 0; }
bool HavePillow() { return lxtest::Run("/usr/bin/python3 -c 'import PIL' >/dev/null 2>&1") == 0; }

}  // namespace

TEST(ThumbnailMaker, LandscapePortraitAndTinyPicturesFromBmpFiles) {
    ScratchDir dir("thumbmaker-sizes");
    SaveBmp(Halves(300, 200), dir / "wide.bmp");
    SaveBmp(Halves(200, 300), dir / "tall.bmp");
    SaveBmp(Halves(20, 10), dir / "tiny.bmp");

    const auto wide = MakeThumbnailDib(dir / "wide.bmp");
    ASSERT_TRUE(wide);
    EXPECT_EQ(wide->width(), 72);
    EXPECT_EQ(wide->height(), 48);
    EXPECT_EQ(wide->bitCount(), 24);
    EXPECT_EQ(Rgb(*wide, 5, 24), 0xff0000u);
    EXPECT_EQ(Rgb(*wide, 66, 24), 0x0000ffu);

    const auto tall = MakeThumbnailDib(dir / "tall.bmp");
    ASSERT_TRUE(tall);
    EXPECT_EQ(tall->width(), 48);
    EXPECT_EQ(tall->height(), 72);

    // Smaller than the box: kept at its own size, pixel for pixel.
    const auto tiny = MakeThumbnailDib(dir / "tiny.bmp");
    ASSERT_TRUE(tiny);
    EXPECT_EQ(tiny->width(), 20);
    EXPECT_EQ(tiny->height(), 10);
    EXPECT_EQ(Rgb(*tiny, 9, 3), 0xff0000u);
    EXPECT_EQ(Rgb(*tiny, 10, 3), 0x0000ffu);
}

TEST(ThumbnailMaker, PalettePicturesBecome24BitAndAlphaLiesOverWhite) {
    PackedDib grey = PackedDib::Create(144, 144, 8);
    for (int y = 0; y < 144; ++y)
        for (int x = 0; x < 144; ++x) grey.row(y)[x] = 200;
    const auto fromGrey = FitThumbnail(grey);
    ASSERT_TRUE(fromGrey);
    EXPECT_EQ(fromGrey->bitCount(), 24);
    EXPECT_EQ(Rgb(*fromGrey, 30, 30), 0xc8c8c8u);

    PackedDib clear = PackedDib::Create(10, 10, 32);  // all zero: transparent black
    for (int x = 0; x < 10; ++x) {
        uint8_t* p = clear.row(0) + x * 4;
        p[2] = 255, p[3] = 255;  // one opaque red row
    }
    const auto fromClear = FitThumbnail(clear);
    ASSERT_TRUE(fromClear);
    EXPECT_EQ(fromClear->bitCount(), 24);
    EXPECT_EQ(Rgb(*fromClear, 4, 0), 0xff0000u);
    EXPECT_EQ(Rgb(*fromClear, 4, 5), 0xffffffu);

    EXPECT_FALSE(FitThumbnail(PackedDib()));
}

TEST(ThumbnailMaker, ReductionAveragesAreasLikePillowsBoxReduction) {
    if (!HavePillow()) GTEST_SKIP() << "Pillow is not installed";
    ScratchDir dir("thumbmaker-pillow");
    // Detail finer than the reduction factor of 4, so a point sample would differ.
    PackedDib dib = PackedDib::Create(288, 144, 24);
    for (int y = 0; y < 144; ++y)
        for (int x = 0; x < 288; ++x) {
            uint8_t* p = dib.row(y) + x * 3;
            p[0] = static_cast<uint8_t>((x * 29 + y * 3) % 256);
            p[1] = static_cast<uint8_t>(((x ^ y) & 1) ? 250 : 10);
            p[2] = static_cast<uint8_t>((y * 17) % 256);
        }
    SaveBmp(dib, dir / "detail.bmp");
    const auto ours = MakeThumbnailDib(dir / "detail.bmp");
    ASSERT_TRUE(ours);
    ASSERT_EQ(ours->width(), 72);
    ASSERT_EQ(ours->height(), 36);
    const std::string script = "from PIL import Image; Image.open('" + (dir / "detail.bmp").string() +
                               "').convert('RGB').reduce(4).save('" + (dir / "pillow.bmp").string() + "')";
    ASSERT_EQ(lxtest::Run("/usr/bin/python3 -c \"" + script + "\""), 0);
    const auto pillow = LoadImageFile(dir / "pillow.bmp");
    ASSERT_TRUE(pillow);
    int worst = 0;
    for (int y = 0; y < 36; ++y)
        for (int x = 0; x < 72; ++x)
            for (int shift : {0, 8, 16}) {
                const int a = (ours->pixel(x, y) >> shift) & 0xff, b = (pillow->pixel(x, y) >> shift) & 0xff;
                worst = std::max(worst, std::abs(a - b));
            }
    EXPECT_LE(worst, 1);
}

class EmbeddedThumbnailTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!HaveImageMagick()) GTEST_SKIP() << "ImageMagick is not installed";
    }
    // A TIFF whose first page is a 400 x 300 grey picture with `orientation`, and whose second
    // page is a `thumb` picture with a red left half and a blue right half.
    std::filesystem::path MakeTiff(const std::string& name, const std::string& thumb, int orientation) {
        const std::filesystem::path path = dir_ / name;
        const std::string orient = orientation == 6 ? "RightTop" : "TopLeft";
        const std::string command = "convert -size 400x300 xc:gray50 -orient " + orient + " \\( -size " + thumb +
                                    " xc:red xc:blue +append -scale " + thumb + "! \\) -compress none -depth 8 '" +
                                    path.string() + "'";
        EXPECT_EQ(lxtest::Run(command), 0);
        return path;
    }
    ScratchDir dir_{"thumbmaker-exif"};
};

TEST_F(EmbeddedThumbnailTest, TheSecondPageServesWhenLargeEnough) {
    const auto path = MakeTiff("upright.tif", "96x64", 1);
    FileSource source(path);
    ASSERT_TRUE(source.isOpen());
    const auto thumb = EmbeddedThumbnail(source);
    ASSERT_TRUE(thumb);
    EXPECT_EQ(thumb->width(), 72);
    EXPECT_EQ(thumb->height(), 48);
    EXPECT_EQ(Rgb(*thumb, 3, 20), 0xff0000u);
    EXPECT_EQ(Rgb(*thumb, 68, 20), 0x0000ffu);
    // Through the file entry too (natively the main TIFF page cannot be decoded at all, so
    // a picture here can only have come from the fast path).
    const auto viaFile = MakeThumbnailDib(path);
    ASSERT_TRUE(viaFile);
    EXPECT_EQ(viaFile->bytes(), thumb->bytes());
}

TEST_F(EmbeddedThumbnailTest, OrientationTurnsTheEmbeddedPictureUpright) {
    const auto path = MakeTiff("turned.tif", "96x64", 6);
    const auto thumb = MakeThumbnailDib(path);
    ASSERT_TRUE(thumb);
    // A quarter turn clockwise: the left half (red) comes on top.
    EXPECT_EQ(thumb->width(), 48);
    EXPECT_EQ(thumb->height(), 72);
    EXPECT_EQ(Rgb(*thumb, 24, 3), 0xff0000u);
    EXPECT_EQ(Rgb(*thumb, 24, 68), 0x0000ffu);
}

TEST_F(EmbeddedThumbnailTest, AnEmbeddedPictureSmallerThanTheBoxIsNotUsed) {
    const auto path = MakeTiff("small.tif", "60x40", 1);
    FileSource source(path);
    EXPECT_FALSE(EmbeddedThumbnail(source));
    // A larger box may use a picture that a smaller box refuses.
    FileSource again(path);
    const auto forBox40 = EmbeddedThumbnail(again, 40);
    ASSERT_TRUE(forBox40);
    EXPECT_EQ(forBox40->width(), 40);
}

TEST(ThumbnailMaker, MissingTruncatedAndUnknownFilesFail) {
    ScratchDir dir("thumbmaker-bad");
    EXPECT_FALSE(MakeThumbnailDib(dir / "absent.bmp"));
    SaveBmp(Halves(300, 200), dir / "whole.bmp");
    std::vector<uint8_t> bytes = lxtest::ReadFile(dir / "whole.bmp");
    bytes.resize(bytes.size() / 2);
    lxtest::WriteFile(dir / "half.bmp", bytes);
    EXPECT_FALSE(MakeThumbnailDib(dir / "half.bmp"));
    EXPECT_FALSE(MakeThumbnailDibFromBytes(bytes, "half.bmp"));
    lxtest::WriteFile(dir / "text.jpg", std::string("not a picture at all"));
    EXPECT_FALSE(MakeThumbnailDib(dir / "text.jpg"));
    // A TIFF header pointing outside the file.
    const std::vector<uint8_t> hostile = {'I', 'I', 42, 0, 0xf0, 0xff, 0xff, 0x7f};
    EXPECT_FALSE(MakeThumbnailDibFromBytes(hostile, "x.tif"));
}
