// Chroma upsampling for the JPEG decoder: the "fancy" triangle filters of the common
// decoders (each output sample 3/4 of the nearer input and 1/4 of the next, with their
// alternating rounding) and plain replication for the other ratios.
//
// Inputs are rows of a component at its own resolution; callers pass the row below or
// above for the vertical filters (the edge row again at the picture's top and bottom).
#pragma once

#include <cstdint>

namespace lx {

// Doubles `width` samples (width >= 2) into 2 * width.
void UpsampleH2V1Fancy(const uint8_t* in, int width, uint8_t* out);
// Doubles `width` samples (width >= 2) across and one of two rows down: `nearRow` is the
// row the output lies in, `farRow` the neighbour above or below it.
void UpsampleH2V2Fancy(const uint8_t* nearRow, const uint8_t* farRow, int width, uint8_t* out);
// One of two output rows at the same width; `below` says the output row is the lower half.
void UpsampleH1V2Fancy(const uint8_t* nearRow, const uint8_t* farRow, int width, bool below, uint8_t* out);
// out[x] = in[x * inGroup / outGroup] for x < outWidth.
void UpsampleReplicate(const uint8_t* in, int inGroup, int outGroup, int outWidth, uint8_t* out);

}  // namespace lx
