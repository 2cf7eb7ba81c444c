// Reads ZSoft PCX files: 1 bit, 1 bit in 2 to 4 planes (16 colours), 4 bits packed,
// 8-bit palette (the 256-colour table at the file's end) and 24/32-bit colour as 3 or 4
// planes, run-length encoded or raw. Palette images keep their depth (planar ones become
// 4-bit); colour gives 24 bits, or 32-bit BGRA when a fourth plane holds alpha.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadPcx(std::span<const uint8_t> file);

// True when the 128-byte header has the PCX mark and a version, depth and plane count we know.
bool LooksLikePcx(std::span<const uint8_t> head);

}  // namespace lx
