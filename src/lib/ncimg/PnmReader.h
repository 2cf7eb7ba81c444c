// Reads the portable any-map family: P1/P4 bitmaps (1-bit image, 1 = black), P2/P5 grey
// maps (8-bit grey palette) and P3/P6 pixel maps (24-bit), text or binary, with any
// maximum value up to 65535 scaled to 8 bits. Only the first image of a file is read.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadPnm(std::span<const uint8_t> file);

// True for "P1" to "P6" followed by white space.
bool LooksLikePnm(std::span<const uint8_t> head);

}  // namespace lx
