// Reads X pixmaps (XPM 3, the C source form "static char *name[] = { "w h n cpp", ... }").
// Colours come from the "c" key (else "g", "g4", "m"): "#rgb", "#rrggbb", "#rrrrggggbbbb"
// or one of the common X11 colour names; "None" is transparent. Up to 256 opaque colours
// give an 8-bit palette image; otherwise 24-bit colour, or 32-bit BGRA when "None" is used.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace lx {

std::optional<PackedDib> ReadXpm(std::span<const uint8_t> file);

// True when the text starts with the "/* XPM */" comment.
bool LooksLikeXpm(std::span<const uint8_t> head);

// An X11 colour name ("red", "light grey", "gray50"), any case, blanks ignored, as
// 0xRRGGBB; nullopt for names outside the common set.
std::optional<uint32_t> XColourByName(std::string_view name);

}  // namespace lx
