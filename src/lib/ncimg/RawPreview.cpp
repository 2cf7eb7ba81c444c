#include "RawPreview.h"

#include "BmpReader.h"
#include "EmbeddedImage.h"
#include "ExifContainer.h"
#include "ExifReader.h"
#include "ImageLoadOrientation.h"
#include "ImageLoadSystem.h"

namespace lx {

std::optional<RawPreview> FindRawPreview(ByteSource& source) {
    const auto record = ReadExifRecord(source, true);
    if (!record) return std::nullopt;
    const int chosen = ChooseEmbeddedImage(record->images, EmbeddedChoice::Largest);
    if (chosen < 0) return std::nullopt;
    auto image = ExtractEmbeddedImage(source, record->images[static_cast<size_t>(chosen)]);
    if (!image) return std::nullopt;
    const auto orientation = record->integer(TagGroup::Image, tag::kOrientation);
    RawPreview preview;
    preview.format = image->format;
    preview.bytes = std::move(image->bytes);
    preview.orientation = orientation && *orientation >= 1 && *orientation <= 8 ? static_cast<int>(*orientation) : 0;
    return preview;
}

std::optional<PackedDib> DecodeRawPreview(const RawPreview& preview) {
    int orientation = preview.orientation;
    std::optional<PackedDib> dib;
    if (preview.format == EmbeddedFormat::Bmp) {
        dib = ReadBmp(preview.bytes);
    } else {
        // The system decoder already turns a JPEG by an orientation of its own.
        if (ReadExifOrientation(preview.bytes) != 0) orientation = 1;
        dib = DecodeWithSystemCodec(preview.bytes, 2);
    }
    if (dib && !OrientUpright(*dib, orientation)) return std::nullopt;
    return dib;
}

std::optional<PackedDib> LoadRawPreview(const std::filesystem::path& path) {
    FileSource source(path);
    if (!source.isOpen()) return std::nullopt;
    const auto preview = FindRawPreview(source);
    if (!preview) return std::nullopt;
    return DecodeRawPreview(*preview);
}

}  // namespace lx
