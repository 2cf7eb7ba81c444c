// What changes colours: blend modes and layers, fills, alpha from brightness, grey,
// normalising, blur and reduction to a palette.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <vector>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::MifRect;
using lx::PackedDib;
using namespace miftest;

namespace {

// One pixel of `top` laid over one pixel of `base`: the resulting 0x00RRGGBB.
uint32_t Blend(int mode, uint32_t base, uint32_t top, int alpha = 255) {
    mif image(Solid(1, 1, base));
    const mif layer(Solid(1, 1, top));
    EXPECT_TRUE(image.addlayer(&layer, 0, 0, mode, alpha)) << mode;
    return image.dib().pixel(0, 0) & 0xffffff;
}

// One row of these colours (0x00RRGGBB).
PackedDib Rgb(std::vector<uint32_t> colours) {
    return lxtest::Painted(static_cast<int>(colours.size()), 1, [&](int x, int) { return colours[x]; });
}

PackedDib GreyRamp(int w, int h, int from, int to) {
    PackedDib dib = PackedDib::Create(w, h, 8);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) dib.row(y)[x] = static_cast<uint8_t>(from + (to - from) * x / (w - 1));
    return dib;
}

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

TEST(MifBlendModes, CodesOutsideTheSeventeenAreRefused) {
    mif image(Solid(2, 2, 0x123456));
    const mif layer(Solid(2, 2, 0x654321));
    for (int code : {5, 9, 19, -1, 255}) EXPECT_FALSE(image.addlayer(&layer, 0, 0, code, 255)) << code;
    EXPECT_EQ(image.dib().pixel(1, 1) & 0xffffff, 0x123456u);
    EXPECT_FALSE(image.addlayer(nullptr, 0, 0, 0, 255));
}

TEST(MifLayerAlpha, OpacityAndTheLayersOwnAlphaMixTheResult) {
    // (200*128 + 100*127 + 127) / 255 = 150.7, truncated after the rounding term.
    EXPECT_EQ(Blend(0, Grey(200), Grey(100), 127), Grey(150));
    EXPECT_EQ(Blend(0, Grey(200), Grey(100), 0), Grey(200));
    EXPECT_EQ(Blend(7, Grey(200), Grey(100), 255), Grey(78));

    PackedDib translucent = PackedDib::Create(1, 1, 32);
    lx::WriteLe32(translucent.row(0), 0x80646464u);  // grey 100 at alpha 128
    mif image(Solid(1, 1, Grey(200)));
    const mif layer(translucent);
    ASSERT_TRUE(image.addlayer(&layer, 0, 0, 0, 255));
    EXPECT_EQ(image.dib().pixel(0, 0) & 0xffffff, Grey(150));  // (200*127 + 100*128 + 127) / 255
    EXPECT_EQ(image.depth(), 24);
}

// Layers smaller and larger than the image, anywhere: only the overlap changes.
TEST(MifLayerPlacement, OnlyTheOverlapChangesWhereverTheLayerLies) {
    for (auto [x, y, w, h] : {std::tuple{-3, -2, 5, 4}, {4, 5, 5, 4}, {-10, 0, 5, 4}, {8, 8, 5, 4}, {0, 0, 5, 4},
                              {-2, -1, 20, 16}, {0, 0, 20, 16}, {-20, 0, 20, 16}, {3, 2, 20, 16}}) {
        mif image(Solid(8, 7, 0x000000));
        const mif layer(Solid(w, h, 0xffffff));
        ASSERT_TRUE(image.addlayer(&layer, x, y, 0, 255));
        EXPECT_EQ(image.width(), 8);
        for (int py = 0; py < 7; ++py)
            for (int px = 0; px < 8; ++px) {
                const bool covered = px >= x && px < x + w && py >= y && py < y + h;
                ASSERT_EQ(image.dib().pixel(px, py) & 0xffffff, covered ? 0xffffffu : 0u) << x << "," << y << " " << w;
            }
    }
}

TEST(MifLayerPlacement, EveryFormatOnEveryFormat) {
    for (const Format& below : AllFormats())
        for (const Format& over : AllFormats()) {
            mif image(Pattern(7, 3, below));
            const mif layer(Pattern(3, 5, over));
            ASSERT_TRUE(image.addlayer(&layer, 5, -1, 12, 200)) << below.name() << " " << over.name();
            EXPECT_EQ(image.depth(), below.bits == 32 ? 32 : 24);
            EXPECT_TRUE(WellFormed(image.dib()));
        }
    mif self(Pattern(6, 6, {24, false}));
    ASSERT_TRUE(self.addlayer(&self, 2, 2, 8, 255));  // over itself, shifted
}

