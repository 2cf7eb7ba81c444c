// The editor's multi-step image operations on real pictures: canvas resize by anchor, colour
// reduction and its limits, the resampling method, and the image-size dialog's arithmetic.
#include <gtest/gtest.h>

#include <cstring>

#include "ImageOperations.h"
#include "Painted.h"
#include "mif.h"

namespace lx {
namespace {

// Every pixel a different colour: (x * 40 + 10, y * 60 + 5, 200) as 0x00RRGGBB.
uint32_t NumberedAt(int x, int y) { return static_cast<uint32_t>((x * 40 + 10) << 16 | (y * 60 + 5) << 8 | 200); }
mif Numbered(int w, int h) { return mif(lxtest::Painted(w, h, NumberedAt)); }
uint32_t At(const mif& image, int x, int y) { return image.dib().pixel(x, y) & 0xFFFFFF; }

TEST(ResizeCanvas, TheAnchorPlacesTheOldPictureAndTheRestTakesTheBackground) {
    const struct {
        int width, height, cell;
        int x, y;  // where the old top-left pixel lands
    } cases[] = {
        {6, 5, 4, 1, 1},    // centre: (6 - 4) / 2, (5 - 3) / 2
        {6, 5, 0, 0, 0},    // top-left
        {7, 5, 8, 3, 2},    // bottom-right
        {3, 2, 8, -1, -1},  // shrinking cuts the top-left away
        {4, 2, 4, 0, 0},    // only the height shrinks: (2 - 3) / 2 truncates to 0
    };
    for (const auto& c : cases) {
        mif image = Numbered(4, 3);
        ASSERT_TRUE(ResizeCanvas(image, c.width, c.height, c.cell, 0x0000FF)) << c.cell;
        ASSERT_EQ(image.width(), c.width);
        ASSERT_EQ(image.height(), c.height);
        EXPECT_EQ(image.depth(), 24);
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < c.width; ++x) {
                const int ox = x - c.x, oy = y - c.y;
                const bool old = ox >= 0 && ox < 4 && oy >= 0 && oy < 3;
                ASSERT_EQ(At(image, x, y), old ? NumberedAt(ox, oy) : 0xFF0000u) << c.cell << " " << x << "," << y;
            }
    }
}

TEST(ResizeCanvas, APalettePictureKeepsItsTableAndIndexes) {
    PackedDib dib = PackedDib::Create(2, 2, 8);
    dib.palette()[0] = Rgbq{1, 2, 3, 0};
    dib.palette()[7] = Rgbq{200, 100, 50, 0};
    std::memset(dib.row(0), 7, 2);
    std::memset(dib.row(1), 7, 2);
    mif image(dib);
    ASSERT_TRUE(ResizeCanvas(image, 4, 2, 2, 0xFFFFFF));
    EXPECT_EQ(image.depth(), 8);
    ASSERT_GE(image.palette().size(), 8u);
    EXPECT_EQ(image.palette()[7].b, 200);
    EXPECT_EQ(image.dib().row(0)[2], 7);  // right-aligned
    EXPECT_EQ(image.dib().row(0)[0], 0);  // the new area: entry 0
}

TEST(ReduceColours, TwoHundredFiftySixNearestColoursGiveEightBitsAndTheLimitsHold) {
    mif photo = Numbered(40, 4);
    ASSERT_TRUE(ReduceColours(photo, 0, 256));
    EXPECT_EQ(photo.depth(), 8);

    mif untouched = Numbered(40, 4);
    const PackedDib before = untouched.dib();
    EXPECT_FALSE(ReduceColours(untouched, 0, 257));
    EXPECT_FALSE(ReduceColours(untouched, 4, 16));
    EXPECT_FALSE(ReduceColours(untouched, -1, 16));
    EXPECT_FALSE(ReduceColours(untouched, 1, 1));
    EXPECT_TRUE(untouched.dib().bytes() == before.bytes());
    mif palette(8, 8, 8);
    EXPECT_FALSE(ReduceColours(palette, 0, 16));  // below 9 bits
    mif sixteen = Numbered(8, 8);
    ASSERT_TRUE(sixteen.setdepth(16));
    EXPECT_TRUE(ReduceColours(sixteen, 3, 16));
    EXPECT_EQ(sixteen.depth(), 4);
}

TEST(ResampleImage, TheMethodChoosesTheOperation) {
    PackedDib dib = PackedDib::Create(4, 4, 8);
    for (int i = 0; i < 256; ++i) dib.palette()[i] = Rgbq{static_cast<uint8_t>(i), 0, static_cast<uint8_t>(255 - i), 0};
    for (int y = 0; y < 4; ++y) std::memset(dib.row(y), y < 2 ? 0 : 255, 4);
    mif nearest(dib), linear(dib), smooth(dib), sharp(dib);
    ASSERT_TRUE(ResampleImage(nearest, 8, 8, kResampleNearest, 0));
    EXPECT_EQ(nearest.depth(), 8);  // nearest neighbour keeps the palette
    ASSERT_TRUE(ResampleImage(linear, 8, 8, kResampleLinear, 0));
    EXPECT_EQ(linear.depth(), 24);
    ASSERT_TRUE(ResampleImage(smooth, 8, 8, kResampleCubic, 0));
    ASSERT_TRUE(ResampleImage(sharp, 8, 8, kResampleCubic, 9));
    EXPECT_EQ(smooth.width(), 8);
    EXPECT_NE(At(smooth, 0, 3), At(sharp, 0, 3));  // the parameter reaches the kernel
}

TEST(ImageSizeArithmetic, PercentAndKeptRatioRoundToWholePixels) {
    EXPECT_EQ(PercentOfSide(320, 640), 50);
    EXPECT_EQ(PercentOfSide(1, 640), 1);  // never 0
    EXPECT_EQ(PercentOfSide(1001, 1000), 100);
    EXPECT_EQ(SideOfPercent(50, 641), 321);  // 320.5 rounds up
    EXPECT_EQ(SideOfPercent(1, 50), 1);      // 0.5 -> 1, never 0
    EXPECT_EQ(SideOfPercent(200, 3), 6);
    EXPECT_EQ(KeptRatioSide(320, 640, 480), 240);
    EXPECT_EQ(KeptRatioSide(100, 300, 200), 67);  // 66.67
    EXPECT_EQ(KeptRatioSide(1, 3000, 10), 1);     // never 0
}

}  // namespace
}  // namespace lx
