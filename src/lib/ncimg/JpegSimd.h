// Which vector instructions the JPEG codec's inner loops use (the decoder's transform too). Every loop has a path for
// plain x86-64 (SSE2, or portable code elsewhere) and, where it pays, one for AVX2 (with
// BMI1 and BMI2), chosen while running when the processor has them; the forward DCT also
// has one for AVX-512 (two blocks per register). All paths give the same results to the
// bit; tests run them side by side.
#pragma once

namespace lx {

// In order: each level has the instructions of the ones before it.
enum class JpegSimd { Baseline, Avx2, Avx512 };

// The widest level this processor runs (asked once).
JpegSimd BestJpegSimd();

}  // namespace lx
