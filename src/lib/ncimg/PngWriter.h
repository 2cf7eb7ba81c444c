// Encodes an image as PNG: palette images (1, 4, 8 bits) as indexed colour at their own
// depth, colour as 8-bit RGB, and 32-bit images with real alpha as RGBA. Rows are filtered
// with the usual per-row choice (smallest sum of absolute differences) and deflated by zlib.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

// Empty when the image is empty or cannot be encoded.
std::vector<uint8_t> EncodePng(const PackedDib& dib);

}  // namespace lx
