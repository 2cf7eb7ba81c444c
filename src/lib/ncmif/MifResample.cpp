// Separable resampling for zoom and zoom_linear: each axis gets a table of integer weights
// (each position's summing exactly to one, so no kernel moves the mean level), and every
// output row is resampled down from the rows it needs, then across, both in SIMD
// (MifResamplePasses). Results are clamped to 0..255 and the edge pixels repeat outwards.
//
// Shrinking uses a Lanczos window of four lobes stretched by the reduction factor, so that
// detail finer than the new size can hold is filtered out rather than folded back as moire,
// while the detail it can hold keeps its contrast (within 1 % up to two thirds of the new
// Nyquist frequency). Its cut-off sits 3 % below that frequency: the patterns just above it,
// which no kernel of this length can remove fully, come through at less than half strength.
// Enlarging uses cubic kernels.
#include <algorithm>
#include <cmath>
#include <vector>

#include "MifPixels.h"
#include "MifResamplePasses.h"
#include "mif.h"

namespace lx {

using namespace mifpix;

namespace {

constexpr int kOne = 1 << kWeightBits;
constexpr double kPi = 3.14159265358979323846;
constexpr double kLanczosLobes = 4;
constexpr double kLanczosCutOff = 1.03;  // how much lower than the new Nyquist frequency

enum class Kernel { Lanczos, Cubic, Linear };

double CubicWeight(double x, double a) {
    x = std::fabs(x);
    if (x < 1) return ((a + 2) * x - (a + 3)) * x * x + 1;
    if (x < 2) return ((a * x - 5 * a) * x + 8 * a) * x - 4 * a;
    return 0;
}

double LanczosWeight(double x) {
    x = std::fabs(x);
    if (x < 1e-9) return 1;
    if (x >= kLanczosLobes) return 0;
    const double t = kPi * x;
    return kLanczosLobes * std::sin(t) * std::sin(t / kLanczosLobes) / (t * t);
}

AxisWeights MakeWeights(int inSize, int outSize, Kernel kernel, double a) {
    const double scale = static_cast<double>(inSize) / outSize;
    if (kernel == Kernel::Lanczos && scale <= 1) kernel = Kernel::Cubic, a = -0.5;
    // The kernel is widened by the reduction factor so that shrinking does not alias.
    const double stretch = std::max(scale, 1.0) * (kernel == Kernel::Lanczos ? kLanczosCutOff : 1.0);
    const double reach = kernel == Kernel::Lanczos ? kLanczosLobes : (kernel == Kernel::Cubic ? 2 : 1);
    const double radius = reach * stretch;
    const int span = std::min(inSize, static_cast<int>(std::ceil(2 * radius)) + 2);
    std::vector<int32_t> weights(static_cast<size_t>(outSize) * span, 0);
    std::vector<int> first(static_cast<size_t>(outSize));
    std::vector<double> raw(static_cast<size_t>(span));
    for (int i = 0; i < outSize; ++i) {
        const double centre = (i + 0.5) * scale - 0.5;
        const int lowest = static_cast<int>(std::floor(centre - radius));
        first[i] = std::clamp(lowest, 0, inSize - span);
        std::fill(raw.begin(), raw.end(), 0.0);
        for (int j = lowest; j <= static_cast<int>(std::ceil(centre + radius)); ++j) {
            const double x = (j - centre) / stretch;
            const double w = kernel == Kernel::Lanczos ? LanczosWeight(x)
                             : kernel == Kernel::Cubic ? CubicWeight(x, a)
                                                       : std::max(0.0, 1 - std::fabs(x));
            // Samples beyond the edge repeat the edge pixel.
            const int k = std::clamp(j, 0, inSize - 1) - first[i];
            if (k >= 0 && k < span) raw[k] += w;
        }
        double sum = 0;
        for (double w : raw) sum += w;
        if (sum == 0) raw[std::clamp(static_cast<int>(std::lround(centre)) - first[i], 0, span - 1)] = sum = 1;
        int32_t* out = &weights[static_cast<size_t>(i) * span];
        int total = 0, biggest = 0;
        for (int k = 0; k < span; ++k) {
            out[k] = static_cast<int32_t>(std::lround(raw[k] / sum * kOne));
            total += out[k];
            if (std::abs(out[k]) > std::abs(out[biggest])) biggest = k;
        }
        out[biggest] += kOne - total;  // rounding must not brighten or darken
    }
    // Drop the zero weights at both ends shared by every position, for speed, and pad the
    // rest to whole SIMD steps.
    int lead = span, tail = span;
    for (int i = 0; i < outSize; ++i) {
        const int32_t* w = &weights[static_cast<size_t>(i) * span];
        int l = 0, t = 0;
        while (l < span && w[l] == 0) ++l;
        while (t < span && w[span - 1 - t] == 0) ++t;
        lead = std::min(lead, l);
        tail = std::min(tail, t);
    }
    AxisWeights table;
    table.taps = std::max(1, span - lead - std::min(tail, span - lead));
    table.span = (table.taps + AxisWeights::kSpanStep - 1) / AxisWeights::kSpanStep * AxisWeights::kSpanStep;
    table.first.resize(static_cast<size_t>(outSize));
    table.weights.assign(static_cast<size_t>(outSize) * table.span, 0);
    for (int i = 0; i < outSize; ++i) {
        table.first[i] = first[i] + lead;
        for (int k = 0; k < table.taps; ++k)
            table.weights[static_cast<size_t>(i) * table.span + k] = static_cast<int16_t>(weights[static_cast<size_t>(i) * span + lead + k]);
    }
    return table;
}

// The vertical passes take taps two rows at a time.
int PairedTaps(const AxisWeights& axis) { return (axis.taps + 1) & ~1; }

// Room a row needs past its end for the horizontal pass's whole SIMD steps.
size_t PaddedRow(int pixels, int channels) {
    return (static_cast<size_t>(pixels) + AxisWeights::kSpanStep) * channels + 4;
}

// Down first, one output row at a time: each row is resampled down from the source rows into
// a 16-bit row of the full width, then across into the output. Nothing but that row is kept.
void DownThenAcross(const PackedDib& src, PackedDib& out, const AxisWeights& across, const AxisWeights& down) {
    const int channels = Channels(src);
    const int count = src.width() * channels;
    const int taps = PairedTaps(down);
    ParallelRows(out.height(), int64_t{count} * taps + int64_t{out.width()} * channels * across.taps, [&](int begin, int end) {
        std::vector<int16_t> mid(PaddedRow(src.width(), channels), 0);
        std::vector<const uint8_t*> rows(static_cast<size_t>(taps));
        for (int y = begin; y < end; ++y) {
            for (int k = 0; k < taps; ++k) rows[k] = src.row(std::min(down.first[y] + k, src.height() - 1));
            VerticalPass(rows.data(), &down.weights[static_cast<size_t>(y) * down.span], taps, count, mid.data());
            HorizontalPass(mid.data(), channels, across, out.row(y));
        }
    });
}

// Across first, for shapes where that is far less work (a much narrower output that is also
// taller than the source): the source rows some output row needs are resampled across into
// a 16-bit image, which is then resampled down.
void AcrossThenDown(const PackedDib& src, PackedDib& out, const AxisWeights& across, const AxisWeights& down) {
    const int channels = Channels(src);
    const int count = out.width() * channels;
    const int taps = PairedTaps(down);
    const int firstRow = down.first.front();
    const int endRow = std::min(src.height(), down.first.back() + taps);
    std::vector<int16_t> mid(static_cast<size_t>(count) * (endRow - firstRow));
    ParallelRows(endRow - firstRow, int64_t{count} * across.taps, [&](int begin, int end) {
        std::vector<uint8_t> padded(PaddedRow(src.width(), channels), 0);
        for (int y = begin; y < end; ++y) {
            std::copy_n(src.row(firstRow + y), static_cast<size_t>(src.width()) * channels, padded.begin());
            HorizontalPass(padded.data(), channels, across, &mid[static_cast<size_t>(count) * y]);
        }
    });
    ParallelRows(out.height(), int64_t{count} * taps, [&](int begin, int end) {
        std::vector<const int16_t*> rows(static_cast<size_t>(taps));
        for (int y = begin; y < end; ++y) {
            for (int k = 0; k < taps; ++k)
                rows[k] = &mid[static_cast<size_t>(count) * (std::min(down.first[y] + k, endRow - 1) - firstRow)];
            VerticalPass(rows.data(), &down.weights[static_cast<size_t>(y) * down.span], taps, count, out.row(y));
        }
    });
}

// A direct image (1, 3 or 4 bytes per pixel) resampled to width x height.
PackedDib Resample(const PackedDib& src, int width, int height, Kernel kx, Kernel ky, double a) {
    PackedDib out = PackedDib::Create(width, height, src.bitCount());
    if (out.empty()) return out;
    const AxisWeights across = MakeWeights(src.width(), width, kx, a);
    const AxisWeights down = MakeWeights(src.height(), height, ky, a);
    // Multiply-adds of each order. Down first needs no image in between and its steps are
    // cheaper, so it is kept unless the other order saves most of the work.
    const int64_t rowsNeeded = std::min(src.height(), down.first.back() + PairedTaps(down)) - down.first.front();
    const int64_t downFirst = int64_t{height} * (int64_t{src.width()} * PairedTaps(down) + int64_t{width} * across.taps);
    const int64_t acrossFirst = rowsNeeded * width * across.taps + int64_t{height} * width * PairedTaps(down);
    if (downFirst <= 2 * acrossFirst) DownThenAcross(src, out, across, down);
    else AcrossThenDown(src, out, across, down);
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
        out = Resample(src, newWidth, newHeight, Kernel::Lanczos, Kernel::Lanczos, -0.5);
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
