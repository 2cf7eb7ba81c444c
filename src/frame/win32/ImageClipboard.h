// Copying a picture to the clipboard, as the viewer and the editor do.
#pragma once

#include <windows.h>

#include <optional>

#include "PackedDib.h"

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

// The picture on the clipboard: its CF_DIB, or else its CF_BITMAP drawn through its
// CF_PALETTE (when there is one) as a 24-bit DIB. nullopt when there is none, the clipboard
// is busy or the data is malformed.
std::optional<PackedDib> ReadClipboardPicture(HWND owner);

}  // namespace lx
