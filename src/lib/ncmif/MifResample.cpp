// Separable resampling for zoom and zoom_linear: each axis gets a table of integer weights
// (14-bit fixed point, each row of weights summing exactly to one), rows are resampled across
// first, then columns down. Shrinking by area averaging has only positive weights, so it can
// neither ring nor move the mean level; cubic weights can overshoot and every result is
// clamped to 0..255.
#include <algorithm>
#include <cmath>
#include <vector>

#include "MifPixels.h"
#include "mif.h"

namespace lx {

using namespace mifpix;

namespace {

constexpr int kWeightBits = 14;
constexpr int kOne = 1 << kWeightBits;
constexpr int kRound = 1 << (kWeightBits - 1);

enum class Kernel { Area, Cubic, Linear };

// For each output position: the first input index and `span` weights from it.
struct AxisWeights {
    int span = 0;
    std::vector<int> first;
    std::vector<int32_t> weights;  // span per output position
};

double CubicWeight(double x, double a) {
    x = std::fabs(x);
    if (x < 1) return ((a + 2) * x - (a + 3)) * x * x + 1;
    if (x < 2) return ((a * x - 5 * a) * x + 8 * a) * x - 4 * a;
    return 0;
}

AxisWeights MakeWeights(int inSize, int outSize, Kernel kernel, double a) {
    const double scale = static_cast<double>(inSize) / outSize;
    if (kernel == Kernel::Area && scale <= 1) kernel = Kernel::Cubic, a = -0.5;
    // The kernel is widened by the reduction factor so that shrinking does not alias.
    const double stretch = std::max(scale, 1.0);
    const double radius = kernel == Kernel::Area ? scale / 2 + 1 : (kernel == Kernel::Cubic ? 2 : 1) * stretch;
    AxisWeights table;
    table.span = std::min(inSize, static_cast<int>(std::ceil(2 * radius)) + 2);
    table.first.resize(static_cast<size_t>(outSize));
    table.weights.assign(static_cast<size_t>(outSize) * table.span, 0);
    std::vector<double> raw(static_cast<size_t>(table.span));
    for (int i = 0; i < outSize; ++i) {
        const double centre = (i + 0.5) * scale - 0.5;
        const int lowest = static_cast<int>(std::floor(centre - radius));
        const int first = std::clamp(lowest, 0, inSize - table.span);
        std::fill(raw.begin(), raw.end(), 0.0);
        for (int j = lowest; j <= static_cast<int>(std::ceil(centre + radius)); ++j) {
            double w;
            if (kernel == Kernel::Area) {
                // The share of input pixel j inside the output pixel's footprint.
                const double lo = i * scale, hi = (i + 1) * scale;
                w = std::max(0.0, std::min(hi, j + 1.0) - std::max(lo, static_cast<double>(j)));
            } else if (kernel == Kernel::Cubic) {
                w = CubicWeight((j - centre) / stretch, a);
            } else {
                w = std::max(0.0, 1 - std::fabs(j - centre) / stretch);
            }
            // Samples beyond the edge repeat the edge pixel.
            const int k = std::clamp(j, 0, inSize - 1) - first;
            if (k >= 0 && k < table.span) raw[k] += w;
        }
        double sum = 0;
        for (double w : raw) sum += w;
        if (sum == 0) raw[std::clamp(static_cast<int>(std::lround(centre)) - first, 0, table.span - 1)] = sum = 1;
        int32_t* out = &table.weights[static_cast<size_t>(i) * table.span];
        int total = 0, biggest = 0;
        for (int k = 0; k < table.span; ++k) {
            out[k] = static_cast<int32_t>(std::lround(raw[k] / sum * kOne));
            total += out[k];
            if (std::abs(out[k]) > std::abs(out[biggest])) biggest = k;
        }
        out[biggest] += kOne - total;  // rounding must not brighten or darken
        table.first[i] = first;
    }
    // Trim the zero weights at both ends shared by every position, for speed.
    int lead = table.span, tail = table.span;
    for (int i = 0; i < outSize; ++i) {
        const int32_t* w = &table.weights[static_cast<size_t>(i) * table.span];
        int l = 0, t = 0;
        while (l < table.span && w[l] == 0) ++l;
        while (t < table.span && w[table.span - 1 - t] == 0) ++t;
        lead = std::min(lead, l);
        tail = std::min(tail, t);
    }
    const int span = std::max(1, table.span - lead - std::min(tail, table.span - lead));
    if (span < table.span) {
        std::vector<int32_t> trimmed(static_cast<size_t>(outSize) * span);
        for (int i = 0; i < outSize; ++i) {
            std::copy_n(&table.weights[static_cast<size_t>(i) * table.span + lead], span, &trimmed[static_cast<size_t>(i) * span]);
            table.first[i] += lead;
        }
        table.weights = std::move(trimmed);
        table.span = span;
    }
    return table;
}

inline uint8_t ClampSample(int32_t acc) { return static_cast<uint8_t>(std::clamp(acc >> kWeightBits, 0, 255)); }

template <int C>
void ResampleRow(const uint8_t* src, uint8_t* dst, const AxisWeights& axis, int outWidth) {
    const int span = axis.span;
    for (int x = 0; x < outWidth; ++x) {
        const int32_t* w = &axis.weights[static_cast<size_t>(x) * span];
        const uint8_t* p = src + static_cast<size_t>(axis.first[x]) * C;
        int32_t acc[C];
        for (int c = 0; c < C; ++c) acc[c] = kRound;
        for (int k = 0; k < span; ++k, p += C)
            for (int c = 0; c < C; ++c) acc[c] += w[k] * p[c];
        for (int c = 0; c < C; ++c) dst[x * C + c] = ClampSample(acc[c]);
    }
}

// A direct image (1, 3 or 4 bytes per pixel) resampled to width x height.
PackedDib Resample(const PackedDib& src, int width, int height, Kernel kx, Kernel ky, double a) {
    PackedDib out = PackedDib::Create(width, height, src.bitCount());
    if (out.empty()) return out;
    const int channels = Channels(src);
    const AxisWeights across = MakeWeights(src.width(), width, kx, a);
    const AxisWeights down = MakeWeights(src.height(), height, ky, a);

    // Only the source rows some output row reads need resampling across.
    const int firstRow = down.first.front();
    const int lastRow = down.first.back() + down.span;
    const size_t midStride = static_cast<size_t>(width) * channels;
    std::vector<uint8_t> mid(midStride * (lastRow - firstRow));
    ParallelRows(lastRow - firstRow, int64_t{width} * across.span * channels, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const uint8_t* s = src.row(firstRow + y);
            uint8_t* d = &mid[midStride * y];
            if (channels == 1) ResampleRow<1>(s, d, across, width);
            else if (channels == 3) ResampleRow<3>(s, d, across, width);
            else ResampleRow<4>(s, d, across, width);
        }
    });
    ParallelRows(height, int64_t{width} * down.span * channels, [&](int begin, int end) {
        std::vector<int32_t> acc(midStride);
        for (int y = begin; y < end; ++y) {
            std::fill(acc.begin(), acc.end(), kRound);
            const int32_t* w = &down.weights[static_cast<size_t>(y) * down.span];
            for (int k = 0; k < down.span; ++k) {
                const uint8_t* m = &mid[midStride * (down.first[y] + k - firstRow)];
                const int32_t wk = w[k];
                for (size_t i = 0; i < midStride; ++i) acc[i] += wk * m[i];
            }
            uint8_t* d = out.row(y);
            for (size_t i = 0; i < midStride; ++i) d[i] = ClampSample(acc[i]);
        }
    });
    if (src.bitCount() == 8) std::copy(src.palette().begin(), src.palette().end(), out.palette().begin());
    return out;
}

}  // namespace

bool mif::zoom(int newWidth, int newHeight, int mode, int flag) {
    if (empty() || newWidth <= 0 || newHeight <= 0) return false;
    PackedDib holder;
    const PackedDib& src = DirectView(dib_, holder);
    if (src.empty()) return false;
    PackedDib out;
    if (mode == kZoomHighQuality) {
        out = Resample(src, newWidth, newHeight, Kernel::Area, Kernel::Area, -0.5);
    } else {
        const double a = -std::clamp(mode, 0, 9) / 10.0;
        out = Resample(src, newWidth, newHeight, Kernel::Cubic, Kernel::Cubic, a);
    }
    if (out.empty()) return false;
    dib_ = std::move(out);
    return true;
}

bool mif::zoom_linear(int newWidth, int newHeight) {
    if (empty() || newWidth <= 0 || newHeight <= 0) return false;
    PackedDib holder;
    const PackedDib& src = DirectView(dib_, holder);
    if (src.empty()) return false;
    PackedDib out = Resample(src, newWidth, newHeight, Kernel::Linear, Kernel::Linear, 0);
    if (out.empty()) return false;
    dib_ = std::move(out);
    return true;
}

}  // namespace lx
