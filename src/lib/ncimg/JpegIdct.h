// Inverse DCT of one dequantised 8x8 block into samples, at full size or reduced.
//
// The full-size transform is the accurate integer one of the common decoders (13-bit
// constants, two passes, two extra bits kept between them), so our output matches theirs
// sample for sample; the reduced ones turn a block into 4x4, 2x2 or 1x1 samples directly
// from its low frequencies (the same decoders' reduced transforms), which is what makes a
// 1/2, 1/4 or 1/8 size decode cheap. Outputs are level-shifted by 128 and clamped to 0..255.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

// Coefficients and quantisation steps in natural order; `out` rows are `stride` bytes apart.
using IdctFunction = void (*)(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);

void IdctIslow8(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);
void IdctReduced4(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);
void IdctReduced2(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);
void IdctReduced1(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);

// A block with no AC coefficient comes out flat at every size: each transform above gives
// (DC * step + 4) / 8 (rounded down) plus 128, clamped. `size` samples a side.
void IdctFlat(int16_t dc, uint16_t quant, uint8_t* out, ptrdiff_t stride, int size);

// The transform for an output block of `size` (8, 4, 2 or 1) samples a side; for 8 the
// fastest variant this processor runs, all giving the same samples.
IdctFunction IdctFor(int size);

}  // namespace lx
