// Copying a picture to the clipboard, as the viewer and the editor do.
#pragma once

#include <windows.h>

namespace lx {

// Puts a copy of `image` (a packed DIB block, lent) on the clipboard as CF_DIB, with its
// palette as CF_PALETTE when it has one; only the `selection` when it is not empty. The
// system offers CF_BITMAP from the DIB. False when there is no image or the clipboard is busy.
bool PutImageOnClipboard(HWND owner, HGLOBAL image, const RECT& selection);

}  // namespace lx
