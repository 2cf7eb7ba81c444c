// Sample preparation for the JPEG encoder: RGB to YCbCr conversion, the optional input
// smoothing filter, and 2x2 chroma downsampling.
//
// Conversion uses the JFIF equations in 14-bit fixed point. Smoothing is the classic
// filter of the common JPEG tools: each sample keeps weight 1 - 8 * SF and each of its
// eight neighbours contributes SF, with SF = smoothing / 1024 (smoothing 0..100); when
// downsampling, the smoothed values are averaged directly in one step. Callers pass the
// rows above and below (edge rows repeated at the picture's top and bottom); columns
// beyond either end repeat the edge sample.
#pragma once

#include "JpegSimd.h"

#include <cstdint>

namespace lx {

// Converts `width` pixels (blue, green, red first in each pixel of 3 or 4 bytes) and
// repeats the last converted sample up to `paddedWidth`.
void ConvertRowToYcc(const uint8_t* bgr, int pixelBytes, int width, int paddedWidth, uint8_t* y,
                     uint8_t* cb, uint8_t* cr, JpegSimd simd = BestJpegSimd());

// Conversion and downsampling at once for two rows of 4:2:0 sampling without smoothing: the luma of each
// row, and the chroma of each 2x2 square from the square's summed colour (the mean of its
// four pixels' chroma, rounded once). An odd last column pairs with itself. Luma is padded
// to `paddedWidth` and chroma to half that by repeating the last sample.
void ConvertRowPairTo420(const uint8_t* top, const uint8_t* bottom, int pixelBytes, int width, int paddedWidth,
                         uint8_t* yTop, uint8_t* yBottom, uint8_t* cb, uint8_t* cr,
                         JpegSimd simd = BestJpegSimd());

// One full-resolution row of the smoothing filter.
void SmoothRow(const uint8_t* above, const uint8_t* row, const uint8_t* below, int width,
               int smoothing, uint8_t* out, JpegSimd simd = BestJpegSimd());

// One half-size row of the smoothed input, each output the mean of a 2x2 square of
// smoothed samples read from rows `top` and `bottom`; `above` and `below` border them.
// `outWidth` outputs read 2 * outWidth inputs per row.
void SmoothDownsampleRow(const uint8_t* above, const uint8_t* top, const uint8_t* bottom,
                         const uint8_t* below, int outWidth, int smoothing, uint8_t* out,
                         JpegSimd simd = BestJpegSimd());

}  // namespace lx
