// The worker behind the module's RunPickoutThumbnailW export: given the owner window and the
// request's files and its "path" value (the output folder), it runs the tool to the end. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace lx {

void RunPickoutThumbnailTool(HWND owner, const std::vector<std::wstring>& files, const std::wstring& path);

}  // namespace lx
