// Encodes an image as a run-length encoded SGI image file, 8 bits per channel: grey images
// (the grey ramp) as one channel, 32-bit images with real alpha as four, everything else
// as three (RGB).
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

std::vector<uint8_t> EncodeSgi(const PackedDib& dib);

// One row in SGI's run-length form, ending with its zero counter.
void SgiEncodeRow(const uint8_t* samples, size_t count, std::vector<uint8_t>& out);

}  // namespace lx
