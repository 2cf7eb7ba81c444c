// The thumbnail pickout tool as the host starts it: the dialog (output folder, smallest or
// largest), the folder created with its parents, then the run under the wait cursor.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "PickoutRun.h"

namespace lx {

// Creates the file only when the name is free (CREATE_NEW) and writes every byte; a write
// that fails halfway removes the file again.
bool WriteNewFile(const std::wstring& path, std::span<const uint8_t> bytes);

// The number of thumbnail files written; 0 for an empty list; -1 when the dialog was
// cancelled or the output folder cannot be made. `hostFolder` is the request's "path".
int RunPickoutThumbnailTool(HWND owner, const std::vector<std::wstring>& files, const std::wstring& hostFolder);

}  // namespace lx
