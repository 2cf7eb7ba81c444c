// Pixels moved (rotate, flip, crop, blt, nearest zoom) and resampled (zoom by each kernel,
// against ImageMagick natively).
#include <gtest/gtest.h>

#include <functional>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::MifRect;
using lx::PackedDib;
using namespace miftest;

class MifGeometry : public ::testing::TestWithParam<Format> {};

TEST_P(MifGeometry, RotateMovesEveryPixelTheRightWay) {
    for (auto [w, h] : {std::pair{5, 3}, {1, 1}, {1, 9}, {33, 2}}) {
        const PackedDib original = Pattern(w, h, GetParam());
        mif right(original), left(original), half(original);
        ASSERT_TRUE(right.rotate(0));
        ASSERT_TRUE(left.rotate(1));
        ASSERT_TRUE(half.rotate(2));
        ASSERT_EQ(right.width(), h);
        ASSERT_EQ(left.height(), w);
        EXPECT_TRUE(WellFormed(right.dib()) && WellFormed(left.dib()) && WellFormed(half.dib()));
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const uint32_t c = original.pixel(x, y);
                ASSERT_EQ(right.dib().pixel(h - 1 - y, x), c) << w << "x" << h;  // clockwise: top row becomes right column
                ASSERT_EQ(left.dib().pixel(y, w - 1 - x), c) << w << "x" << h;   // counter-clockwise: top row becomes left column
                ASSERT_EQ(half.dib().pixel(w - 1 - x, h - 1 - y), c) << w << "x" << h;
            }
        ASSERT_TRUE(left.rotate(0));  // the padding bits of the last byte of each row come back clean
        EXPECT_EQ(left.dib().bytes(), original.bytes());
    }
    mif image(Pattern(2, 2, GetParam()));
    EXPECT_FALSE(image.rotate(3));
    EXPECT_FALSE(image.rotate(-1));
}

TEST_P(MifGeometry, FlipAndMirrorTwiceRestoreAndStayInTheirRectangle) {
    const PackedDib original = Pattern(11, 7, GetParam());
    mif image(original);
    ASSERT_TRUE(image.mirror(0, 0, 0, 0));
    EXPECT_EQ(image.dib().pixel(0, 3), original.pixel(10, 3));
    ASSERT_TRUE(image.mirror(0, 0, 0, 0));
    ASSERT_TRUE(image.flip(0, 0, 0, 0));
    EXPECT_EQ(image.dib().pixel(4, 0), original.pixel(4, 6));
    ASSERT_TRUE(image.flip(0, 0, 0, 0));
    EXPECT_EQ(image.dib().bytes(), original.bytes());

    // Inside a rectangle of odd size, partly outside the image: only its pixels move.
    ASSERT_TRUE(image.mirror(3, 2, 5, 9));
    ASSERT_TRUE(image.flip(3, 2, 5, 9));
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 11; ++x) {
            const bool inside = x >= 3 && x < 8 && y >= 2;
            const uint32_t expected = inside ? original.pixel(3 + 7 - x, 2 + 6 - y) : original.pixel(x, y);
            ASSERT_EQ(image.dib().pixel(x, y), expected) << x << "," << y;
        }
    ASSERT_TRUE(image.flip(3, 2, 5, 9));
    ASSERT_TRUE(image.mirror(3, 2, 5, 9));
    EXPECT_EQ(image.dib().bytes(), original.bytes());

    EXPECT_FALSE(image.mirror(20, 0, 3, 3));  // entirely outside
    EXPECT_FALSE(image.flip(2, 2, -1, 3));    // negative size
    EXPECT_EQ(image.dib().bytes(), original.bytes());
}

TEST_P(MifGeometry, CropThenBltBackRestores) {
    const PackedDib original = Pattern(13, 9, GetParam());
    mif piece(original);
    const MifRect rect{3, 2, 10, 7};
    ASSERT_TRUE(piece.crop(&rect));
    EXPECT_EQ(piece.width(), 7);
    EXPECT_EQ(piece.height(), 5);
    EXPECT_EQ(piece.dib().compression(), original.compression());
    EXPECT_TRUE(WellFormed(piece.dib()));

    mif whole(original);
    ASSERT_TRUE(whole.solidfill(&rect, 0x000000, 255, 0));  // wipe the area first
    ASSERT_TRUE(whole.blt(3, 2, 7, 5, &piece, 0, 0));
    EXPECT_EQ(whole.dib().bytes(), original.bytes());
}

TEST_P(MifGeometry, CropClipsOrRefuses) {
    const PackedDib original = Pattern(6, 4, GetParam());
    mif image(original);
    const MifRect outside{6, 0, 9, 4}, inverted{4, 3, 2, 1}, huge{-100, -100, 100, 100};
    EXPECT_FALSE(image.crop(&outside));
    EXPECT_FALSE(image.crop(&inverted));
    EXPECT_EQ(image.dib().bytes(), original.bytes());
    ASSERT_TRUE(image.crop(&huge));
    EXPECT_EQ(image.dib().bytes(), original.bytes());
    const MifRect corner{5, 3, 50, 50};
    ASSERT_TRUE(image.crop(&corner));
    EXPECT_EQ(image.width(), 1);
    EXPECT_EQ(image.height(), 1);
    EXPECT_EQ(image.dib().pixel(0, 0), original.pixel(5, 3));
}

