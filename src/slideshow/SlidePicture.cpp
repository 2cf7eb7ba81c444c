#include "SlidePicture.h"

#include <algorithm>
#include <cstdint>

#include "ThumbnailMaker.h"
#include "mif.h"

namespace lx {

SlidePlacement PlaceSlide(int width, int height, int screenWidth, int screenHeight) {
    if (width <= 0 || height <= 0 || screenWidth <= 0 || screenHeight <= 0) return {};
    int64_t w = width, h = height;
    if (w > screenWidth || h > screenHeight) {
        // Scale by the smaller ratio: compare screenWidth / width with screenHeight / height
        // without fractions. The other side is rounded, never to 0.
        if (int64_t{screenWidth} * height <= int64_t{screenHeight} * width) {
            w = screenWidth;
            h = std::max<int64_t>(1, (int64_t{height} * screenWidth * 2 + width) / (2 * int64_t{width}));
        } else {
            h = screenHeight;
            w = std::max<int64_t>(1, (int64_t{width} * screenHeight * 2 + height) / (2 * int64_t{height}));
        }
    }
    return {static_cast<int>((screenWidth - w) / 2), static_cast<int>((screenHeight - h) / 2), static_cast<int>(w),
            static_cast<int>(h)};
}

std::optional<PackedDib> PrepareSlidePicture(PackedDib picture, int screenWidth, int screenHeight, PictureSize full) {
    if (full.width <= 0 || full.height <= 0) full = {picture.width(), picture.height()};
    const SlidePlacement place = PlaceSlide(full.width, full.height, screenWidth, screenHeight);
    if (place.width == 0) return std::nullopt;
    FlattenAlpha(picture, 0);
    mif image;
    if (!image.attachdib(std::move(picture))) return std::nullopt;
    if ((place.width != image.width() || place.height != image.height()) &&
        !image.zoom(place.width, place.height, kZoomHighQuality, 0))
        return std::nullopt;
    if (image.depth() != 24 && !image.setdepth(24)) return std::nullopt;
    return image.detachdib();
}

}  // namespace lx
