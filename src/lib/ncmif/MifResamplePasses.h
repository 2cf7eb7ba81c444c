// The inner loops of separable resampling, in SSE2 and (chosen at run time) AVX2.
// Internal to the image class's resampling.
//
// Samples pass through two precisions: 8-bit pixels, and 16-bit intermediates holding a
// level times 64 (so a pass between them keeps six fraction bits and the overshoot of a
// kernel with negative lobes). Weights are 14-bit fixed point, each position's summing to
// exactly 1 << 14.
#pragma once

#include <cstdint>
#include <vector>

namespace lx::mifpix {

constexpr int kWeightBits = 14;
constexpr int kMidFractionBits = 6;

// For each output position along one axis: the first input index and `span` weights from it.
// Only the first `taps` may be non-zero, and the inputs they name lie inside the image;
// `span` rounds `taps` up to a multiple of `kSpanStep` with zero weights, whose inputs may
// lie past the end (callers pad their rows for them).
struct AxisWeights {
    static constexpr int kSpanStep = 8;
    int taps = 0;
    int span = 0;
    std::vector<int> first;
    std::vector<int16_t> weights;  // span per output position
};

// One output row from `span` input rows: out[i] = sum over k of weights[k] * rows[k][i],
// for i in [0, count). 8-bit in gives 16-bit intermediates out, and the other way round.
void VerticalPass(const uint8_t* const* rows, const int16_t* weights, int span, int count, int16_t* out);
void VerticalPass(const int16_t* const* rows, const int16_t* weights, int span, int count, uint8_t* out);

// One row resampled across: `channels` (1, 3 or 4) interleaved samples per pixel. `in` must be
// readable kSpanStep pixels plus four samples past the last input pixel.
void HorizontalPass(const uint8_t* in, int channels, const AxisWeights& axis, int16_t* out);
void HorizontalPass(const int16_t* in, int channels, const AxisWeights& axis, uint8_t* out);

}  // namespace lx::mifpix