TEST(MifSetToAlpha, BrightnessBecomesAlphaAndColoursStay) {
    PackedDib dib = Solid(3, 1, 0xff0000);
    dib.row(0)[3] = 255, dib.row(0)[4] = 255, dib.row(0)[5] = 255;  // white
    dib.row(0)[6] = 0, dib.row(0)[7] = 0, dib.row(0)[8] = 0;        // black
    mif image(dib);
    ASSERT_TRUE(image.settoalpha());
    EXPECT_EQ(image.depth(), 32);
    EXPECT_EQ(image.dib().pixel(0, 0), 0x4cff0000u);  // alpha 76 = 0.299 * 255
    EXPECT_EQ(image.dib().pixel(1, 0), 0xffffffffu);
    EXPECT_EQ(image.dib().pixel(2, 0), 0x00000000u);
}

TEST(MifSetToAlpha, ASoftShadowLaidOverWhite) {
    // The paste shadow: a white square on black, its brightness turned into alpha, filled with
    // the shadow colour keeping that alpha, then laid over a white page.
    mif shadow(Solid(4, 4, 0x000000));
    ASSERT_TRUE(shadow.solidfill(1, 1, 2, 2, 0xffffff, 255, 0));
    ASSERT_TRUE(shadow.settoalpha());
    ASSERT_TRUE(shadow.solidfill(nullptr, 0x0000ff, 255, 1));  // COLORREF red, alpha kept
    EXPECT_EQ(shadow.dib().pixel(0, 0), 0x00ff0000u);
    EXPECT_EQ(shadow.dib().pixel(1, 1), 0xffff0000u);
    mif page(Solid(4, 4, 0xffffff));
    ASSERT_TRUE(page.addlayer(&shadow, 0, 0, 0, 255));
    EXPECT_EQ(page.dib().pixel(0, 0) & 0xffffff, 0xffffffu);
    EXPECT_EQ(page.dib().pixel(2, 2) & 0xffffff, 0xff0000u);
}

TEST(MifSolidFill, FillsTheClippedRectangleWithOpacity) {
    mif image(Solid(6, 4, 0x000000));
    const MifRect rect{4, -3, 20, 2};
    ASSERT_TRUE(image.solidfill(&rect, 0x00c08040, 255, 0));  // COLORREF: blue c0, green 80, red 40
    EXPECT_EQ(image.dib().pixel(5, 0) & 0xffffff, 0x4080c0u);
    EXPECT_EQ(image.dib().pixel(3, 0) & 0xffffff, 0u);
    EXPECT_EQ(image.dib().pixel(5, 2) & 0xffffff, 0u);
    ASSERT_TRUE(image.solidfill(0, 2, 2, 2, Grey(255), 51, 0));  // 20% white over black
    EXPECT_EQ(image.dib().pixel(1, 3) & 0xffffff, Grey(51));
    EXPECT_EQ(image.dib().pixel(2, 3) & 0xffffff, 0u);
    ASSERT_TRUE(image.solidfill(0, 0, 0, 0, 0x00ffffff, 255, 0));  // all zero: everything
    EXPECT_EQ(image.countcolors(), 1);
    EXPECT_FALSE(image.solidfill(6, 0, 1, 1, 0, 255, 0));
}

TEST(MifSolidFill, OpacityReplacesAlphaUnlessKept) {
    PackedDib dib = PackedDib::Create(2, 1, 32);
    lx::WriteLe32(dib.row(0), 0x40000000u);
    lx::WriteLe32(dib.row(0) + 4, 0x40000000u);
    mif image(dib);
    ASSERT_TRUE(image.solidfill(0, 0, 1, 1, 0x000000ff, 255, 1));
    ASSERT_TRUE(image.solidfill(1, 0, 1, 1, 0x000000ff, 255, 0));
    EXPECT_EQ(image.dib().pixel(0, 0), 0x40ff0000u);
    EXPECT_EQ(image.dib().pixel(1, 0), 0xffff0000u);
}

TEST(MifGrayscale, WeighsChannelsLikeTheEye) {
    mif image(Rgb({0xff0000, 0x00ff00, 0x0000ff, 0xffffff, 0x000000, 0x808080}));
    ASSERT_TRUE(image.grayscale());
    EXPECT_EQ(image.depth(), 8);
    ASSERT_TRUE(image.dib().hasGreyPalette());
    const uint8_t* row = image.dib().row(0);
    EXPECT_EQ(row[0], 76);   // 0.299 * 255 = 76.2
    EXPECT_EQ(row[1], 150);  // 0.587 * 255 = 149.7
    EXPECT_EQ(row[2], 29);   // 0.114 * 255 = 29.1
    EXPECT_EQ(row[3], 255);
    EXPECT_EQ(row[4], 0);
    EXPECT_EQ(row[5], 128);
}

