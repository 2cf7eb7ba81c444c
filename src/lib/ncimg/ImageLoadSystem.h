// The seam between the portable loader and the operating system's image codecs. On
// Windows these are defined over WIC (win32/WicLoader.cpp); elsewhere they decline, so
// the portable build loads only the formats the library reads itself.
#pragma once

#include "ImageFormats.h"
#include "PackedDib.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace lx {

// The first frame of the file; `type` is what the probe found (0 when it found nothing).
std::optional<PackedDib> LoadWithSystemCodec(const std::filesystem::path& path, ImageType type);

// The first frame of an encoded image held in memory.
std::optional<PackedDib> DecodeWithSystemCodec(std::span<const uint8_t> encoded, ImageType type);

}  // namespace lx
