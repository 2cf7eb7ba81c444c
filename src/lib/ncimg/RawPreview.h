// Camera raw files that no installed codec decodes still show: the loader falls back to the
// largest image the file embeds (the camera's full-size or screen-size JPEG preview, or an
// uncompressed RGB thumbnail), found through the Exif reader and turned upright.
#pragma once

#include "ByteSource.h"
#include "ExifRecord.h"
#include "PackedDib.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace lx {

struct RawPreview {
    EmbeddedFormat format = EmbeddedFormat::Jpeg;
    std::vector<uint8_t> bytes;  // a JPEG as stored, or a BMP file image of the thumbnail
    int orientation = 0;         // the raw file's own orientation tag, 0 when it has none
};

// The largest embedded image of the source; nullopt when it embeds none that can be read.
std::optional<RawPreview> FindRawPreview(ByteSource& source);

// The preview decoded: a bitmap thumbnail by our own reader, a JPEG by the system's decoder
// (so only where there is one). A JPEG that carries its own orientation is turned by that,
// else the raw file's orientation applies.
std::optional<PackedDib> DecodeRawPreview(const RawPreview& preview);

std::optional<PackedDib> LoadRawPreview(const std::filesystem::path& path);

}  // namespace lx
