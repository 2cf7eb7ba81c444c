// Encodes an image as an uncompressed little-endian baseline TIFF file in strips of about
// 64 KiB: grey images (the grey ramp, or black and white) as grey, other palette images
// (1, 4, 8 bits) with a colour map, colour as RGB, and 32-bit images with real alpha as
// RGBA with unassociated alpha.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

std::vector<uint8_t> EncodeTiff(const PackedDib& dib);

}  // namespace lx
