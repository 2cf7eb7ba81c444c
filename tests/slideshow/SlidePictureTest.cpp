#include "SlidePicture.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

TEST(SlidePicture, LargerPicturesShrinkWholeByTheSmallerRatioAndAllAreCentred) {
    const struct {
        int width, height;
        SlidePlacement expected;
    } cases[] = {
        {6000, 3000, {0, 120, 1920, 960}},    // wider than the screen's shape: fits the width
        {6000, 4000, {60, 0, 1800, 1200}},    // less wide: fits the height
        {4000, 6000, {560, 0, 800, 1200}},    // taller: fits the height
        {3000, 1000, {0, 280, 1920, 640}},    // too wide only
        {1000, 2400, {710, 0, 500, 1200}},    // too high only
        {1920, 1200, {0, 0, 1920, 1200}},     // exactly the screen
        {640, 480, {640, 360, 640, 480}},     // smaller: its own size
        {1, 1, {959, 599, 1, 1}},
        {100000, 1, {0, 599, 1920, 1}},       // a side never becomes 0
        {0, 480, {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(PlaceSlide(c.width, c.height, 1920, 1200), c.expected) << c.width << " x " << c.height;
}

TEST(SlidePicture, PreparedPicturesAreScaledTwentyFourBitsOverBlack) {
    PackedDib large = PackedDib::Create(400, 100, 32);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 400; ++x) {
            uint8_t* p = large.row(y) + 4 * x;
            p[0] = p[1] = p[2] = 200;
            p[3] = x < 200 ? 255 : 0;  // the right half transparent
        }
    const auto prepared = PrepareSlidePicture(std::move(large), 200, 200);
    ASSERT_TRUE(prepared);
    EXPECT_EQ(prepared->width(), 200);
    EXPECT_EQ(prepared->height(), 50);
    EXPECT_EQ(prepared->bitCount(), 24);
    EXPECT_EQ(prepared->pixel(10, 25), 0xFFC8C8C8u);
    EXPECT_EQ(prepared->pixel(190, 25), 0xFF000000u);

    const auto small = PrepareSlidePicture(PackedDib::Create(30, 20, 8), 200, 200);
    ASSERT_TRUE(small);
    EXPECT_EQ(small->width(), 30);
    EXPECT_EQ(small->height(), 20);
    EXPECT_EQ(small->bitCount(), 24);
    EXPECT_FALSE(PrepareSlidePicture(PackedDib(), 200, 200));
}

}  // namespace
}  // namespace lx
