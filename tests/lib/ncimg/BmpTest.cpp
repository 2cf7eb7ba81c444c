#include "BmpReader.h"
#include "BmpWriter.h"
#include "ImageLoadTestSupport.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadBmp;
using lxtest::kRose;

namespace {


class BmpReadsMagickFiles : public ::testing::TestWithParam<lxtest::MagickCase> {};

TEST_P(BmpReadsMagickFiles, PixelsMatchTheOracleAndCutFilesFail) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckReadsMagickFile(ReadBmp, GetParam());
}

using lxtest::MagickCase;
INSTANTIATE_TEST_SUITE_P(
    Depths, BmpReadsMagickFiles,
    ::testing::Values(MagickCase{"rgb24", kRose + " -type TrueColor BMP3:", 24},
                      MagickCase{"pal8", kRose + " -colors 200 -type Palette BMP3:", 8},
                      MagickCase{"pal4", kRose + " -colors 12 -type Palette BMP3:", 4},
                      MagickCase{"mono", kRose + " -monochrome BMP3:", 1},
                      MagickCase{"rle8", kRose + " -colors 200 -type Palette -compress RLE BMP3:", 8},
                      // 5- and 6-bit channels round either way when widened.
                      MagickCase{"rgb565", kRose + " -define bmp:subtype=RGB565 BMP:", 24, 4},
                      MagickCase{"argb32", kRose + " -alpha set -channel A -fx 'i/w' +channel BMP:", 32},
                      MagickCase{"v5rgb24", kRose + " -type TrueColor BMP:", 24}),
    lxtest::CaseName);

TEST(BmpReader, ReadsTopDownRowsAndRle4) {
    // A 3x2 RLE4 picture built by hand: row 0 (bottom) is a run of 3 pixels of colours 1,2
    // alternating, row 1 an absolute run of 3 nibbles, then end of picture.
    PackedDib pal = PackedDib::Create(3, 2, 4);
    std::vector<uint8_t> file = lx::EncodeBmp(pal);
    lx::WriteLe32(file.data() + 14 + 16, lx::kBiRle4);
    file.resize(14 + 40 + 64);
    const std::vector<uint8_t> rle = {3, 0x12, 0, 0, 0, 3, 0x34, 0x50, 0, 1};
    file.insert(file.end(), rle.begin(), rle.end());
    const auto dib = ReadBmp(file);
    ASSERT_TRUE(dib);
    auto index = [&](int x, int y) { return (dib->row(y)[x >> 1] >> ((x & 1) ? 0 : 4)) & 15; };
    EXPECT_EQ(index(0, 1), 1);
    EXPECT_EQ(index(1, 1), 2);
    EXPECT_EQ(index(2, 1), 1);
    EXPECT_EQ(index(0, 0), 3);
    EXPECT_EQ(index(1, 0), 4);
    EXPECT_EQ(index(2, 0), 5);

    // The same 24-bit image stored top-down reads the same as bottom-up.
    const PackedDib rgb = lxtest::SyntheticRgb(5, 3);
    std::vector<uint8_t> topDown = lx::EncodeBmp(rgb);
    lx::WriteLe32(topDown.data() + 14 + 8, static_cast<uint32_t>(-3));
    const size_t stride = rgb.stride();
    for (int y = 0; y < 3; ++y)
        std::copy(rgb.row(y), rgb.row(y) + stride, topDown.begin() + 54 + static_cast<std::ptrdiff_t>(y * stride));
    const auto back = ReadBmp(topDown);
    ASSERT_TRUE(back);
    EXPECT_TRUE(lxtest::SamePixels(*back, lxtest::PixelsOf(rgb)));
}

TEST(BmpReader, RefusesHostileHeaders) {
    std::vector<uint8_t> file = lx::EncodeBmp(lxtest::SyntheticRgb(4, 4));
    auto patched = [&](size_t at, uint32_t v) {
        std::vector<uint8_t> f = file;
        lx::WriteLe32(f.data() + at, v);
        return ReadBmp(f);
    };
    EXPECT_FALSE(patched(14 + 4, 0x7fffffff));      // width far beyond the data
    EXPECT_FALSE(patched(14 + 8, 0x80000000));      // INT32_MIN height
    EXPECT_FALSE(patched(14 + 16, 9));              // unknown compression
    EXPECT_FALSE(patched(14, 5));                   // impossible header size
    EXPECT_FALSE(ReadBmp(std::vector<uint8_t>{'B', 'M'}));
}

class BmpWriterOracle : public ::testing::TestWithParam<int> {};

TEST_P(BmpWriterOracle, MagickReadsWhatWeWrote) {
    LX_REQUIRE_MAGICK();
    const int bits = GetParam();
    const PackedDib dib = bits == 24 ? lxtest::SyntheticRgb() : lxtest::SyntheticPalette(bits);
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeBmp, dib, "out.bmp");
    // And our own reader gives back the very same DIB.
    const auto back = ReadBmp(lx::EncodeBmp(dib));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->bytes(), dib.bytes());
}

INSTANTIATE_TEST_SUITE_P(Depths, BmpWriterOracle, ::testing::Values(1, 4, 8, 24));

}  // namespace
