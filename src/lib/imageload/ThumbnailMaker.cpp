#include "ThumbnailMaker.h"

#include "ExifReader.h"
#include "ImageCodecs.h"
#include "ImageLoad.h"
#include "ImageTypes.h"
#include "mif.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace lx {
namespace {

std::optional<PackedDib> DecodeEmbedded(const EmbeddedImage& image) {
    return image.format == EmbeddedFormat::Jpeg ? LoadJpegFromMemory(image.bytes) : LoadBmpFromMemory(image.bytes);
}

bool ExifFastPathApplies(const std::filesystem::path& name) {
    return MayCarryExif(ImageTypeFromPath(name.wstring().c_str()));
}

}  // namespace

void FlattenAlpha(PackedDib& picture, uint8_t background) {
    if (picture.bitCount() != 32 || picture.compression() != kBiRgb) return;
    for (int y = 0; y < picture.height(); ++y) {
        uint8_t* p = picture.row(y);
        for (int x = 0; x < picture.width(); ++x, p += 4) {
            const int alpha = p[3];
            for (int c = 0; c < 3; ++c)
                p[c] = static_cast<uint8_t>((p[c] * alpha + background * (255 - alpha) + 127) / 255);
            p[3] = 255;
        }
    }
}

ThumbSize FitInBox(int width, int height, int box) {
    if (width <= 0 || height <= 0 || box <= 0) return {};
    if (width <= box && height <= box) return {width, height};
    // Rounded to the nearest pixel; 64 bits because a side may be anything a header says.
    auto scaled = [box](int side, int longSide) {
        const int64_t value = (static_cast<int64_t>(side) * box * 2 + longSide) / (2 * static_cast<int64_t>(longSide));
        return static_cast<int>(std::max<int64_t>(value, 1));
    };
    if (width >= height) return {box, scaled(height, width)};
    return {scaled(width, height), box};
}

std::optional<PackedDib> FitThumbnail(PackedDib picture, int box, ThumbSize fullSize) {
    if (fullSize.width <= 0 || fullSize.height <= 0) fullSize = {picture.width(), picture.height()};
    const ThumbSize size = FitInBox(fullSize.width, fullSize.height, box);
    if (size.width == 0) return std::nullopt;
    // The list's cells are not transparent, and a fully transparent pixel often carries black.
    FlattenAlpha(picture, 255);
    mif image;
    if (!image.attachdib(std::move(picture))) return std::nullopt;
    if ((size.width != image.width() || size.height != image.height()) &&
        !image.zoom(size.width, size.height, kZoomHighQuality, 0))
        return std::nullopt;
    if (!image.setdepth(24)) return std::nullopt;
    return image.createdib();
}

std::optional<PackedDib> EmbeddedThumbnail(ByteSource& source, int box) {
    auto picture = EmbeddedPicture(source, box);
    if (!picture) return std::nullopt;
    return FitThumbnail(std::move(*picture), box);
}

std::optional<PackedDib> EmbeddedPicture(ByteSource& source, int minLongSide) {
    const std::vector<EmbeddedImageRef> images = ListEmbeddedImages(source);
    if (images.empty()) return std::nullopt;
    // Smallest first, since a raw file may also embed a preview of several megapixels. A size
    // the container does not record (0) is only known once decoded: such images go last.
    auto pixels = [](const EmbeddedImageRef& ref) {
        const int64_t count = static_cast<int64_t>(ref.width) * ref.height;
        return count > 0 ? count : INT64_MAX;
    };
    std::vector<size_t> order(images.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return pixels(images[a]) < pixels(images[b]); });
    for (size_t index : order) {
        const EmbeddedImageRef& ref = images[index];
        if (ref.width > 0 && ref.height > 0 && std::max(ref.width, ref.height) < minLongSide) continue;
        const auto extracted = ExtractEmbeddedImage(source, ref);
        if (!extracted) continue;
        auto picture = DecodeEmbedded(*extracted);
        if (!picture || std::max(picture->width(), picture->height()) < minLongSide) continue;
        // The embedded picture is stored the way the sensor saw it, like the main image.
        if (const auto orientation = ReadOrientation(source)) OrientUpright(*picture, *orientation);
        return picture;
    }
    return std::nullopt;
}

std::optional<PackedDib> MakeThumbnailDib(const std::filesystem::path& path, int box) {
    if (ExifFastPathApplies(path)) {
        FileSource source(path);
        if (!source.isOpen()) return std::nullopt;
        if (auto thumbnail = EmbeddedThumbnail(source, box)) return thumbnail;
    }
    // A JPEG comes decoded at a reduced size that still covers the box.
    PictureSize full;
    auto picture = LoadImageFileToCover(path, box, box, &full);
    if (!picture) return std::nullopt;
    return FitThumbnail(std::move(*picture), box, {full.width, full.height});
}

std::optional<PackedDib> MakeThumbnailDibFromBytes(std::span<const uint8_t> file, const std::filesystem::path& name,
                                                   int box) {
    if (ExifFastPathApplies(name)) {
        MemorySource source(file);
        if (auto thumbnail = EmbeddedThumbnail(source, box)) return thumbnail;
    }
    auto picture = LoadImageBytes(file, name);
    if (!picture) return std::nullopt;
    return FitThumbnail(std::move(*picture), box);
}

}  // namespace lx
