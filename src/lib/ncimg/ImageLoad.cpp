#include "ImageLoad.h"

#include "FileBytes.h"
#include "ImageFormats.h"
#include "ImageLoadOrientation.h"
#include "ImageLoadSystem.h"
#include "ImageProbe.h"
#include "JpegReader.h"
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

// A JPEG file at 1/scaleDenom of its size with our decoder, upright; the kinds it leaves
// alone go whole to the system codec, which turns them upright itself.
std::optional<PackedDib> DecodeJpeg(std::span<const uint8_t> file, int scaleDenom = 1) {
    if (auto dib = ReadJpeg(file, scaleDenom)) {
        if (!OrientUpright(*dib, ReadExifOrientation(file))) return std::nullopt;
        return dib;
    }
    return DecodeWithSystemCodec(file, kImageJpeg);
}

bool SwapsSides(int orientation) { return orientation >= 5 && orientation <= 8; }

}  // namespace

std::optional<PackedDib> LoadImageBytes(std::span<const uint8_t> file, const std::filesystem::path& name) {
    const ImageType type = TypeOfWholeFile(file, name);
    if (type == kImageJpeg) return DecodeJpeg(file);
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
    if (type != kImageUnknown && type != kImageJpeg && !OwnReader(type)) return LoadWithSystemCodecOrPreview(path, type);
    const auto bytes = ReadWholeFile(path);
    if (!bytes) return std::nullopt;
    const ImageType known = TypeOfWholeFile(*bytes, path.filename());
    if (known == kImageJpeg) return DecodeJpeg(*bytes);
    if (Reader read = OwnReader(known)) return read(*bytes);
    return LoadWithSystemCodecOrPreview(path, known);
}

std::optional<PackedDib> LoadImageFileToCover(const std::filesystem::path& path, int wantWidth, int wantHeight,
                                              PictureSize* fullSize) {
    std::optional<PackedDib> dib;
    std::optional<JpegInfo> info;
    int orientation = 0;
    if (ProbeImageType(path) == kImageJpeg) {
        const auto bytes = ReadWholeFile(path);
        if (!bytes) return std::nullopt;
        orientation = ReadExifOrientation(*bytes);
        info = ReadJpegInfo(*bytes);
        int denom = 1;
        if (info && info->decodable)
            denom = SwapsSides(orientation) ? JpegScaleToCover(info->width, info->height, wantHeight, wantWidth)
                                            : JpegScaleToCover(info->width, info->height, wantWidth, wantHeight);
        dib = DecodeJpeg(*bytes, denom);
    } else {
        dib = LoadImageFile(path);
    }
    if (dib && fullSize) {
        *fullSize = {dib->width(), dib->height()};
        if (info && info->decodable) {
            *fullSize = {info->width, info->height};
            if (SwapsSides(orientation)) std::swap(fullSize->width, fullSize->height);
        }
    }
    return dib;
}

std::optional<PackedDib> LoadBmpFromMemory(std::span<const uint8_t> block) { return OwnReader(kImageBmp)(block); }

std::optional<PackedDib> LoadJpegFromMemory(std::span<const uint8_t> block) {
    if (block.size() < 3 || block[0] != 0xff || block[1] != 0xd8) return std::nullopt;
    return DecodeJpeg(block);
}

}  // namespace lx
