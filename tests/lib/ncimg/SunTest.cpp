#include "ImageLoadTestSupport.h"
#include "SunReader.h"
#include "SunWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadSun;
using lxtest::kRose;
using lxtest::MagickCase;

namespace {

class SunReadsMagickFiles : public ::testing::TestWithParam<MagickCase> {};

TEST_P(SunReadsMagickFiles, PixelsMatchTheOracleAndCutFilesFail) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckReadsMagickFile(ReadSun, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SunReadsMagickFiles,
    ::testing::Values(MagickCase{"rgb24", kRose + " -type TrueColor SUN:", 24},
                      MagickCase{"rle24", kRose + " -type TrueColor -compress RLE SUN:", 24},
                      MagickCase{"pal8", kRose + " -colors 100 -type Palette SUN:", 8},
                      MagickCase{"rlepal8", kRose + " -colors 100 -type Palette -compress RLE SUN:", 8},
                      // ImageMagick stores black and white as 24-bit RGB (type 3).
                      MagickCase{"mono", kRose + " -monochrome SUN:", 24},
                      MagickCase{"rgba", kRose + " -alpha set -channel A -fx 'i/w' +channel SUN:", 32}),
    lxtest::CaseName);

TEST(SunReader, RunsWithEscapedMarkerAndRgbOrder) {
    // 3x1, 24 bits, type 3 (RGB order), byte-run encoded: 0x80 0x00 is a literal 0x80.
    std::vector<uint8_t> file = {0x59, 0xa6, 0x6a, 0x95, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 24,
                                 0,    0,    0,    0,    0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0};
    // Type 2 is run-length with BGR order: pixel 0 = 0x80,0x80,0x80 via a run of 3, then
    // 1,2,3 and 0x80 (escaped),5,6, then the row pad byte.
    const std::vector<uint8_t> runs = {0x80, 2, 0x80, 1, 2, 3, 0x80, 0, 5, 6, 0};
    file.insert(file.end(), runs.begin(), runs.end());
    const auto dib = ReadSun(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->pixel(0, 0), 0xff808080u);
    EXPECT_EQ(dib->pixel(1, 0), 0xff030201u);
    EXPECT_EQ(dib->pixel(2, 0), 0xff060580u);
    file[23] = 3;  // the same bytes raw, in RGB order
    file.resize(32);
    file.insert(file.end(), {1, 2, 3, 4, 5, 6, 7, 8, 9, 0});
    const auto rgb = ReadSun(file);
    ASSERT_TRUE(rgb);
    EXPECT_EQ(rgb->pixel(0, 0), 0xff010203u);
}

class SunWriterOracle : public ::testing::TestWithParam<lxtest::DibCase> {};

TEST_P(SunWriterOracle, MagickReadsWhatWeWrote) {
    LX_REQUIRE_MAGICK();
    const PackedDib dib = GetParam().make();
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeSun, dib, "out.ras");
    lxtest::CheckRoundTrip(ReadSun, lx::EncodeSun, dib);
}

INSTANTIATE_TEST_SUITE_P(Depths, SunWriterOracle,
                         ::testing::Values(lxtest::kRgbCase, lxtest::kGreyCase, lxtest::kPal8Case, lxtest::kPal4Case,
                                           lxtest::kPal1Case, lxtest::kMonoCase),
                         lxtest::DibCaseName);

}  // namespace
