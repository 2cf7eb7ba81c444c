// The paste's settings record, its mode list, the anchored place and the blend with the drop
// shadow, on real pictures of the image class.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "PasteBlend.h"
#include "PasteSettings.h"
#include "mif.h"

namespace lx {
namespace {

mif Solid(int w, int h, uint32_t colourRef) {
    mif image(w, h, 24);
    image.solidfill(nullptr, colourRef, 255, 0);
    return image;
}

uint32_t At(const mif& image, int x, int y) { return image.dib().pixel(x, y) & 0xFFFFFF; }  // 0x00RRGGBB

TEST(PasteSettings, OnlyARecordOfExactlyFortyBytesIsTakenAndItsFieldsAreKeptInRange) {
    const PasteSettings defaults;
    EXPECT_EQ(defaults.opacity, 100);
    EXPECT_EQ(defaults.softness, 16);
    EXPECT_EQ(defaults.distance, 3);
    PasteSettings stored;
    stored.mode = 18;
    stored.opacity = 40;
    stored.anchor = 4;
    stored.offsetX = -7;
    unsigned char bytes[44] = {};
    std::memcpy(bytes, &stored, sizeof stored);
    EXPECT_EQ(PasteSettingsFromStored(bytes, 40).mode, 18);
    EXPECT_EQ(PasteSettingsFromStored(bytes, 40).offsetX, -7);
    for (size_t size : {0u, 39u, 41u, 44u}) EXPECT_EQ(PasteSettingsFromStored(bytes, size).mode, 0) << size;
    EXPECT_EQ(PasteSettingsFromStored(nullptr, 40).opacity, 100);

    const struct {
        PasteSettings in;
        PasteSettings out;
    } ranges[] = {
        {{.mode = 5}, {.mode = 0}},
        {{.mode = 9}, {.mode = 0}},
        {{.opacity = 250}, {.opacity = 100}},
        {{.opacity = -1}, {.opacity = 0}},
        {{.softness = 99, .distance = -40}, {.softness = 50, .distance = -16}},
        {{.anchor = 12}, {.anchor = 8}},
        {{.offsetX = INT32_MIN, .offsetY = INT32_MAX}, {.offsetX = -kMaxPasteOffset, .offsetY = kMaxPasteOffset}},
    };
    for (const auto& r : ranges) {
        const PasteSettings got = PasteSettingsFromStored(&r.in, sizeof r.in);
        EXPECT_EQ(std::memcmp(&got, &r.out, sizeof got), 0) << r.in.mode << " " << r.in.opacity;
    }
}

TEST(PasteModes, TheListShowsSeventeenModesAndHandsOnCodesNotRows) {
    const int codes[] = {0, 1, 2, 3, 4, 6, 7, 8, 10, 11, 12, 13, 14, 15, 16, 17, 18};
    ASSERT_EQ(PasteModes().size(), std::size(codes));
    for (size_t row = 0; row < std::size(codes); ++row) {
        EXPECT_EQ(PasteModes()[row].code, codes[row]);
        EXPECT_EQ(PasteModeCode(static_cast<int>(row)), codes[row]);
        EXPECT_EQ(PasteModeRow(codes[row]), static_cast<int>(row));
    }
    EXPECT_EQ(std::wstring(PasteModes()[5].name), L"明度");
    EXPECT_EQ(std::wstring(PasteModes()[16].name), L"減算");
    for (int code : {5, 9, 19, -1}) EXPECT_EQ(PasteModeRow(code), 0) << code;
    for (int row : {-1, 17}) EXPECT_EQ(PasteModeCode(row), 0) << row;
}

TEST(PasteAnchor, EachCellPlacesByItsRowAndColumnWithTruncatedHalves) {
    // Outer 100 x 50, inner 31 x 21: room 69 x 29, halves 34 and 14.
    const PastePoint expected[9] = {{0, 0}, {34, 0}, {69, 0}, {0, 14}, {34, 14}, {69, 14}, {0, 29}, {34, 29}, {69, 29}};
    for (int cell = 0; cell < 9; ++cell) {
        const PastePoint p = AnchorPosition(cell, 100, 50, 31, 21);
        EXPECT_EQ(p.x, expected[cell].x) << cell;
        EXPECT_EQ(p.y, expected[cell].y) << cell;
    }
    // A larger inner picture goes negative; the half of -5 truncates to -2, not -3.
    const PastePoint centre = AnchorPosition(4, 10, 10, 15, 40);
    EXPECT_EQ(centre.x, -2);
    EXPECT_EQ(centre.y, -15);
    EXPECT_EQ(AnchorPosition(8, 10, 10, 15, 40).y, -30);
}

TEST(PasteBlend, OpacityScaleAndShadowMargin) {
    for (auto [percent, alpha] : {std::pair{100, 255}, {50, 127}, {1, 2}, {0, 0}, {99, 252}}) EXPECT_EQ(OpacityAlpha(percent), alpha) << percent;
    for (auto [softness, m] : {std::pair{0, 0}, {1, 2}, {4, 2}, {5, 3}, {16, 5}, {50, 12}}) EXPECT_EQ(ShadowMargin(softness), m) << softness;
}

TEST(PasteBlend, OpacityZeroOrAModeOutsideTheListChangesNothing) {
    for (const PasteSettings& s : {PasteSettings{.opacity = 0}, PasteSettings{.mode = 5}}) {
        mif target(4, 4, 8);  // a palette picture: not even its depth may change
        mif layer = Solid(2, 2, 0xFFFFFF);
        EXPECT_FALSE(BlendLayer(target, layer, 0, 0, s));
        EXPECT_EQ(target.depth(), 8);
    }
}

TEST(PasteBlend, APalettePictureOnATrueColourOneKeepsItsColours) {
    mif target = Solid(6, 4, 0x00FF00);
    PackedDib indexes = PackedDib::Create(3, 2, 8);
    indexes.palette()[5] = Rgbq{50, 100, 200, 0};  // blue, green, red
    for (int y = 0; y < 2; ++y) std::memset(indexes.row(y), 5, 3);
    mif layer(indexes);
    ASSERT_TRUE(BlendLayer(target, layer, 4, 3, {}));  // partly outside
    EXPECT_EQ(target.depth(), 24);
    EXPECT_EQ(At(target, 4, 3), 0xC86432u);
    EXPECT_EQ(At(target, 5, 3), 0xC86432u);
    EXPECT_EQ(At(target, 3, 3), 0x00FF00u);
    EXPECT_EQ(At(target, 4, 2), 0x00FF00u);
}

TEST(PasteBlend, AHardShadowLiesByTheDistanceInItsColour) {
    // Layer 4 x 4 at (2, 2), shadow moved by 3: it shows at x, y 5..8 where the layer is not.
    mif target = Solid(12, 12, 0xFFFFFF);
    mif layer = Solid(4, 4, 0x00FF00);  // COLORREF green
    ASSERT_TRUE(BlendLayer(target, layer, 2, 2, {.shadow = 1, .softness = 0, .distance = 3, .shadowColour = 0x0000FF}));
    EXPECT_EQ(At(target, 3, 3), 0x00FF00u);  // the layer
    EXPECT_EQ(At(target, 7, 7), 0xFF0000u);  // shadow: COLORREF red
    EXPECT_EQ(At(target, 8, 5), 0xFF0000u);
    EXPECT_EQ(At(target, 9, 9), 0xFFFFFFu);  // past it
    EXPECT_EQ(At(target, 1, 1), 0xFFFFFFu);
    EXPECT_EQ(At(target, 5, 1), 0xFFFFFFu);
}

TEST(PasteBlend, ASoftShadowFadesOutWithinItsMargin) {
    // Softness 16: margin 5, blur radius 1.6; distance 3. The layer is 20 x 20 at (10, 10):
    // the shadow's rectangle spans 13..32 and shows right of the layer at 30..32, its rim
    // fading beyond; the shadow picture ends at 10 + 3 - 5 + 30 = 38.
    mif target = Solid(45, 45, 0xFFFFFF);
    mif layer = Solid(20, 20, 0x808080);
    ASSERT_TRUE(BlendLayer(target, layer, 10, 10, {.shadow = 1}));
    const auto red = [&](int x, int y) { return static_cast<int>(At(target, x, y) >> 16); };
    EXPECT_LT(red(30, 20), 40);           // inside the shadow: almost black
    EXPECT_GT(red(33, 20), red(32, 20));  // lighter past the edge ...
    EXPECT_LT(red(33, 20), 255);          // ... but not yet white
    EXPECT_EQ(red(38, 20), 255);          // beyond the margin: untouched
    EXPECT_EQ(red(5, 5), 255);            // nothing on the far side
    EXPECT_EQ(At(target, 29, 29), 0x808080u);  // the layer covers its own shadow
}

TEST(PasteBlend, HalfOpacityMixesTheShadowAndTheLayer) {
    mif target = Solid(10, 10, 0xFFFFFF);
    mif layer = Solid(2, 2, 0x000000);
    ASSERT_TRUE(BlendLayer(target, layer, 2, 2, {.opacity = 50, .shadow = 1, .softness = 0, .distance = 2}));
    EXPECT_EQ(At(target, 2, 2), 0x808080u);  // (255 x 128 + 127) / 255 = 128
    EXPECT_EQ(At(target, 5, 5), 0x808080u);  // the shadow at the same alpha
    EXPECT_EQ(At(target, 6, 6), 0xFFFFFFu);
}

TEST(PasteBlend, ALayerWhollyOutsideLeavesThePixelsAsTheyWere) {
    mif target = Solid(6, 6, 0x123456);
    mif layer = Solid(3, 3, 0xFFFFFF);
    EXPECT_TRUE(BlendLayer(target, layer, 6, -10, {.shadow = 1}));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) ASSERT_EQ(At(target, x, y), 0x563412u);
}

}  // namespace
}  // namespace lx
