// Encodes an image as a binary portable any-map: grey images (a grey palette, including
// black-and-white) as PGM ("P5"), everything else as PPM ("P6"), 8 bits per sample.
// Alpha is dropped.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

std::vector<uint8_t> EncodePnm(const PackedDib& dib);

}  // namespace lx
