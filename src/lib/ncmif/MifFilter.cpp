// Tone and smoothing filters: grey conversion, level normalisation and the Gaussian blur.
#include <algorithm>
#include <cmath>
#include <vector>

#include "MifPixels.h"
#include "mif.h"

namespace lx {

using namespace mifpix;

bool mif::grayscale() {
    if (empty()) return false;
    if (dib_.hasGreyRamp()) return true;
    PackedDib out = PackedDib::Create(width(), height(), 8);
    if (out.empty()) return false;
    const PackedDib& src = dib_;
    const bool rgb = src.compression() == kBiRgb && (src.bitCount() == 24 || src.bitCount() == 32);
    ParallelRows(height(), width(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            uint8_t* d = out.row(y);
            if (rgb) {
                const int step = src.bitCount() / 8;
                const uint8_t* p = src.row(y);
                for (int x = 0; x < src.width(); ++x, p += step) d[x] = Luma(p[2], p[1], p[0]);
            } else {
                for (int x = 0; x < src.width(); ++x) {
                    const uint32_t c = src.pixel(x, y);
                    d[x] = Luma((c >> 16) & 0xff, (c >> 8) & 0xff, c & 0xff);
                }
            }
        }
    });
    dib_ = std::move(out);
    return true;
}

bool mif::normalize(const MifRect* rect) {
    MifRect r;
    if (!validaterect(rect, &r)) return false;
    if (!EnsureDirect(dib_)) return false;
    PackedDib& work = dib_;
    const int channels = Channels(work);
    const int colourChannels = std::min(channels, 3);  // alpha is not a level

    std::vector<int64_t> histogram(256, 0);
    for (int y = r.top; y < r.bottom; ++y) {
        const uint8_t* p = work.row(y) + static_cast<size_t>(r.left) * channels;
        for (int x = r.left; x < r.right; ++x, p += channels)
            for (int c = 0; c < colourChannels; ++c) ++histogram[p[c]];
    }
    int64_t total = 0;
    for (int64_t n : histogram) total += n;
    const int64_t outliers = total / 1000;
    int low = 0, high = 255;
    for (int64_t seen = 0; low < 255 && (seen += histogram[low]) <= outliers;) ++low;
    for (int64_t seen = 0; high > 0 && (seen += histogram[high]) <= outliers;) --high;

    if (high > low) {
        uint8_t map[256];
        for (int v = 0; v < 256; ++v)
            map[v] = static_cast<uint8_t>(std::clamp(((v - low) * 255 * 2 + (high - low)) / (2 * (high - low)), 0, 255));
        for (int y = r.top; y < r.bottom; ++y) {
            uint8_t* p = work.row(y) + static_cast<size_t>(r.left) * channels;
            for (int x = r.left; x < r.right; ++x, p += channels)
                for (int c = 0; c < colourChannels; ++c) p[c] = map[p[c]];
        }
    }
    return true;
}

namespace {

constexpr int kBlurBits = 14;

// Integer Gaussian weights for offsets -reach..reach, summing exactly to 1 << kBlurBits.
std::vector<int32_t> GaussWeights(double sigma, int reach) {
    std::vector<double> w(static_cast<size_t>(2 * reach + 1));
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) sum += w[i + reach] = std::exp(-(i * i) / (2 * sigma * sigma));
    std::vector<int32_t> out(w.size());
    int32_t total = 0;
    for (size_t i = 0; i < w.size(); ++i) total += out[i] = static_cast<int32_t>(std::lround(w[i] / sum * (1 << kBlurBits)));
    out[reach] += (1 << kBlurBits) - total;
    return out;
}

inline uint8_t Settle(int32_t acc) {
    return static_cast<uint8_t>(std::clamp((acc + (1 << (kBlurBits - 1))) >> kBlurBits, 0, 255));
}

