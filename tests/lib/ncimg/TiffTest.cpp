#include "ImageLoadTestSupport.h"
#include "TiffWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

class TiffWriterOracle : public ::testing::TestWithParam<lxtest::DibCase> {};

TEST_P(TiffWriterOracle, MagickReadsWhatWeWrote) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeTiff, GetParam().make(), "out.tif");
}

INSTANTIATE_TEST_SUITE_P(Depths, TiffWriterOracle,
                         ::testing::Values(lxtest::kRgbCase, lxtest::kRgbaCase, lxtest::kGreyCase, lxtest::kPal8Case,
                                           lxtest::kPal4Case, lxtest::kPal1Case, lxtest::kMonoCase),
                         lxtest::DibCaseName);

TEST(TiffWriter, LargeImagesSpanSeveralStrips) {
    LX_REQUIRE_MAGICK();
    // 300 x 100 x 3 bytes is well over one 64 KiB strip.
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeTiff, lxtest::SyntheticRgb(300, 100), "big.tif");
    const std::vector<uint8_t> file = lx::EncodeTiff(lxtest::SyntheticRgb(300, 100));
    const uint16_t entries = lx::ReadLe16(&file[8]);
    for (uint16_t i = 0; i < entries; ++i) {
        const uint8_t* e = &file[10 + i * 12];
        if (lx::ReadLe16(e) == 273) {
            EXPECT_GT(lx::ReadLe32(e + 4), 1u);
        }
    }
}

}  // namespace
