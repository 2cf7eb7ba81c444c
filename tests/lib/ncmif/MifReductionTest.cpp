// The high-quality zoom (mode 10) judged from outside: sine gratings measured by a least-
// squares fit (what survives inside the new size's band, what folds back from above it),
// linear ramps that any normalised symmetric kernel must reproduce exactly away from the
// edges, the mean level, and sizes down to one pixel and up to ten thousand.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::PackedDib;
using namespace miftest;

namespace {

constexpr double kAmplitude = 100;

// An image of `bits` (8: grey ramp palette, 24, 32) whose every channel is value(x, y),
// each channel shifted by `channelStep` so that a swapped channel shows.
PackedDib Filled(int w, int h, int bits, const std::function<double(int, int)>& value, double channelStep = 0) {
    PackedDib dib = PackedDib::Create(w, h, bits);
    if (bits == 8)
        for (int i = 0; i < 256; ++i) dib.palette()[i] = lx::Rgbq{static_cast<uint8_t>(i), static_cast<uint8_t>(i), static_cast<uint8_t>(i), 0};
    const int channels = bits / 8;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < channels; ++c)
                dib.row(y)[x * channels + c] = static_cast<uint8_t>(std::clamp(std::lround(value(x, y) + c * channelStep), 0L, 255L));
    return dib;
}

int Sample(const PackedDib& dib, int x, int y, int c) { return dib.row(y)[x * (dib.bitCount() / 8) + c]; }

// A grating of `cycles` per output pixel along x (or y) through a reduction by `factor`.
PackedDib Grating(int length, int across, bool alongY, int bits, double cycles, int factor) {
    auto value = [=](int x, int y) {
        return 128 + kAmplitude * std::sin(2 * std::numbers::pi * cycles / factor * (alongY ? y : x) + 0.3);
    };
    return alongY ? Filled(across, length, bits, value) : Filled(length, across, bits, value);
}

// The amplitude of `cycles` per pixel in one line of samples, fitted with a level, a cosine
// and a sine (normal equations solved by Cramer's rule), over the input's amplitude.
double Kept(const std::vector<double>& line, double cycles) {
    double m[3][3] = {}, r[3] = {};
    for (size_t i = 0; i < line.size(); ++i) {
        const double t = 2 * std::numbers::pi * cycles * static_cast<double>(i);
        const double basis[3] = {1, std::cos(t), std::sin(t)};
        for (int a = 0; a < 3; ++a) {
            r[a] += basis[a] * line[i];
            for (int b = 0; b < 3; ++b) m[a][b] += basis[a] * basis[b];
        }
    }
    auto det = [](const double (&q)[3][3]) {
        return q[0][0] * (q[1][1] * q[2][2] - q[1][2] * q[2][1]) - q[0][1] * (q[1][0] * q[2][2] - q[1][2] * q[2][0]) +
               q[0][2] * (q[1][0] * q[2][1] - q[1][1] * q[2][0]);
    };
    double coef[3];
    for (int k = 0; k < 3; ++k) {
        double q[3][3];
        for (int a = 0; a < 3; ++a)
            for (int b = 0; b < 3; ++b) q[a][b] = b == k ? r[a] : m[a][b];
        coef[k] = det(q) / det(m);
    }
    return std::hypot(coef[1], coef[2]) / kAmplitude;
}

// What a reduced grating kept of its frequency, folded into the band, in the middle line
// (the edges, which repeat their pixel, left out).
double KeptOfGrating(const PackedDib& out, bool alongY, double cycles, int channel) {
    const double shown = std::fabs(cycles - std::round(cycles));
    const int length = alongY ? out.height() : out.width();
    const int middle = (alongY ? out.width() : out.height()) / 2;
    std::vector<double> line;
    for (int i = 8; i < length - 8; ++i) line.push_back(alongY ? Sample(out, middle, i, channel) : Sample(out, i, middle, channel));
    return Kept(line, shown);
}

}  // namespace

TEST(MifReduction, GratingsKeepTheBandAndLoseWhatLiesAbove) {
    // 6000 -> 1000 along the grating, 48 -> 8 across it. Pillow's LANCZOS leaves on average
    // 0.106 of these frequencies above the band, 0.415 at most (at 0.525); area averaging
    // leaves 0.26 on average and 0.63 at 0.525.
    const std::vector<double> inBand = {0.05, 0.1, 0.15, 0.2, 0.25, 0.3};
    const std::vector<double> above = {0.525, 0.55, 0.575, 0.6, 0.65, 0.7, 0.75, 0.8, 0.9, 1.1, 1.25, 1.5};
    for (int bits : {8, 24, 32}) {
        for (bool alongY : {false, true}) {
            auto reduced = [&](double cycles) {
                mif image(Grating(6000, 48, alongY, bits, cycles, 6));
                EXPECT_TRUE(alongY ? image.zoom(8, 1000, lx::kZoomHighQuality, 0) : image.zoom(1000, 8, lx::kZoomHighQuality, 0));
                EXPECT_EQ(image.depth(), bits);
                return image;
            };
            const std::string where = std::to_string(bits) + (alongY ? " bits, along y" : " bits, along x");
            for (double f : inBand) {
                const mif image = reduced(f);
                for (int c = 0; c < bits / 8; ++c) {
                    const double kept = KeptOfGrating(image.dib(), alongY, f, c);
                    EXPECT_GE(kept, 0.97) << where << " at " << f;
                    EXPECT_LE(kept, 1.03) << where << " at " << f;
                }
            }
            double sum = 0, peak = 0;
            for (double f : above) {
                const double kept = KeptOfGrating(reduced(f).dib(), alongY, f, bits / 8 - 1);
                sum += kept;
                peak = std::max(peak, kept);
            }
            EXPECT_LE(sum / above.size(), 0.095) << where;
            EXPECT_LE(peak, 0.37) << where;
        }
    }
}

