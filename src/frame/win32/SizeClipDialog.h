// Select by size (CSizeClipDlg): the user gives a width and a height; the selection becomes a
// rectangle of that size centred in the picture, cut to the picture. The last size asked is
// kept under "MainViewer" / "SizeClip" (two 32-bit integers).
#pragma once

#include <windows.h>

namespace lx {

// The rectangle of `size` centred in an image of `imageSize`, cut to it.
RECT CentredSelection(SIZE imageSize, SIZE size);

// Runs the dialog for an image of `imageSize`; true with `selection` set on OK.
bool RunSizeClipDialog(HWND owner, SIZE imageSize, RECT& selection);

}  // namespace lx
