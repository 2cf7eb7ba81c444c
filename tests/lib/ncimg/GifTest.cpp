#include "GifWriter.h"
#include "ImageLoadTestSupport.h"

#include <gtest/gtest.h>

#include <random>

using lx::PackedDib;

namespace {

#ifndef _WIN32
TEST(GifWriter, NoiseFillsTheCodeTableAndStartsOver) {
    LX_REQUIRE_TOOLS("convert identify");
    // Random indices defeat LZW, so the 4096-code table fills several times over.
    PackedDib dib = PackedDib::Create(301, 157, 8);
    std::mt19937 random(7);
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x) dib.row(y)[x] = static_cast<uint8_t>(random());
    auto pal = dib.palette();
    for (int i = 0; i < 256; ++i) pal[i] = lx::Rgbq{static_cast<uint8_t>(i), static_cast<uint8_t>(i * 3), static_cast<uint8_t>(255 - i), 0};
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeGif, dib, "noise.gif");
    // Long runs of one index make the longest strings instead.
    PackedDib flat = PackedDib::Create(640, 480, 1);
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeGif, flat, "flat.gif");
}

TEST(GifWriter, ColourImagesAreReducedToAPalette) {
    LX_REQUIRE_TOOLS("convert identify");
    // Few colours: kept exactly.
    PackedDib few = PackedDib::Create(20, 10, 24);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x) few.row(y)[x * 3 + (x % 3)] = static_cast<uint8_t>(40 * (y % 5) + 50);
    lxtest::CheckMagickReadsWhatWeWrote(lx::EncodeGif, few, "few.gif");
    // Many colours: a GIF comes out with the picture's size, close in colour.
    const PackedDib many = lxtest::SyntheticRgb(64, 48);
    lxtest::ScratchDir dir("gif-many");
    lxtest::WriteFile(dir / "many.gif", lx::EncodeGif(many));
    const lxtest::Rgba back = lxtest::OracleRead(dir / "many.gif");
    ASSERT_EQ(back.width, 64);
    ASSERT_EQ(back.height, 48);
    double error = 0;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) error += lxtest::ChannelDistance(many.pixel(x, y), back.at(x, y), false);
    EXPECT_LT(error / (64 * 48), 24.0);
}

#endif

TEST(GifWriter, CodesArePackedLeastSignificantBitFirst) {
    // Indices 0 1 0 1 with 2-bit pixels give the 3-bit codes clear (4), 0, 1, 6 (the
    // string "0 1" learnt on the way), end (5): bits 100 000 100 011 101 from the low end.
    const std::vector<uint8_t> indices = {0, 1, 0, 1};
    EXPECT_EQ(lx::GifLzwCompress(indices, 2), (std::vector<uint8_t>{0x44, 0x5c}));
}

}  // namespace
