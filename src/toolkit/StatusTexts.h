// The texts the frames put into their title and status panes: the file name of a path, the
// zoom, the pointer's place, the selection, the image size and depth.
#pragma once

#include <string>

namespace lx {

// The text after the last backslash, or the whole path when there is none.
std::wstring TitleFileName(const std::wstring& path);

// "125%" when the zoom (tenths of a percent) is whole, else "33.3%".
std::wstring ZoomText(int tenthsOfPercent);
std::wstring CursorText(int x, int y);                                   // "X:12 Y:7"
std::wstring CursorSelectionText(int x, int y, int width, int height);   // "X:1 Y:2 W:30 H:40"
std::wstring SelectionSizeText(int width, int height);                   // "選択 640 x 480"
std::wstring ImageSizeText(int width, int height);                       // "6000 x 4000"
std::wstring DepthText(int bitsPerPixel);                                // "24bpp"

}  // namespace lx
