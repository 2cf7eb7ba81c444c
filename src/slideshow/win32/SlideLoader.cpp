#include "SlideLoader.h"

#include "DibGlobal.h"
#include "ImageCodecs.h"
#include "SlidePicture.h"

namespace lx {

std::optional<PackedDib> LoadSlidePicture(const std::wstring& path, SIZE screen) {
    // A photograph far larger than the screen is decoded at the smallest size that still
    // fills it, then reduced the rest of the way.
    PictureSize full;
    std::optional<PackedDib> picture = LoadImageFileToCover(path, screen.cx, screen.cy, &full);
    if (!picture) return std::nullopt;
    return PrepareSlidePicture(std::move(*picture), screen.cx, screen.cy, full);
}

HGLOBAL CSlideLoader::Decode(const std::wstring& path) {
    std::optional<PackedDib> picture = LoadSlidePicture(path, screen_);
    return picture ? ReleaseToGlobal(std::move(*picture)) : nullptr;
}

}  // namespace lx
