// Printing one picture: the printer dialog, then the picture as large as the printable area
// allows, centred, its proportions kept.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

// `image` is a packed DIB block (lent). False when there is no image, the user cancelled or
// the printer refused the job.
bool PrintImage(HWND owner, HGLOBAL image, const std::wstring& documentName);

}  // namespace lx