// out[i] = sum over k of weights[k] * taps[k][i], for acc.size() samples. The weights are
// symmetric, so the two taps that share one are added first: half the multiplications.
// The products are taken as 16 x 16 bits (every weight is below 2^15 and positive, a pair of
// samples below 2^9), which the compiler turns into plain SSE2 vector multiplies.
void Convolve(const std::vector<const uint8_t*>& taps, const std::vector<int32_t>& weights, std::vector<int32_t>& acc, uint8_t* out) {
    const size_t n = acc.size();
    const size_t reach = weights.size() / 2;
    const uint8_t* centre = taps[reach];
    int32_t* sum = acc.data();
    const uint16_t middle = static_cast<uint16_t>(weights[reach]);
    for (size_t i = 0; i < n; ++i) sum[i] = static_cast<int32_t>(static_cast<uint32_t>(middle) * uint16_t{centre[i]});
    for (size_t k = 0; k < reach; ++k) {
        const uint8_t* a = taps[k];
        const uint8_t* b = taps[weights.size() - 1 - k];
        const uint16_t w = static_cast<uint16_t>(weights[k]);
        for (size_t i = 0; i < n; ++i)
            sum[i] += static_cast<int32_t>(static_cast<uint32_t>(w) * static_cast<uint16_t>(a[i] + b[i]));
    }
    for (size_t i = 0; i < n; ++i) out[i] = Settle(acc[i]);
}

}  // namespace

bool mif::blur_gauss_rle(const MifRect* rect, double radius) {
    MifRect r;
    if (!validaterect(rect, &r)) return false;
    if (!(radius > 0)) return true;
    const double sigma = std::min(radius, 500.0);
    if (!EnsureDirect(dib_)) return false;
    PackedDib& work = dib_;
    const int channels = Channels(work);
    const int reach = std::max(1, static_cast<int>(std::ceil(3 * sigma)));
    const std::vector<int32_t> weights = GaussWeights(sigma, reach);

    // The rectangle grown by the kernel's reach (within the image) is the area read: beyond
    // the image's edge the edge pixel repeats.
    const int left = std::max(0, r.left - reach), right = std::min(width(), r.right + reach);
    const int top = std::max(0, r.top - reach), bottom = std::min(height(), r.bottom + reach);
    const size_t areaStride = static_cast<size_t>(right - left) * channels;
    std::vector<uint8_t> area(areaStride * (bottom - top));
    const size_t rowStart = static_cast<size_t>(r.left - left) * channels;
    const size_t rowBytes = static_cast<size_t>(r.right - r.left) * channels;

    // Across: every row of the grown area, but only the rectangle's columns. Each row is
    // first padded by the reach on both sides, so the taps need no edge cases.
    ParallelRows(bottom - top, int64_t{r.right - r.left} * channels * (reach + 1), [&](int begin, int end) {
        const int padWidth = (r.right - r.left) + 2 * reach;
        std::vector<uint8_t> padded(static_cast<size_t>(padWidth) * channels);
        std::vector<const uint8_t*> taps(weights.size());
        std::vector<int32_t> acc(rowBytes);
        for (int y = begin; y < end; ++y) {
            const uint8_t* src = work.row(top + y);
            for (int i = 0; i < padWidth; ++i) {
                const int sx = std::clamp(r.left - reach + i, 0, width() - 1);
                for (int c = 0; c < channels; ++c) padded[static_cast<size_t>(i) * channels + c] = src[static_cast<size_t>(sx) * channels + c];
            }
            for (size_t k = 0; k < taps.size(); ++k) taps[k] = &padded[k * channels];
            Convolve(taps, weights, acc, &area[areaStride * y + rowStart]);
        }
    });
    // Down: only the rectangle's rows are written.
    ParallelRows(r.bottom - r.top, int64_t{r.right - r.left} * channels * (reach + 1), [&](int begin, int end) {
        std::vector<const uint8_t*> taps(weights.size());
        std::vector<int32_t> acc(rowBytes);
        for (int y = r.top + begin; y < r.top + end; ++y) {
            for (int k = -reach; k <= reach; ++k)
                taps[k + reach] = &area[areaStride * (std::clamp(y + k, 0, height() - 1) - top) + rowStart];
            Convolve(taps, weights, acc, work.row(y) + static_cast<size_t>(r.left) * channels);
        }
    });
    return true;
}

}  // namespace lx
