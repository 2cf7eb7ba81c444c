// The worker behind the module's RunRenameToExifDateW export: the rename dialog over the
// request's files. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace lx {

void RunRenameToExifDateTool(HWND owner, const std::vector<std::wstring>& files);

}  // namespace lx
