#include "AlbumThumbnail.h"

#include <algorithm>
#include <filesystem>

#include "ByteSource.h"
#include "ExifReader.h"
#include "ImageLoad.h"
#include "ImageSave.h"
#include "ImageTypes.h"
#include "WebAlbumSettings.h"
#include "mif.h"

namespace lx {

namespace {

std::wstring WideFromUtf8(const std::string& text) {
    try {
        return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
    } catch (...) {
        return {};
    }
}

}  // namespace

ThumbSize AlbumThumbnailSize(int width, int height, int maxWidth, int maxHeight) {
    maxWidth = std::max(maxWidth, 1);
    maxHeight = std::max(maxHeight, 1);
    if (width <= maxWidth && height <= maxHeight) return {width, height};
    float divisor = 1.25f;
    auto side = [&divisor](int length) { return static_cast<int>(static_cast<float>(length) / divisor); };
    while (side(width) > maxWidth || side(height) > maxHeight) divisor += 0.25f;
    return {std::max(side(width), 1), std::max(side(height), 1)};
}

std::optional<AlbumPicture> LoadAlbumPicture(const std::wstring& source, int maxWidth, int maxHeight) {
    const std::filesystem::path path(source);
    if (MayCarryExif(ImageTypeFromPath(source.c_str()))) {
        FileSource file(path);
        if (file.isOpen()) {
            // The caption belongs to the photograph, whichever picture of it is shown.
            std::wstring altText = WideFromUtf8(ReadDescription(file));
            if (auto embedded = EmbeddedPicture(file, std::max(maxWidth, maxHeight))) {
                const ThumbSize size{embedded->width(), embedded->height()};
                return AlbumPicture{std::move(*embedded), std::move(altText), size};
            }
            PictureSize full;
            if (auto picture = LoadImageFileToCover(path, maxWidth, maxHeight, &full))
                return AlbumPicture{std::move(*picture), std::move(altText), {full.width, full.height}};
            return std::nullopt;
        }
    }
    PictureSize full;
    auto picture = LoadImageFileToCover(path, maxWidth, maxHeight, &full);
    if (!picture) return std::nullopt;
    return AlbumPicture{std::move(*picture), {}, {full.width, full.height}};
}

bool ShrinkToThumbnail(PackedDib& picture, int maxWidth, int maxHeight, ThumbSize sourceSize) {
    if (sourceSize.width <= 0 || sourceSize.height <= 0) sourceSize = {picture.width(), picture.height()};
    const ThumbSize size = AlbumThumbnailSize(sourceSize.width, sourceSize.height, maxWidth, maxHeight);
    if (size.width == picture.width() && size.height == picture.height()) return true;
    mif image;
    if (!image.attachdib(std::move(picture))) return false;
    if (!image.zoom(size.width, size.height, kZoomHighQuality, 0)) return false;
    PackedDib shrunk = image.createdib();
    if (shrunk.empty()) return false;
    picture = std::move(shrunk);
    return true;
}

bool SaveAlbumThumbnail(const std::wstring& path, const PackedDib& picture, int thumbFormat) {
    const std::filesystem::path target(path);
    switch (thumbFormat) {
    case kThumbPng:
        return SavePngFile(target, picture) != 0;
    case kThumbGif:
        return SaveGifFile(target, picture) != 0;
    default: {
        JpegSaveRecord record;
        record.quality = 60;
        return SaveJpegFile(target, picture, record) != 0;
    }
    }
}

}  // namespace lx
