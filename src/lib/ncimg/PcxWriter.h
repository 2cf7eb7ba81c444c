// Encodes an image as a run-length encoded ZSoft PCX file (version 5): black-and-white
// images as one 1-bit plane, other palette images as 8 bits with the 256-colour table at
// the end, colour as 24 bits in three planes (alpha is dropped).
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

std::vector<uint8_t> EncodePcx(const PackedDib& dib);

}  // namespace lx
