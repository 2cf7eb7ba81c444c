// Reads SGI image files (".sgi", ".rgb"): verbatim or run-length encoded, 1 to 4
// channels, 8 or 16 bits per channel. One channel gives an 8-bit grey image, three give
// 24-bit colour; a second (grey) or fourth (colour) channel is alpha and gives 32-bit BGRA
// when it is not fully opaque. 16-bit samples are scaled to 8 bits.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadSgi(std::span<const uint8_t> file);

// True for the SGI magic number followed by a storage flag and 1 or 2 bytes per sample.
bool LooksLikeSgi(std::span<const uint8_t> head);

}  // namespace lx
