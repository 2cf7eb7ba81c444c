// Forward DCT and quantisation of one 8x8 block of samples.
//
// The transform is the scaled floating-point DCT of Arai, Agui and Nakajima: its outputs
// carry a known per-coefficient scale, which is folded into the quantisation divisors,
// so quantising costs one multiply per coefficient. Results are rounded to nearest and
// written in zigzag order, ready for entropy coding.
#pragma once

#include "JpegSimd.h"
#include "JpegTables.h"

#include <cstddef>
#include <cstdint>

namespace lx {

// One quantisation table prepared for the transform: reciprocal divisors, in the
// transform's output order.
struct DctQuantizer {
    alignas(16) float reciprocal[64];
};

DctQuantizer MakeDctQuantizer(const QuantTable& table);

// Transforms the 8x8 samples starting at `samples` (rows `stride` bytes apart), level-
// shifted to -128..127 on the way in, and stores the quantised coefficients in zigzag order.
void ForwardDctQuantize(const uint8_t* samples, ptrdiff_t stride, const DctQuantizer& quantizer, int16_t* zigzag);

// The same for `blocks` blocks side by side (samples 8 bytes apart), their coefficients
// stored one block after the other.
void ForwardDctQuantizeRow(const uint8_t* samples, ptrdiff_t stride, int blocks, const DctQuantizer& quantizer,
                           int16_t* zigzag, JpegSimd simd = BestJpegSimd());

}  // namespace lx
