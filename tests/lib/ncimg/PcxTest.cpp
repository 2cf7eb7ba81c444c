#include "ImageLoadTestSupport.h"
#include "PcxReader.h"
#include "PcxWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadPcx;
using lxtest::kRose;
using lxtest::MagickCase;

namespace {

class PcxReadsMagickFiles : public ::testing::TestWithParam<MagickCase> {};

TEST_P(PcxReadsMagickFiles, PixelsMatchTheOracleAndCutFilesFail) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckReadsMagickFile(ReadPcx, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PcxReadsMagickFiles,
    ::testing::Values(MagickCase{"rgb24", kRose + " -type TrueColor PCX:", 24},
                      MagickCase{"pal8", kRose + " -colors 100 -type Palette PCX:", 8},
                      // ImageMagick stores black and white as 24-bit planes.
                      MagickCase{"mono", kRose + " -monochrome PCX:", 24},
                      MagickCase{"rgba", kRose + " -alpha set -channel A -fx 'i/w' +channel PCX:", 32}),
    lxtest::CaseName);

TEST(PcxReader, ReadsSixteenColourPlanes) {
    // 3x1 picture, 1 bit in 4 planes: colours 5 (planes 0 and 2), 10 (planes 1 and 3), 15.
    std::vector<uint8_t> file(128, 0);
    file[0] = 0x0a, file[1] = 5, file[2] = 1, file[3] = 1;
    lx::WriteLe16(&file[8], 2);
    file[65] = 4;
    lx::WriteLe16(&file[66], 2);
    for (int i = 0; i < 16; ++i) file[16 + i * 3] = static_cast<uint8_t>(i * 16);  // red = 16 * index
    const uint8_t planes[4] = {0xa0, 0x60, 0xa0, 0x60};  // pixel bits per plane, MSB first
    for (uint8_t p : planes) file.insert(file.end(), {p, 0});
    const auto dib = ReadPcx(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bitCount(), 4);
    EXPECT_EQ(dib->pixel(0, 0), 0xff500000u);
    EXPECT_EQ(dib->pixel(1, 0), 0xffa00000u);
    EXPECT_EQ(dib->pixel(2, 0), 0xfff00000u);
}

TEST(PcxReader, RefusesInconsistentHeaders) {
    std::vector<uint8_t> file = lx::EncodePcx(lxtest::SyntheticRgb(4, 4));
    std::vector<uint8_t> bad = file;
    lx::WriteLe16(&bad[66], 1);  // lines shorter than the width
    EXPECT_FALSE(ReadPcx(bad));
    bad = file;
    bad[65] = 2;  // two planes of 8 bits is no PCX kind
    EXPECT_FALSE(ReadPcx(bad));
    bad = file;
    lx::WriteLe16(&bad[8], 0xffff), lx::WriteLe16(&bad[10], 0xffff);  // a huge canvas for little data
    EXPECT_FALSE(ReadPcx(bad));
}

class PcxWriterOracle : public ::testing::TestWithParam<lxtest::DibCase> {};

TEST_P(PcxWriterOracle, MagickReadsWhatWeWrote) {
    LX_REQUIRE_MAGICK();
    const PackedDib dib = GetParam().make();
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodePcx, dib, "out.pcx");
    lxtest::CheckRoundTrip(ReadPcx, lx::EncodePcx, dib);
}

INSTANTIATE_TEST_SUITE_P(Depths, PcxWriterOracle,
                         ::testing::Values(lxtest::kRgbCase, lxtest::kGreyCase, lxtest::kPal8Case, lxtest::kPal4Case,
                                           lxtest::kPal1Case),
                         lxtest::DibCaseName);

TEST(PcxWriter, BlackAndWhiteStaysOneBitPlane) {
    // ImageMagick 6.9 shows set bits of one-bit PCX files black whatever the header's
    // palette says; Pillow follows the palette (entry 1 white), as our reader does.
    const PackedDib mono = lxtest::kMonoCase.make();
    const std::vector<uint8_t> file = lx::EncodePcx(mono);
    EXPECT_EQ(file[3], 1);
    EXPECT_EQ(file[65], 1);
    lxtest::ScratchDir dir("pcx-mono");
    lxtest::WriteFile(dir / "mono.pcx", file);
    lxtest::CheckRoundTrip(ReadPcx, lx::EncodePcx, mono);
    LX_REQUIRE_MAGICK();  // the oracles run only where the reference tools do (not under Wine)
    EXPECT_TRUE(lxtest::SamePixels(mono, lxtest::PillowRead(dir / "mono.pcx")));
}

}  // namespace
