#include <gtest/gtest.h>

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

struct Case {
    int mode;
    int base, top, expected;  // grey levels; the hand computation is in the comment
};

}  // namespace

TEST(MifBlendModes, SeparableModesAgainstHandComputedPairs) {
    // b and s are the levels / 255: b = 200/255 = 0.7843, s = 100/255 = 0.3922, and for the
    // second pair b = 60/255 = 0.2353, s = 180/255 = 0.7059.
    const Case cases[] = {
        {0, 200, 100, 100},   // normal: s
        {1, 200, 100, 100},   // darken: min
        {2, 200, 100, 200},   // lighten: max
        {7, 200, 100, 78},    // multiply: 200*100/255 = 78.4
        {8, 200, 100, 222},   // screen: 200 + 100 - 78.4 = 221.6
        {10, 200, 100, 188},  // overlay, b > 0.5: 1 - 2(1-b)(1-s) = 0.7378 -> 188.1
        {10, 60, 180, 85},    // overlay, b <= 0.5: 2bs = 0.3322 -> 84.7
        {11, 200, 100, 157},  // hard light, s <= 0.5: 2bs = 0.6151 -> 156.9
        {11, 60, 180, 140},   // hard light, s > 0.5: 1 - 2(1-b)(1-s) = 0.5502 -> 140.3
        {12, 200, 100, 191},  // soft light, s <= 0.5: b - (1-2s)b(1-b) = 0.7478 -> 190.7
        {12, 60, 180, 86},    // soft light, b <= 0.25: D = ((16b-12)b+4)b = 0.4852, b + (2s-1)(D-b) = 0.3382 -> 86.2
        {12, 200, 180, 211},  // soft light, b > 0.25: D = sqrt(b) = 0.8856, 0.8260 -> 210.6
        {13, 200, 100, 100},  // difference
        {13, 60, 180, 120},
        {14, 200, 100, 143},  // exclusion: b + s - 2bs = 0.5613 -> 143.1
        {14, 60, 180, 155},   // 0.6090 -> 155.3
        {15, 200, 100, 255},  // colour dodge: b/(1-s) = 1.29, clipped
        {15, 60, 180, 204},   // 0.2353/0.2941 = 0.8 -> 204
        {15, 0, 255, 0},      // black stays black even under white
        {16, 200, 100, 115},  // colour burn: 1 - (1-b)/s = 0.45 -> 114.75
        {16, 60, 180, 0},     // 1 - 1.083, clipped
        {16, 255, 0, 255},    // white stays white even under black
        {17, 200, 100, 255},  // add, clipped
        {17, 60, 100, 160},
        {18, 200, 100, 100},  // subtract
        {18, 60, 180, 0},     // clipped
    };
    for (const Case& c : cases)
        EXPECT_EQ(Blend(c.mode, Grey(c.base), Grey(c.top)), Grey(c.expected)) << "mode " << c.mode << " " << c.base << "/" << c.top;
}

TEST(MifBlendModes, ChannelsBlendOnTheirOwn) {
    // Multiply per channel: red 200*255/255, green 100*128/255 = 50.2, blue 50*0 = 0.
    EXPECT_EQ(Blend(7, 0xc86432, 0xff8000), 0xc83200u);
}

TEST(MifBlendModes, HueSaturationAndLuminosityAgainstHandComputedPairs) {
    // Base (200, 60, 50): luminosity 0.3*200 + 0.59*60 + 0.11*50 = 100.9, saturation 150.
    // Hue from pure green: green's hue at the base's saturation is (0, 150, 0), luminosity 88.5,
    // lifted by 12.4 to the base's: (12.4, 162.4, 12.4).
    EXPECT_EQ(Blend(3, 0xc83c32, 0x00ff00), 0x0ca20cu);
    // Saturation from a grey: no saturation at the base's luminosity is grey 100.9.
    EXPECT_EQ(Blend(4, 0xc83c32, Grey(90)), Grey(101));
    // Luminosity from grey 110: the base shifted by 110 - 100.9 = 9.1: (209.1, 69.1, 59.1).
    EXPECT_EQ(Blend(6, 0xc83c32, Grey(110)), 0xd1453bu);
    // Luminosity beyond what the hue can hold is clipped towards the luminosity, not per channel:
    // white's luminosity on red gives white.
    EXPECT_EQ(Blend(6, 0xff0000, Grey(255)), 0xffffffu);
}

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

TEST(MifLayerPlacement, OnlyTheOverlapChangesWhereverTheLayerLies) {
    for (auto [x, y] : {std::pair{-3, -2}, {4, 5}, {-10, 0}, {8, 8}, {0, 0}}) {
        mif image(Solid(8, 7, 0x000000));
        const mif layer(Solid(5, 4, 0xffffff));
        ASSERT_TRUE(image.addlayer(&layer, x, y, 0, 255));
        for (int py = 0; py < 7; ++py)
            for (int px = 0; px < 8; ++px) {
                const bool covered = px >= x && px < x + 5 && py >= y && py < y + 4;
                ASSERT_EQ(image.dib().pixel(px, py) & 0xffffff, covered ? 0xffffffu : 0u) << x << "," << y;
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
