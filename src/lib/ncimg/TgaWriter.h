// Encodes an image as an uncompressed Truevision Targa file with the bottom-left origin:
// grey palette images as 8-bit grey, other palette images as 8-bit colour-mapped, colour
// as 24-bit, and 32-bit images with real alpha as 32-bit with 8 attribute bits.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

std::vector<uint8_t> EncodeTga(const PackedDib& dib);

}  // namespace lx