TEST_P(MifGeometry, ZoomNearDoublesAndHalvesBack) {
    const PackedDib original = Pattern(7, 5, GetParam());
    mif image(original);
    ASSERT_TRUE(image.zoom_near(14, 10));
    EXPECT_EQ(image.depth(), GetParam().bits);
    EXPECT_EQ(image.dib().pixel(13, 9), original.pixel(6, 4));
    EXPECT_EQ(image.dib().pixel(2, 3), original.pixel(1, 1));
    ASSERT_TRUE(image.zoom_near(7, 5));
    EXPECT_EQ(image.dib().bytes(), original.bytes());
    EXPECT_FALSE(image.zoom_near(0, 5));
}

TEST_P(MifGeometry, BltClipsAtEveryEdge) {
    const PackedDib original = Pattern(8, 6, GetParam());
    const mif source(Pattern(5, 5, GetParam()));
    mif image(original);
    // Hanging over the top-left corner: source pixel (2,3) lands on (0,0).
    ASSERT_TRUE(image.blt(-2, -3, 5, 5, &source, 0, 0));
    EXPECT_EQ(image.dib().pixel(0, 0), source.dib().pixel(2, 3));
    EXPECT_EQ(image.dib().pixel(2, 1), source.dib().pixel(4, 4));
    EXPECT_EQ(image.dib().pixel(3, 0), original.pixel(3, 0));
    // Hanging over the bottom-right, with a source position past the source's own edge.
    ASSERT_TRUE(image.blt(6, 4, 10, 10, &source, 3, 3));
    EXPECT_EQ(image.dib().pixel(7, 5), source.dib().pixel(4, 4));
    EXPECT_FALSE(image.blt(8, 0, 2, 2, &source, 0, 0));
    EXPECT_FALSE(image.blt(0, 0, 2, 2, &source, 5, 0));
    EXPECT_FALSE(image.blt(0, 0, 2, 2, nullptr, 0, 0));
    EXPECT_TRUE(WellFormed(image.dib()));
}

TEST_P(MifGeometry, BltFromItselfReadsThePixelsAsTheyWere) {
    const PackedDib original = Pattern(9, 4, GetParam());
    mif image(original);
    ASSERT_TRUE(image.blt(1, 0, 8, 4, &image, 0, 0));  // overlapping shift right
    for (int y = 0; y < 4; ++y)
        for (int x = 1; x < 9; ++x) ASSERT_EQ(image.dib().pixel(x, y), original.pixel(x - 1, y));
}

INSTANTIATE_TEST_SUITE_P(EveryFormat, MifGeometry, ::testing::ValuesIn(AllFormats()),
                         [](const auto& info) { return "bits" + info.param.name(); });

TEST(MifGeometryAcrossFormats, BltConvertsColoursBetweenFormats) {
    const mif source(Pattern(4, 3, {24, false}));
    mif grey(4, 3, 8);  // 256 grey levels
    ASSERT_TRUE(grey.blt(0, 0, 4, 3, &source, 0, 0));
    for (int x = 0; x < 4; ++x) {
        const uint32_t c = source.dib().pixel(x, 1), g = grey.dib().pixel(x, 1);
        // The nearest grey is within a few levels of each channel's reach.
        EXPECT_LE(std::abs(static_cast<int>(g & 0xff) - static_cast<int>((((c >> 16) & 0xff) + ((c >> 8) & 0xff) + (c & 0xff)) / 3)), 2);
    }
    mif deep(4, 3, 32);
    ASSERT_TRUE(deep.blt(0, 0, 4, 3, &source, 0, 0));
    EXPECT_TRUE(SameColours(deep.dib(), source.dib()));
    EXPECT_EQ(deep.dib().pixel(2, 2) >> 24, 0xffu);  // opaque
}

namespace {

double ChannelMean(const PackedDib& dib, int shift) {
    double sum = 0;
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x) sum += (dib.pixel(x, y) >> shift) & 0xff;
    return sum / (static_cast<double>(dib.width()) * dib.height());
}

}  // namespace

