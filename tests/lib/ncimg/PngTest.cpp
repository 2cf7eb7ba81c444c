#include "ImageLoadTestSupport.h"
#include "PngWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

class PngWriterOracle : public ::testing::TestWithParam<lxtest::DibCase> {};

TEST_P(PngWriterOracle, MagickReadsWhatWeWrote) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodePng, GetParam().make(), "out.png");
}

const lxtest::DibCase kLarge{"large", [] { return lxtest::SyntheticRgb(513, 301); }};
// Alpha that is zero everywhere means "no alpha": such images are written opaque.
const lxtest::DibCase kZeroAlpha{"zeroalpha", [] {
    PackedDib dib = lx::PackedDib::Create(9, 4, 32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 9; ++x) dib.row(y)[x * 4 + 1] = static_cast<uint8_t>(x * 20);
    return dib;
}};

INSTANTIATE_TEST_SUITE_P(Depths, PngWriterOracle,
                         ::testing::Values(lxtest::kRgbCase, lxtest::kRgbaCase, lxtest::kGreyCase, lxtest::kPal8Case,
                                           lxtest::kPal4Case, lxtest::kPal1Case, kLarge),
                         lxtest::DibCaseName);

TEST(PngWriter, ColourTypesFollowTheImage) {
    auto colourType = [](const PackedDib& dib) { return lx::EncodePng(dib)[25]; };
    auto bitDepth = [](const PackedDib& dib) { return lx::EncodePng(dib)[24]; };
    EXPECT_EQ(colourType(lxtest::SyntheticRgb()), 2);
    EXPECT_EQ(colourType(lxtest::SyntheticRgba()), 6);
    EXPECT_EQ(colourType(kZeroAlpha.make()), 2);
    EXPECT_EQ(colourType(lxtest::SyntheticPalette(4)), 3);
    EXPECT_EQ(bitDepth(lxtest::SyntheticPalette(4)), 4);
    EXPECT_EQ(bitDepth(lxtest::SyntheticPalette(1)), 1);
    EXPECT_TRUE(lx::EncodePng(PackedDib()).empty());
}

}  // namespace
