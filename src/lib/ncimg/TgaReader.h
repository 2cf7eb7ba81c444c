// Reads Truevision Targa files: colour-mapped, true-colour and grey images, raw or
// run-length encoded, 8, 15, 16, 24 and 32 bits, any of the four origins. Colour-mapped
// and grey files give 8-bit palette images, the rest 24-bit colour, or 32-bit BGRA when
// the file carries real alpha. Malformed data gives nullopt.
//
// The format has no signature; LooksLikeTga checks the header fields for consistency and
// is meant for choosing a reader when the name says ".tga", not for sniffing alone.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadTga(std::span<const uint8_t> file);

bool LooksLikeTga(std::span<const uint8_t> head);

// True when the file ends with the footer of a version 2 Targa file.
bool HasTgaFooter(std::span<const uint8_t> tail);

}  // namespace lx