TEST(MifZoom, FlatImagesStayFlatInEveryMode) {
    for (auto [w, h] : {std::pair{37, 23}, {3, 2}, {1, 1}, {200, 5}}) {
        for (int mode : {0, 3, 5, 9, 10, -4, 25}) {
            mif image(Solid(13, 11, 0xfa800a));
            ASSERT_TRUE(image.zoom(w, h, mode, 0));
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) ASSERT_EQ(image.dib().pixel(x, y), 0xfffa800au) << mode << " " << w << "x" << h;
        }
        mif linear(Solid(13, 11, 0xfa800a));
        ASSERT_TRUE(linear.zoom_linear(w, h));
        EXPECT_EQ(linear.dib().pixel(w - 1, h - 1), 0xfffa800au);
    }
    mif image(4, 4, 24);
    EXPECT_FALSE(image.zoom(0, 3, 10, 0));
    EXPECT_FALSE(image.zoom(3, -1, 10, 0));
    EXPECT_FALSE(image.zoom(100000, 100000, 10, 0));  // beyond the pixel cap
    EXPECT_FALSE(image.zoom_linear(0, 1));
    EXPECT_EQ(image.width(), 4);
    // Down to one pixel the kernel, far wider than the picture whose edges repeat outwards,
    // weighs its middle most: near the mean, not on it.
    const PackedDib photo = Photo(601, 397);
    mif one(photo);
    ASSERT_TRUE(one.zoom(1, 1, lx::kZoomHighQuality, 0));
    EXPECT_NEAR(one.dib().pixel(0, 0) & 0xff, ChannelMean(photo, 0), 6.0);
}

TEST(MifZoom, EdgesDoNotRingPastBlackOrWhite) {
    // A hard black-to-white edge between source pixels 3 and 4: overshoot would wrap to the
    // wrong end unless clamped. The cubic kernels rise steadily from black to white; the
    // high-quality reduction's longer kernel ripples a little beside the edge, but a pixel a
    // source pixel or more away from it stays near black or white.
    PackedDib edge = PackedDib::Create(8, 2, 8);
    for (int y = 0; y < 2; ++y)
        for (int x = 4; x < 8; ++x) edge.row(y)[x] = 255;
    for (int mode : {10, 9, 5}) {
        for (int width : {29, 5, 3}) {
            mif image(edge);
            ASSERT_TRUE(image.zoom(width, 2, mode, 0));
            ASSERT_EQ(image.depth(), 8);  // grey stays grey
            const bool ripples = mode == lx::kZoomHighQuality && width < 8;
            int previous = 0;
            for (int x = 0; x < width; ++x) {
                const int v = image.dib().row(1)[x];
                const double centre = (x + 0.5) * 8 / width - 0.5;
                if (!ripples) EXPECT_GE(v, previous) << "mode " << mode << " width " << width << " x " << x;
                else if (centre <= 2.5) EXPECT_LE(v, 16) << "width " << width << " x " << x;
                else if (centre >= 4.5) EXPECT_GE(v, 239) << "width " << width << " x " << x;
                previous = v;
            }
            if (!ripples) {
                EXPECT_EQ(image.dib().row(0)[0], 0);
                EXPECT_EQ(image.dib().row(0)[width - 1], 255);
            }
        }
    }
}

TEST(MifZoom, ThirtyTwoBitAlphaIsResampledWithTheColours) {
    PackedDib dib = PackedDib::Create(4, 4, 32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) lx::WriteLe32(dib.row(y) + 4 * x, 0x80102030u);
    mif image(dib);
    ASSERT_TRUE(image.zoom(2, 2, 10, 0));
    EXPECT_EQ(image.dib().pixel(1, 1), 0x80102030u);
}

#ifndef _WIN32
// Mean difference per sample between our result and ImageMagick's on the same picture.
double FromMagick(const PackedDib& photo, const std::string& options, const std::function<bool(mif&)>& ours) {
    auto reference = Magick(photo, options);
    EXPECT_TRUE(reference) << options;
    mif image(photo);
    EXPECT_TRUE(ours(image));
    return reference ? MeanAbsDifference(image.dib(), *reference) : 1e9;
}

TEST(MifZoomOracle, HighQualityReductionMatchesImageMagickLanczos) {
    LX_REQUIRE_TOOLS("convert");
    // Area averaging and Lanczos weigh the footprint differently; nearest neighbour is 3.6 away.
    EXPECT_LT(FromMagick(Photo(900, 600), "-filter Lanczos -resize 150x100!",
                         [](mif& m) { return m.zoom(150, 100, 10, 0); }), 1.5);
}

TEST(MifZoomOracle, EnlargementMatchesImageMagickCatmullRomAndTriangle) {
    LX_REQUIRE_TOOLS("convert");
    const PackedDib photo = Photo(120, 80);
    // The smooth kernel (parameter 0) is 0.4 away: the bound tells the kernels apart.
    EXPECT_LT(FromMagick(photo, "-filter Catrom -resize 300x200!", [](mif& m) { return m.zoom(300, 200, 10, 0); }), 0.3);
    // The editor's parameter 5 is the same kernel.
    EXPECT_LT(FromMagick(photo, "-filter Catrom -resize 300x200!", [](mif& m) { return m.zoom(300, 200, 5, 0); }), 0.3);
    EXPECT_LT(FromMagick(photo, "-filter Triangle -resize 300x200!", [](mif& m) { return m.zoom_linear(300, 200); }), 0.3);
}
#endif
