#include <gtest/gtest.h>

#include <functional>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::PackedDib;
using namespace miftest;

namespace {

double ChannelMean(const PackedDib& dib, int shift) {
    double sum = 0;
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x) sum += (dib.pixel(x, y) >> shift) & 0xff;
    return sum / (static_cast<double>(dib.width()) * dib.height());
}

}  // namespace

TEST(MifZoom, HighQualityReductionKeepsTheMeanLevel) {
    const PackedDib photo = Photo(601, 397);
    mif image(photo);
    ASSERT_TRUE(image.zoom(100, 66, lx::kZoomHighQuality, 0));
    EXPECT_EQ(image.width(), 100);
    EXPECT_EQ(image.height(), 66);
    for (int shift : {0, 8, 16}) EXPECT_NEAR(ChannelMean(image.dib(), shift), ChannelMean(photo, shift), 1.0) << shift;
    // Down to one pixel, area averaging gives exactly the mean.
    mif one(photo);
    ASSERT_TRUE(one.zoom(1, 1, lx::kZoomHighQuality, 0));
    EXPECT_NEAR(one.dib().pixel(0, 0) & 0xff, ChannelMean(photo, 0), 1.0);
}

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
}

TEST(MifZoom, EdgesDoNotRingPastBlackOrWhite) {
    // A hard black-to-white edge: cubic overshoot would wrap to the wrong end unless clamped,
    // so every row must rise steadily from black to white.
    PackedDib edge = PackedDib::Create(8, 2, 8);
    for (int y = 0; y < 2; ++y)
        for (int x = 4; x < 8; ++x) edge.row(y)[x] = 255;
    for (int mode : {10, 9, 5}) {
        for (int width : {29, 5, 3}) {
            mif image(edge);
            ASSERT_TRUE(image.zoom(width, 2, mode, 0));
            ASSERT_EQ(image.depth(), 8);  // grey stays grey
            int previous = 0;
            for (int x = 0; x < width; ++x) {
                const int v = image.dib().row(1)[x];
                EXPECT_GE(v, previous) << "mode " << mode << " width " << width << " x " << x;
                previous = v;
            }
            EXPECT_EQ(image.dib().row(0)[0], 0);
            EXPECT_EQ(image.dib().row(0)[width - 1], 255);
        }
    }
}

TEST(MifZoom, ResultDepthFollowsTheSource) {
    for (const Format& f : AllFormats()) {
        for (auto [w, h] : {std::pair{1, 1}, {9, 4}, {2, 17}}) {
            mif image(Pattern(w, h, f));
            ASSERT_TRUE(image.zoom(5, 3, 10, 0)) << f.name();
            const int expected = f.bits == 32 ? 32 : 24;
            EXPECT_EQ(image.depth(), expected) << f.name();
            EXPECT_TRUE(WellFormed(image.dib()));
            mif linear(Pattern(w, h, f));
            ASSERT_TRUE(linear.zoom_linear(1, 1));
            EXPECT_EQ(linear.depth(), expected);
        }
    }
    mif image(4, 4, 24);
    EXPECT_FALSE(image.zoom(0, 3, 10, 0));
    EXPECT_FALSE(image.zoom(3, -1, 10, 0));
    EXPECT_FALSE(image.zoom(100000, 100000, 10, 0));  // beyond the pixel cap
    EXPECT_FALSE(image.zoom_linear(0, 1));
    EXPECT_EQ(image.width(), 4);
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
