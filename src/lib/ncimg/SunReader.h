// Reads Sun raster files (".ras"): depths 1, 8, 24 and 32, raw or byte-run encoded, with
// or without a colour map, pixels in BGR order or (type 3) RGB order. 1 and 8 bits give
// palette images; 24 and 32 bits give 24-bit colour (32-bit BGRA when the spare byte of
// 32-bit pixels holds real alpha).
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadSun(std::span<const uint8_t> file);

}  // namespace lx