TEST(MifNormalize, StretchesDarkestAndBrightestToTheFullRange) {
    mif image(GreyRamp(151, 3, 50, 200));
    ASSERT_TRUE(image.normalize(nullptr));
    EXPECT_EQ(image.dib().row(1)[0], 0);
    EXPECT_EQ(image.dib().row(1)[150], 255);
    EXPECT_NEAR(image.dib().row(1)[75], 128, 1);
    EXPECT_EQ(image.depth(), 8);
}

TEST(MifNormalize, AFewStrayPixelsDoNotStopTheStretch) {
    PackedDib dib = GreyRamp(100, 100, 60, 180);
    dib.row(10)[10] = 0;
    dib.row(20)[20] = 255;
    mif image(dib);
    ASSERT_TRUE(image.normalize(nullptr));
    EXPECT_EQ(image.dib().row(50)[0], 0);     // was 60
    EXPECT_EQ(image.dib().row(50)[99], 255);  // was 180
}

TEST(MifNormalize, ColourKeepsItsHueAndTheRectangleBoundsTheChange) {
    mif image(Rgb({0x402010, 0x804020, 0xa05030, 0x123456}));
    const MifRect firstThree{0, 0, 3, 1};
    ASSERT_TRUE(image.normalize(&firstThree));
    // One map for all channels: the darkest sample 16 goes to 0, the brightest 160 to 255,
    // v to (v - 16) * 255 / 144 rounded: 64 -> 85, 32 -> 28.3, 80 -> 113.3, 48 -> 56.7.
    EXPECT_EQ(image.dib().pixel(0, 0) & 0xffffff, 0x551c00u);
    EXPECT_EQ(image.dib().pixel(2, 0) & 0xffffff, 0xff7139u);
    EXPECT_EQ(image.dib().pixel(3, 0) & 0xffffff, 0x123456u);  // outside the rectangle
}

TEST(MifNormalize, FlatOrOneLevelImagesAreLeftAlone) {
    mif flat(GreyRamp(5, 5, 90, 90));
    ASSERT_TRUE(flat.normalize(nullptr));
    EXPECT_EQ(flat.dib().row(2)[2], 90);
    mif tiny(Rgb({0x336699}));
    ASSERT_TRUE(tiny.normalize(nullptr));
    EXPECT_EQ(tiny.dib().pixel(0, 0) & 0xffffff, 0x0080ffu);  // 0x33 -> 0, 0x99 -> 255, 0x66 -> 127.5
    const MifRect outside{5, 0, 6, 1};
    EXPECT_FALSE(tiny.normalize(&outside));
}

TEST(MifBlur, FlatAreasStayFlatAndNothingOutsideTheRectangleChanges) {
    const PackedDib photo = Photo(40, 30);
    mif image(photo);
    const MifRect rect{10, 5, 25, 20};
    ASSERT_TRUE(image.blur_gauss_rle(&rect, 3.0));
    int changed = 0;
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 25 && y >= 5 && y < 20;
            if (!inside) ASSERT_EQ(image.dib().pixel(x, y), photo.pixel(x, y)) << x << "," << y;
            else changed += image.dib().pixel(x, y) != photo.pixel(x, y);
        }
    EXPECT_GT(changed, 100);

    PackedDib grey = GreyRamp(9, 9, 77, 77);
    mif flat(grey);
    ASSERT_TRUE(flat.blur_gauss_rle(nullptr, 20.0));  // kernel far wider than the image
    EXPECT_EQ(flat.dib().bytes(), grey.bytes());
}

TEST(MifBlur, ZeroRadiusChangesNothing) {
    const PackedDib photo = Photo(6, 4);
    mif image(photo);
    EXPECT_TRUE(image.blur_gauss_rle(nullptr, 0));
    EXPECT_TRUE(image.blur_gauss_rle(nullptr, -3));
    EXPECT_EQ(image.dib().bytes(), photo.bytes());
}

#ifndef _WIN32
TEST(MifBlurOracle, MatchesImageMagickGaussianBlur) {
    LX_REQUIRE_TOOLS("convert");
    const PackedDib photo = Photo(160, 120);
    auto reference = Magick(photo, "-gaussian-blur 0x2.5");
    ASSERT_TRUE(reference);
    mif image(photo);
    ASSERT_TRUE(image.blur_gauss_rle(nullptr, 2.5));
    // A radius of 3.5 instead would be 0.5 away.
    EXPECT_LT(MeanAbsDifference(image.dib(), *reference), 0.25);
}
#endif

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
