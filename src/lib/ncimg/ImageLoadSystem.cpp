// Builds without a system codec decline every format the library does not read itself.
#include "ImageLoadSystem.h"

#ifndef _WIN32
namespace lx {

std::optional<PackedDib> LoadWithSystemCodec(const std::filesystem::path&, ImageType) { return std::nullopt; }

std::optional<PackedDib> DecodeWithSystemCodec(std::span<const uint8_t>, ImageType) { return std::nullopt; }

}  // namespace lx
#endif
