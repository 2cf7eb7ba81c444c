#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::PackedDib;
using namespace miftest;

namespace {

// A LOGPALETTE-shaped block with the given colours (0x00RRGGBB).
std::vector<uint8_t> LogPalette(std::initializer_list<uint32_t> colours) {
    std::vector<uint8_t> block(4 + 4 * colours.size());
    lx::WriteLe16(block.data(), 0x300);
    lx::WriteLe16(block.data() + 2, static_cast<uint16_t>(colours.size()));
    size_t i = 4;
    for (uint32_t c : colours) {
        block[i++] = (c >> 16) & 0xff;  // peRed first
        block[i++] = (c >> 8) & 0xff;
        block[i++] = c & 0xff;
        block[i++] = 0;
    }
    return block;
}

const lx::MifLogPalette* AsPalette(const std::vector<uint8_t>& block) {
    return reinterpret_cast<const lx::MifLogPalette*>(block.data());
}

}  // namespace

TEST(MifQuantize, NeverMoreColoursThanAskedAndCountColorsAgrees) {
    const PackedDib photo = Photo(97, 61);
    for (int method = 0; method <= 3; ++method)
        for (int count : {2, 4, 16, 17, 64, 256}) {
            mif image(photo);
            ASSERT_TRUE(image.quantize(count, method, nullptr)) << method << "/" << count;
            EXPECT_LE(image.countcolors(), count) << method << "/" << count;
            EXPECT_LE(static_cast<int>(image.palette().size()), count);
            EXPECT_TRUE(WellFormed(image.dib()));
            EXPECT_EQ(image.depth(), count <= 2 ? 1 : (count <= 16 ? 4 : 8));
            EXPECT_GE(image.countcolors(), 2);
        }
}

#ifndef _WIN32
TEST(MifQuantizeOracle, PaletteIsAtLeastAsGoodAsImageMagicks) {
    LX_REQUIRE_TOOLS("convert");
    const PackedDib photo = Photo(200, 150);
    for (int count : {16, 256}) {
        auto reference = Magick(photo, "+dither -colors " + std::to_string(count));
        ASSERT_TRUE(reference);
        mif image(photo);
        ASSERT_TRUE(image.quantize(count, lx::kQuantizeNearest, nullptr));
        // Both map each pixel to its nearest palette colour, so the error measures the palette.
        EXPECT_LT(MeanAbsDifference(image.dib(), photo), 1.05 * MeanAbsDifference(*reference, photo)) << count;
    }
}
#endif

TEST(MifQuantize, ReducedBleedingKeepsErrorsOnTheirSideOfAnEdge) {
    // Left half grey 100, dithered between black and 185; right half grey 200, exactly a
    // palette colour but close to 185. Plain diffusion carries the left half's error over the
    // edge and speckles the right half with 185; the reduced-bleeding method leaves it clean.
    PackedDib dib = Solid(40, 40, Grey(0));
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x) std::memset(dib.row(y) + 3 * x, x < 20 ? 100 : 200, 3);
    const auto palette = LogPalette({0x000000, 0xb9b9b9, 0xc8c8c8});
    const auto speckles = [&](const mif& image) {
        int count = 0;
        for (int y = 0; y < 40; ++y)
            for (int x = 20; x < 40; ++x) count += (image.dib().pixel(x, y) & 0xff) != 200;
        return count;
    };
    mif plain(dib), soft(dib);
    ASSERT_TRUE(plain.quantize(3, lx::kQuantizeDiffusion, AsPalette(palette)));
    ASSERT_TRUE(soft.quantize(3, lx::kQuantizeDiffusionSoft, AsPalette(palette)));
    EXPECT_GT(speckles(plain), 0);
    EXPECT_EQ(speckles(soft), 0);
    double left = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 20; ++x) left += soft.dib().pixel(x, y) & 0xff;
    EXPECT_NEAR(left / 800, 100, 8);  // still dithered on its own side
}

