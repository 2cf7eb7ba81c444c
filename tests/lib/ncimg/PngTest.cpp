#include "ImageLoadTestSupport.h"
#include "PngWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

TEST(PngWriter, ColourTypesFollowTheImage) {
    // Alpha that is zero everywhere means "no alpha": such images are written opaque.
    PackedDib zeroAlpha = PackedDib::Create(9, 4, 32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 9; ++x) zeroAlpha.row(y)[x * 4 + 1] = static_cast<uint8_t>(x * 20);
    auto colourType = [](const PackedDib& dib) { return lx::EncodePng(dib)[25]; };
    auto bitDepth = [](const PackedDib& dib) { return lx::EncodePng(dib)[24]; };
    EXPECT_EQ(colourType(lxtest::SyntheticRgb()), 2);
    EXPECT_EQ(colourType(lxtest::SyntheticRgba()), 6);
    EXPECT_EQ(colourType(zeroAlpha), 2);
    EXPECT_EQ(colourType(lxtest::SyntheticPalette(4)), 3);
    EXPECT_EQ(bitDepth(lxtest::SyntheticPalette(4)), 4);
    EXPECT_EQ(bitDepth(lxtest::SyntheticPalette(1)), 1);
    EXPECT_TRUE(lx::EncodePng(PackedDib()).empty());
}

}  // namespace
