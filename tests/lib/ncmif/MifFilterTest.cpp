#include <gtest/gtest.h>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::MifRect;
using lx::PackedDib;
using namespace miftest;

namespace {

PackedDib Rgb(std::initializer_list<uint32_t> colours) {
    PackedDib dib = PackedDib::Create(static_cast<int>(colours.size()), 1, 24);
    int x = 0;
    for (uint32_t c : colours) {
        dib.row(0)[3 * x] = c & 0xff;
        dib.row(0)[3 * x + 1] = (c >> 8) & 0xff;
        dib.row(0)[3 * x + 2] = (c >> 16) & 0xff;
        ++x;
    }
    return dib;
}

PackedDib GreyRamp(int w, int h, int from, int to) {
    PackedDib dib = PackedDib::Create(w, h, 8);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) dib.row(y)[x] = static_cast<uint8_t>(from + (to - from) * x / (w - 1));
    return dib;
}

}  // namespace

TEST(MifGrayscale, WeighsChannelsLikeTheEye) {
    mif image(Rgb({0xff0000, 0x00ff00, 0x0000ff, 0xffffff, 0x000000, 0x808080}));
    ASSERT_TRUE(image.grayscale());
    EXPECT_EQ(image.depth(), 8);
    ASSERT_TRUE(image.dib().hasGreyPalette());
    const uint8_t* row = image.dib().row(0);
    EXPECT_EQ(row[0], 76);   // 0.299 * 255 = 76.2
    EXPECT_EQ(row[1], 150);  // 0.587 * 255 = 149.7
    EXPECT_EQ(row[2], 29);   // 0.114 * 255 = 29.1
    EXPECT_EQ(row[3], 255);
    EXPECT_EQ(row[4], 0);
    EXPECT_EQ(row[5], 128);
}

TEST(MifNormalize, StretchesDarkestAndBrightestToTheFullRange) {
    mif image(GreyRamp(151, 3, 50, 200));
    ASSERT_TRUE(image.normalize(nullptr));
    EXPECT_EQ(image.dib().row(1)[0], 0);
    EXPECT_EQ(image.dib().row(1)[150], 255);
    EXPECT_NEAR(image.dib().row(1)[75], 128, 1);
    EXPECT_EQ(image.depth(), 8);
}

TEST(MifNormalize, AFewStrayPixelsDoNotStopTheStretch) {
    PackedDib dib = GreyRamp(100, 100, 60, 180);
    dib.row(10)[10] = 0;
    dib.row(20)[20] = 255;
    mif image(dib);
    ASSERT_TRUE(image.normalize(nullptr));
    EXPECT_EQ(image.dib().row(50)[0], 0);     // was 60
    EXPECT_EQ(image.dib().row(50)[99], 255);  // was 180
}

TEST(MifNormalize, ColourKeepsItsHueAndTheRectangleBoundsTheChange) {
    mif image(Rgb({0x402010, 0x804020, 0xa05030, 0x123456}));
    const MifRect firstThree{0, 0, 3, 1};
    ASSERT_TRUE(image.normalize(&firstThree));
    // One map for all channels: the darkest sample 16 goes to 0, the brightest 160 to 255,
    // v to (v - 16) * 255 / 144 rounded: 64 -> 85, 32 -> 28.3, 80 -> 113.3, 48 -> 56.7.
    EXPECT_EQ(image.dib().pixel(0, 0) & 0xffffff, 0x551c00u);
    EXPECT_EQ(image.dib().pixel(2, 0) & 0xffffff, 0xff7139u);
    EXPECT_EQ(image.dib().pixel(3, 0) & 0xffffff, 0x123456u);  // outside the rectangle
}

TEST(MifNormalize, FlatOrOneLevelImagesAreLeftAlone) {
    mif flat(GreyRamp(5, 5, 90, 90));
    ASSERT_TRUE(flat.normalize(nullptr));
    EXPECT_EQ(flat.dib().row(2)[2], 90);
    mif tiny(Rgb({0x336699}));
    ASSERT_TRUE(tiny.normalize(nullptr));
    EXPECT_EQ(tiny.dib().pixel(0, 0) & 0xffffff, 0x0080ffu);  // 0x33 -> 0, 0x99 -> 255, 0x66 -> 127.5
    const MifRect outside{5, 0, 6, 1};
    EXPECT_FALSE(tiny.normalize(&outside));
}

TEST(MifBlur, FlatAreasStayFlatAndNothingOutsideTheRectangleChanges) {
    const PackedDib photo = Photo(40, 30);
    mif image(photo);
    const MifRect rect{10, 5, 25, 20};
    ASSERT_TRUE(image.blur_gauss_rle(&rect, 3.0));
    int changed = 0;
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 25 && y >= 5 && y < 20;
            if (!inside) ASSERT_EQ(image.dib().pixel(x, y), photo.pixel(x, y)) << x << "," << y;
            else changed += image.dib().pixel(x, y) != photo.pixel(x, y);
        }
    EXPECT_GT(changed, 100);

    PackedDib grey = GreyRamp(9, 9, 77, 77);
    mif flat(grey);
    ASSERT_TRUE(flat.blur_gauss_rle(nullptr, 20.0));  // kernel far wider than the image
    EXPECT_EQ(flat.dib().bytes(), grey.bytes());
}

TEST(MifBlur, ZeroRadiusChangesNothing) {
    const PackedDib photo = Photo(6, 4);
    mif image(photo);
    EXPECT_TRUE(image.blur_gauss_rle(nullptr, 0));
    EXPECT_TRUE(image.blur_gauss_rle(nullptr, -3));
    EXPECT_EQ(image.dib().bytes(), photo.bytes());
}

#ifndef _WIN32
TEST(MifBlurOracle, MatchesImageMagickGaussianBlur) {
    LX_REQUIRE_TOOLS("convert");
    const PackedDib photo = Photo(160, 120);
    auto reference = Magick(photo, "-gaussian-blur 0x2.5");
    ASSERT_TRUE(reference);
    mif image(photo);
    ASSERT_TRUE(image.blur_gauss_rle(nullptr, 2.5));
    // A radius of 3.5 instead would be 0.5 away.
    EXPECT_LT(MeanAbsDifference(image.dib(), *reference), 0.25);
}
#endif
