// Reads Windows and OS/2 bitmap files ("BM"): every depth from 1 to 32 bits, RLE4 and
// RLE8, bit-field masks with or without alpha, bottom-up and top-down rows. The result is
// a palette image at the file's own depth for 1, 4 and 8 bits, 24-bit colour otherwise,
// and 32-bit BGRA only when the file carries real alpha. Malformed data gives nullopt.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadBmp(std::span<const uint8_t> file);

// True when the file starts with "BM" and an information header size some writer uses.
bool LooksLikeBmp(std::span<const uint8_t> head);

}  // namespace lx
