// The list's thumbnail of one file as a GDI bitmap: a 24-bit DIB section of the fitted size
// (see ThumbnailMaker.h for how it is made). The caller owns the bitmap (DeleteObject).
// Null when the file cannot be read or decoded. Safe on any thread; the system codecs need
// COM initialised on the calling thread.
#pragma once

#include <windows.h>

#include <string>

#include "ThumbnailMaker.h"

namespace lx {

HBITMAP MakeThumbnail(const std::wstring& path, int box = kThumbnailBox);

}  // namespace lx
