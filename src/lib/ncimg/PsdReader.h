// Reads the merged (flattened) image that Photoshop files (".psd") carry after their
// layers: bitmap, grey, indexed, RGB and CMYK modes, 8 or 16 bits per channel, raw or
// PackBits-compressed. Layers themselves are not read. Grey gives an 8-bit grey image,
// indexed an 8-bit palette image, bitmap a 1-bit image, RGB and CMYK 24-bit colour, or
// 32-bit BGRA when an extra channel holds transparency.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> ReadPsd(std::span<const uint8_t> file);

}  // namespace lx
