#include "ImageLoadTestSupport.h"
#include "SgiReader.h"
#include "SgiWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadSgi;
using lxtest::kRose;
using lxtest::MagickCase;

namespace {

class SgiReadsMagickFiles : public ::testing::TestWithParam<MagickCase> {};

TEST_P(SgiReadsMagickFiles, PixelsMatchTheOracleAndCutFilesFail) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckReadsMagickFile(ReadSgi, GetParam());
}

const std::string kAlpha = " -alpha set -channel A -fx 'i/w' +channel";

INSTANTIATE_TEST_SUITE_P(
    Kinds, SgiReadsMagickFiles,
    ::testing::Values(MagickCase{"rle", kRose + " -compress RLE SGI:", 24},
                      MagickCase{"verbatim", kRose + " -compress none SGI:", 24},
                      MagickCase{"grey", kRose + " -colorspace Gray -type Grayscale SGI:", 8},
                      MagickCase{"rgba", kRose + kAlpha + " SGI:", 32},
                      MagickCase{"deep", kRose + " -depth 16 -compress RLE SGI:", 24},
                      MagickCase{"deepverbatim", kRose + " -depth 16 -compress none SGI:", 24}),
    lxtest::CaseName);

TEST(SgiWriter, RowsUseRepeatsAndLiteralsAndEndWithZero) {
    const uint8_t row[] = {1, 2, 3, 7, 7, 7, 7, 9};
    std::vector<uint8_t> out;
    lx::SgiEncodeRow(row, sizeof row, out);
    EXPECT_EQ(out, (std::vector<uint8_t>{0x83, 1, 2, 3, 4, 7, 0x81, 9, 0}));
    // Runs longer than a counter holds are split.
    std::vector<uint8_t> flat(300, 5);
    out.clear();
    lx::SgiEncodeRow(flat.data(), flat.size(), out);
    EXPECT_EQ(out, (std::vector<uint8_t>{127, 5, 127, 5, 46, 5, 0}));
}

TEST(SgiReader, RefusesRowsThatOverflowOrPointOutside) {
    std::vector<uint8_t> file = lx::EncodeSgi(lxtest::SyntheticGrey(4, 2));
    ASSERT_TRUE(ReadSgi(file));
    std::vector<uint8_t> bad = file;
    bad[512] = 0x7f;  // first row starts far outside the file
    EXPECT_FALSE(ReadSgi(bad));
    bad = file;
    const size_t rowAt = (size_t{file[514]} << 8) | file[515];
    bad[rowAt] = 0x7f;  // a run longer than the row
    EXPECT_FALSE(ReadSgi(bad));
}

class SgiWriterOracle : public ::testing::TestWithParam<lxtest::DibCase> {};

TEST_P(SgiWriterOracle, MagickReadsWhatWeWrote) {
    LX_REQUIRE_MAGICK();
    const PackedDib dib = GetParam().make();
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeSgi, dib, "out.sgi", 0, "SGI:");
    lxtest::CheckRoundTrip(ReadSgi, lx::EncodeSgi, dib);
}

INSTANTIATE_TEST_SUITE_P(Depths, SgiWriterOracle,
                         ::testing::Values(lxtest::kRgbCase, lxtest::kRgbaCase, lxtest::kGreyCase, lxtest::kPal8Case,
                                           lxtest::kPal1Case),
                         lxtest::DibCaseName);

}  // namespace
