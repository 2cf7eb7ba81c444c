// Reads X bitmaps (".xbm"), the C source form "#define name_width 16 ... static char
// name_bits[] = { 0x.., ... };", in both the X11 (bytes) and X10 (16-bit words) flavours.
// The result is a 1-bit image whose set bits (the foreground) are black.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadXbm(std::span<const uint8_t> file);

// True when the text starts like an X bitmap: a "#define" of a name ending in "_width".
bool LooksLikeXbm(std::span<const uint8_t> head);

}  // namespace lx
