// Encodes an image as a Windows bitmap file: the 14-byte file header followed by the
// packed DIB exactly as held (any depth, palette and masks kept).
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

// Empty when the image is empty.
std::vector<uint8_t> EncodeBmp(const PackedDib& dib);

}  // namespace lx
