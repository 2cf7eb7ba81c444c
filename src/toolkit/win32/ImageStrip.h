// Image lists cut from bitmap strips (tool-bar and animation bitmaps hold their images side
// by side). The ImageList owner destroys the list.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include "GdiObjects.h"

namespace lx {

inline void DestroyImageList(HIMAGELIST list) { ImageList_Destroy(list); }
using ImageList = OwnedHandle<HIMAGELIST, &DestroyImageList>;

// Cuts `strip` into images `imageWidth` wide (as many as fit whole); pixels of `maskColour`
// become transparent. The bitmap stays with the caller. Empty on failure.
ImageList ImageListFromStrip(HBITMAP strip, int imageWidth, COLORREF maskColour);

// The same from a bitmap resource of `instance`.
ImageList LoadImageStrip(HINSTANCE instance, int bitmapId, int imageWidth, COLORREF maskColour);

}  // namespace lx
