#include "JpegSampling.h"

#include <algorithm>

namespace lx {
namespace {

constexpr int32_t Fix(double x) { return static_cast<int32_t>(x * 65536.0 + 0.5); }
constexpr int32_t kHalf = 1 << 15;
constexpr int32_t kChromaOffset = 128 << 16;

}  // namespace

namespace {

// Pixels are first split into planes in short runs; the arithmetic over the planes then
// runs several pixels per instruction. Single-precision products of 8-bit values with
// 16-bit fractions are exact, so this matches the fixed-point equations bit for bit.
template <int kPixelBytes>
void ConvertPixels(const uint8_t* bgr, int width, uint8_t* y, uint8_t* cb, uint8_t* cr) {
    constexpr int kRun = 256;
    uint8_t b[kRun], g[kRun], r[kRun];
    for (int x0 = 0; x0 < width; x0 += kRun) {
        const int n = std::min(kRun, width - x0);
        const uint8_t* p = bgr + static_cast<size_t>(x0) * kPixelBytes;
        for (int i = 0; i < n; ++i) {
            b[i] = p[kPixelBytes * i];
            g[i] = p[kPixelBytes * i + 1];
            r[i] = p[kPixelBytes * i + 2];
        }
        for (int i = 0; i < n; ++i) {
            const float rf = r[i], gf = g[i], bf = b[i];
            y[x0 + i] = static_cast<uint8_t>(static_cast<int32_t>(
                Fix(0.29900) * rf + Fix(0.58700) * gf + Fix(0.11400) * bf + kHalf) >> 16);
            // The chroma sums stop one short of a half so that the largest value stays 255.
            cb[x0 + i] = static_cast<uint8_t>(static_cast<int32_t>(
                -Fix(0.16874) * rf - Fix(0.33126) * gf + Fix(0.5) * bf + (kChromaOffset + kHalf - 1)) >> 16);
            cr[x0 + i] = static_cast<uint8_t>(static_cast<int32_t>(
                Fix(0.5) * rf - Fix(0.41869) * gf - Fix(0.08131) * bf + (kChromaOffset + kHalf - 1)) >> 16);
        }
    }
}

}  // namespace

void ConvertRowToYcc(const uint8_t* bgr, int pixelBytes, int width, int paddedWidth, uint8_t* y,
                     uint8_t* cb, uint8_t* cr) {
    if (pixelBytes == 4)
        ConvertPixels<4>(bgr, width, y, cb, cr);
    else
        ConvertPixels<3>(bgr, width, y, cb, cr);
    std::fill(y + width, y + paddedWidth, y[width - 1]);
    std::fill(cb + width, cb + paddedWidth, cb[width - 1]);
    std::fill(cr + width, cr + paddedWidth, cr[width - 1]);
}

void SmoothRow(const uint8_t* above, const uint8_t* row, const uint8_t* below, int width,
               int smoothing, uint8_t* out) {
    const int32_t own = 65536 - smoothing * 512;  // (1 - 8 SF) in 16.16
    const int32_t neighbour = smoothing * 64;     // SF in 16.16
    auto column = [&](int x) { return above[x] + row[x] + below[x]; };
    for (int x = 0; x < width; ++x) {
        const int left = std::max(x - 1, 0), right = std::min(x + 1, width - 1);
        const int32_t ring = column(left) + column(x) + column(right) - row[x];
        out[x] = static_cast<uint8_t>((row[x] * own + ring * neighbour + kHalf) >> 16);
    }
}

void DownsampleRow(const uint8_t* top, const uint8_t* bottom, int outWidth, uint8_t* out) {
    // The rounding bias alternates between 1 and 2 so that halves don't all round one way.
    for (int x = 0; x < outWidth; ++x)
        out[x] = static_cast<uint8_t>((top[2 * x] + top[2 * x + 1] + bottom[2 * x] + bottom[2 * x + 1] + 1 + (x & 1)) >> 2);
}

void SmoothDownsampleRow(const uint8_t* above, const uint8_t* top, const uint8_t* bottom,
                         const uint8_t* below, int outWidth, int smoothing, uint8_t* out) {
    // Averaging four smoothed samples: each of the four keeps (1 - 5 SF) / 4, each
    // neighbour sharing an edge with the square counts SF / 2 and each corner SF / 4.
    const int32_t own = 16384 - smoothing * 80;
    const int32_t quarter = smoothing * 16;
    const int last = 2 * outWidth - 1;
    for (int x = 0; x < outWidth; ++x) {
        const int l = std::max(2 * x - 1, 0), a = 2 * x, b = 2 * x + 1, r = std::min(2 * x + 2, last);
        const int32_t members = top[a] + top[b] + bottom[a] + bottom[b];
        const int32_t edges = above[a] + above[b] + below[a] + below[b] + top[l] + bottom[l] + top[r] + bottom[r];
        const int32_t corners = above[l] + above[r] + below[l] + below[r];
        out[x] = static_cast<uint8_t>((members * own + (2 * edges + corners) * quarter + kHalf) >> 16);
    }
}

}  // namespace lx
