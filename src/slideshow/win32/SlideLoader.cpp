#include "SlideLoader.h"

#include "DibGlobal.h"
#include "ImageCodecs.h"
#include "SlidePicture.h"

namespace lx {

std::optional<PackedDib> LoadSlidePicture(const std::wstring& path, SIZE screen) {
    std::optional<PackedDib> picture = LoadImageFile(path);
    if (!picture) return std::nullopt;
    return PrepareSlidePicture(std::move(*picture), screen.cx, screen.cy);
}

HGLOBAL CSlideLoader::Decode(const std::wstring& path) {
    std::optional<PackedDib> picture = LoadSlidePicture(path, screen_);
    return picture ? ReleaseToGlobal(std::move(*picture)) : nullptr;
}

}  // namespace lx
