// Vector versions of the full-size inverse DCT (JpegIdct.h). They run the same formulas as
// the scalar one (JpegIdctKernel.h) in 32-bit lanes, so they give the same samples for every
// block whose sums fit 32 bits, which all real data does. SSE2 is always there on x86-64;
// AVX2 is chosen at run time when the processor reports it (JpegSimd.h).
#pragma once

#include "JpegIdct.h"

namespace lx {

#if defined(__x86_64__) || defined(_M_X64)
#define LX_JPEG_X86_SIMD 1
void IdctIslow8Sse2(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);
void IdctIslow8Avx2(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride);
#endif

// The fastest full-size transform this processor runs.
IdctFunction BestIdctIslow8();

}  // namespace lx
