#include "Thumbnail.h"

#include "ThumbnailMaker.h"
#include "mif.h"

namespace lx {

HBITMAP MakeThumbnail(const std::wstring& path, int box) {
    auto dib = MakeThumbnailDib(std::filesystem::path(path), box);
    if (!dib) return nullptr;
    mif image;
    if (!image.attachdib(std::move(*dib))) return nullptr;
    return image.createbitmap(nullptr);
}

}  // namespace lx
