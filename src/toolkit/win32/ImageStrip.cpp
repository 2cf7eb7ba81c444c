#include "ImageStrip.h"

#include "GdiObjects.h"

namespace lx {

ImageList ImageListFromStrip(HBITMAP strip, int imageWidth, COLORREF maskColour) {
    BITMAP info{};
    if (!strip || imageWidth <= 0 || !GetObjectW(strip, sizeof(info), &info) || info.bmWidth < imageWidth)
        return {};
    const int count = info.bmWidth / imageWidth;
    ImageList list(ImageList_Create(imageWidth, info.bmHeight, ILC_COLOR32 | ILC_MASK, count, 0));
    if (!list) return {};
    // ImageList_AddMasked takes a strip as it is; a ragged right end is cut off first, so a
    // partial image never enters the list.
    Bitmap whole;
    HBITMAP source = strip;
    if (info.bmWidth != count * imageWidth) {
        MemoryDc from(nullptr), to(nullptr);
        WindowDc screen(nullptr);
        whole.reset(CreateCompatibleBitmap(screen.get(), count * imageWidth, info.bmHeight));
        if (!whole) return {};
        SelectScope a(from.get(), strip), b(to.get(), whole.get());
        BitBlt(to.get(), 0, 0, count * imageWidth, info.bmHeight, from.get(), 0, 0, SRCCOPY);
        source = whole.get();
    }
    if (ImageList_AddMasked(list.get(), source, maskColour) < 0) return {};
    return list;
}

ImageList LoadImageStrip(HINSTANCE instance, int bitmapId, int imageWidth, COLORREF maskColour) {
    Bitmap strip(static_cast<HBITMAP>(
        LoadImageW(instance, MAKEINTRESOURCEW(bitmapId), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
    return ImageListFromStrip(strip.get(), imageWidth, maskColour);
}

}  // namespace lx
