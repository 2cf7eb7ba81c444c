// CPasteDlg: how the clipboard's picture is laid over the document (blend mode, opacity, drop
// shadow, placement by anchor with offsets or by hand). Its settings are the "Paste" record
// under "Edit" (PasteSettings.h): read when it opens, written back on OK.
#pragma once

#include <windows.h>

#include "PasteSettings.h"

namespace lx {

// True when confirmed, with `settings` set to what the user chose (and stored).
bool RunPasteDialog(HWND owner, PasteSettings& settings);

}  // namespace lx
