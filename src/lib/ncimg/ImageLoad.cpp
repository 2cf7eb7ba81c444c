#include "ImageLoad.h"

#include "FileBytes.h"
#include "ImageFormats.h"
#include "ImageLoadSystem.h"
#include "ImageProbe.h"
#include "RawPreview.h"

#include <algorithm>
#include <vector>

namespace lx {
namespace {

using Reader = std::optional<PackedDib> (*)(std::span<const uint8_t>);

// The reader of this library for a type, or null when the system's codecs read it.
Reader OwnReader(ImageType type) {
    const ImageFormat* format = FindImageFormat(type);
    return format ? format->read : nullptr;
}

// With the whole file at hand, a format without a signature may be told by its name and a
// consistent header.
ImageType TypeOfWholeFile(std::span<const uint8_t> file, const std::filesystem::path& name) {
    const size_t tailSize = std::min<size_t>(file.size(), 26);
    return ProbeImageBytesTrustingName(file.first(std::min(file.size(), kProbeHeadBytes)), file.last(tailSize), name);
}

// A camera raw file that no system codec decodes shows its largest embedded image.
std::optional<PackedDib> LoadWithSystemCodecOrPreview(const std::filesystem::path& path, ImageType type) {
    auto dib = LoadWithSystemCodec(path, type);
    if (!dib && IsCameraRawType(type)) return LoadRawPreview(path);
    return dib;
}

}  // namespace

std::optional<PackedDib> LoadImageBytes(std::span<const uint8_t> file, const std::filesystem::path& name) {
    const ImageType type = TypeOfWholeFile(file, name);
    if (Reader read = OwnReader(type)) return read(file);
    auto dib = DecodeWithSystemCodec(file, type);
    if (!dib && IsCameraRawType(type)) {
        MemorySource source(file);
        if (const auto preview = FindRawPreview(source)) return DecodeRawPreview(*preview);
    }
    return dib;
}

std::optional<PackedDib> LoadImageFile(const std::filesystem::path& path) {
    const ImageType type = ProbeImageType(path);
    // Formats of our own are read whole; the rest is left to the system codec, which reads
    // the file itself (a camera raw file may be tens of megabytes it never needs whole).
    if (type != kImageUnknown && !OwnReader(type)) return LoadWithSystemCodecOrPreview(path, type);
    const auto bytes = ReadWholeFile(path);
    if (!bytes) return std::nullopt;
    const ImageType known = TypeOfWholeFile(*bytes, path.filename());
    if (Reader read = OwnReader(known)) return read(*bytes);
    return LoadWithSystemCodecOrPreview(path, known);
}

std::optional<PackedDib> LoadBmpFromMemory(std::span<const uint8_t> block) { return OwnReader(kImageBmp)(block); }

std::optional<PackedDib> LoadJpegFromMemory(std::span<const uint8_t> block) {
    if (block.size() < 3 || block[0] != 0xff || block[1] != 0xd8) return std::nullopt;
    return DecodeWithSystemCodec(block, kImageJpeg);
}

}  // namespace lx