TEST(MifQuantize, AnImageWithFewColoursKeepsThemExactly) {
    const PackedDib few = Pattern(31, 9, {4, false});  // at most 16 colours
    mif truecolour(few);
    ASSERT_TRUE(truecolour.setdepth(24));
    for (int method = 0; method <= 3; ++method) {
        mif image(truecolour.dib());
        ASSERT_TRUE(image.quantize(16, method, nullptr));
        EXPECT_TRUE(SameColours(image.dib(), few)) << method;
    }
}

TEST(MifQuantize, DiffusionAndPatternKeepTheAverageOfAFlatTone) {
    // Mid grey with only black and white available: dithering must make about half the pixels
    // white; the nearest colour alone cannot.
    const auto palette = LogPalette({0x000000, 0xffffff});
    for (int method : {1, 2, 3}) {
        mif image(Solid(64, 64, Grey(100)));
        ASSERT_TRUE(image.quantize(2, method, AsPalette(palette)));
        ASSERT_EQ(image.depth(), 1);
        double sum = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) sum += image.dib().pixel(x, y) & 0xff;
        EXPECT_NEAR(sum / (64 * 64), 100, 6) << method;
    }
    mif nearest(Solid(64, 64, Grey(100)));
    ASSERT_TRUE(nearest.quantize(2, 0, AsPalette(palette)));
    EXPECT_EQ(nearest.countcolors(), 1);
    EXPECT_EQ(nearest.dib().pixel(5, 5) & 0xffffff, 0u);
}

TEST(MifQuantize, AGivenPaletteIsUsedAsItIs) {
    const auto palette = LogPalette({0xff0000, 0x00ff00, 0x0000ff, 0x000000, 0xffffff});
    mif image(Photo(40, 30));
    ASSERT_TRUE(image.quantize(3, lx::kQuantizeNearest, AsPalette(palette)));  // only the first three
    ASSERT_EQ(image.palette().size(), 3u);
    EXPECT_EQ(image.palette()[0], (lx::Rgbq{0, 0, 255, 0}));
    EXPECT_EQ(image.palette()[2], (lx::Rgbq{255, 0, 0, 0}));
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            const uint32_t c = image.dib().pixel(x, y) & 0xffffff;
            ASSERT_TRUE(c == 0xff0000 || c == 0x00ff00 || c == 0x0000ff);
        }
}

TEST(MifQuantize, RefusesImpossibleRequests) {
    const PackedDib photo = Photo(8, 8);
    mif image(photo);
    EXPECT_FALSE(image.quantize(1, 0, nullptr));
    EXPECT_FALSE(image.quantize(257, 0, nullptr));
    EXPECT_FALSE(image.quantize(16, 4, nullptr));
    EXPECT_FALSE(image.quantize(16, -1, nullptr));
    const auto none = LogPalette({});
    EXPECT_FALSE(image.quantize(16, 0, AsPalette(none)));
    EXPECT_EQ(image.dib().bytes(), photo.bytes());
}

TEST(MifQuantize, LargeImagesSplitIntoBandsStillReduceWell) {
    // Big enough for two threads: the bands must join without a visible seam in the mean.
    const PackedDib photo = Photo(700, 500);
    mif image(photo);
    ASSERT_TRUE(image.quantize(64, lx::kQuantizeDiffusion, nullptr));
    EXPECT_LE(image.countcolors(), 64);
    double top = 0, bottom = 0, topRef = 0, bottomRef = 0;
    for (int x = 0; x < 700; ++x) {
        top += image.dib().pixel(x, 249) & 0xff, topRef += photo.pixel(x, 249) & 0xff;
        bottom += image.dib().pixel(x, 250) & 0xff, bottomRef += photo.pixel(x, 250) & 0xff;
    }
    EXPECT_NEAR(top / 700, topRef / 700, 2.0);
    EXPECT_NEAR(bottom / 700, bottomRef / 700, 2.0);
}
