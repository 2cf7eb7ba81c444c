// Image lists cut from bitmap strips (tool-bar and animation bitmaps hold their images side
// by side). The ImageList owner destroys the list.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <utility>

namespace lx {

class ImageList {
public:
    ImageList() = default;
    explicit ImageList(HIMAGELIST list) : list_(list) {}
    ImageList(ImageList&& other) noexcept : list_(std::exchange(other.list_, nullptr)) {}
    ImageList& operator=(ImageList&& other) noexcept {
        if (this != &other) {
            reset();
            list_ = std::exchange(other.list_, nullptr);
        }
        return *this;
    }
    ~ImageList() { reset(); }
    HIMAGELIST get() const { return list_; }
    explicit operator bool() const { return list_ != nullptr; }
    int count() const { return list_ ? ImageList_GetImageCount(list_) : 0; }
    void reset() {
        if (list_) ImageList_Destroy(list_);
        list_ = nullptr;
    }

private:
    HIMAGELIST list_ = nullptr;
};

// Cuts `strip` into images `imageWidth` wide (as many as fit whole); pixels of `maskColour`
// become transparent. The bitmap stays with the caller. Empty on failure.
ImageList ImageListFromStrip(HBITMAP strip, int imageWidth, COLORREF maskColour);

// The same from a bitmap resource of `instance`.
ImageList LoadImageStrip(HINSTANCE instance, int bitmapId, int imageWidth, COLORREF maskColour);

}  // namespace lx