TEST(MifReduction, RampsComeThroughExactlyAwayFromTheEdges) {
    // A linear ramp in x and y (each channel offset) must come out as the same ramp sampled at
    // each output pixel's centre: the sizes make each pass take its wide, narrow and
    // one-at-a-time steps, and in both orders (the tall narrow results go across first).
    struct Case {
        int bits, inW, inH, outW, outH;
    };
    const Case cases[] = {
        {8, 600, 400, 85, 57},  {24, 600, 400, 29, 43},  {32, 600, 400, 21, 40},  {24, 173, 90, 37, 300},
        {8, 3000, 20, 85, 160}, {24, 3000, 20, 29, 160}, {32, 3000, 20, 21, 160}, {24, 50, 900, 400, 60},
    };
    for (const Case& t : cases) {
        const double ax = 150.0 / t.inW, ay = 60.0 / t.inH;
        mif image(Filled(t.inW, t.inH, t.bits, [&](int x, int y) { return 10 + ax * x + ay * y; }, 7));
        ASSERT_TRUE(image.zoom(t.outW, t.outH, lx::kZoomHighQuality, 0));
        const double sx = static_cast<double>(t.inW) / t.outW, sy = static_cast<double>(t.inH) / t.outH;
        // Far enough from the edges that no kernel reaches past them (4 lobes stretched when
        // shrinking, 2 source pixels when enlarging).
        const int mx = static_cast<int>(std::ceil(sx > 1 ? 4.2 : 2.5 / sx)) + 1;
        const int my = static_cast<int>(std::ceil(sy > 1 ? 4.2 : 2.5 / sy)) + 1;
        int checked = 0;
        for (int y = my; y < t.outH - my; ++y)
            for (int x = mx; x < t.outW - mx; ++x)
                for (int c = 0; c < t.bits / 8; ++c) {
                    const double want = 10 + ax * ((x + 0.5) * sx - 0.5) + ay * ((y + 0.5) * sy - 0.5) + 7 * c;
                    ASSERT_NEAR(Sample(image.dib(), x, y, c), want, 1.0)
                        << t.bits << " bits " << t.inW << "x" << t.inH << " -> " << t.outW << "x" << t.outH << " at " << x << "," << y << " channel " << c;
                    ++checked;
                }
        EXPECT_GT(checked, 200);
    }
}

TEST(MifReduction, MeanLevelIsKept) {
    for (auto [w, h, ow, oh] : {std::array{1201, 803, 173, 117}, {997, 1000, 100, 99}, {640, 480, 639, 300}}) {
        const PackedDib photo = Photo(w, h);
        mif image(photo);
        ASSERT_TRUE(image.zoom(ow, oh, lx::kZoomHighQuality, 0));
        for (int shift : {0, 8, 16}) {
            double in = 0, out = 0;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) in += (photo.pixel(x, y) >> shift) & 0xff;
            for (int y = 0; y < oh; ++y)
                for (int x = 0; x < ow; ++x) out += (image.dib().pixel(x, y) >> shift) & 0xff;
            EXPECT_NEAR(out / (ow * oh), in / (static_cast<double>(w) * h), 0.3) << w << "x" << h << " -> " << ow << "x" << oh;
        }
    }
}

TEST(MifReduction, OnePixelAndExtremeRatios) {
    struct Case {
        int inW, inH, outW, outH;
    };
    // A one-pixel image stretched anywhere stays its colour.
    for (const Case& t : {Case{1, 1, 1, 1}, {1, 1, 7, 3}, {1, 1, 10000, 1}, {1, 1, 1, 10000}}) {
        mif image(Solid(t.inW, t.inH, 0x3c96d2));
        ASSERT_TRUE(image.zoom(t.outW, t.outH, lx::kZoomHighQuality, 0));
        ASSERT_EQ(image.width(), t.outW);
        for (int y = 0; y < t.outH; y += std::max(1, t.outH / 50))
            for (int x = 0; x < t.outW; x += std::max(1, t.outW / 50)) ASSERT_EQ(image.dib().pixel(x, y) & 0xffffff, 0x3c96d2u);
    }
    // A symmetric ramp reduced to one pixel, or to one line, comes out at its middle level;
    // through the other axis's enlargement too.
    auto ramp = [](int w, int h) {
        return Filled(w, h, 24, [=](int x, int y) { return 20 + 200.0 * (w > h ? x : y) / (std::max(w, h) - 1); });
    };
    for (const Case& t : {Case{10000, 1, 1, 1}, {1, 10000, 1, 1}, {10000, 2, 1, 50}, {3, 10000, 40, 1}}) {
        mif image(ramp(t.inW, t.inH));
        ASSERT_TRUE(image.zoom(t.outW, t.outH, lx::kZoomHighQuality, 0));
        for (int y = 0; y < t.outH; ++y)
            for (int x = 0; x < t.outW; ++x)
                EXPECT_NEAR(Sample(image.dib(), x, y, 1), 120, 1.0) << t.inW << "x" << t.inH << " -> " << t.outW << "x" << t.outH;
    }
}
