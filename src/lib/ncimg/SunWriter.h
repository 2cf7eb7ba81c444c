// Encodes an image as an uncompressed standard Sun raster file: black-and-white images at
// 1 bit (set bits black), other palette images at 8 bits with their colour map, everything
// else as 24-bit BGR (alpha is dropped).
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

std::vector<uint8_t> EncodeSun(const PackedDib& dib);

}  // namespace lx
