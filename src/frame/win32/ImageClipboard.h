// Copying a picture to the clipboard, as the viewer and the editor do.
#pragma once

#include <windows.h>

namespace lx {

enum class ClipboardForms {
    DibAndPalette,  // CF_DIB, and CF_PALETTE for a palette image; the system offers CF_BITMAP
    WithBitmap,     // CF_DIB, CF_PALETTE (a halftone one for direct colour) and CF_BITMAP
};

// Puts a copy of `image` (a packed DIB block, lent) on the clipboard in `forms`; only the
// `selection` when it is not empty. False when there is no image or the clipboard is busy
// (then nothing is left behind).
bool PutImageOnClipboard(HWND owner, HGLOBAL image, const RECT& selection,
                         ClipboardForms forms = ClipboardForms::DibAndPalette);

}  // namespace lx
