// The worker behind the module's RunSplitImageW export: given the owner window and the
// request's files, it runs the tool to the end. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace lx {

void RunSplitImageTool(HWND owner, const std::vector<std::wstring>& files);

}  // namespace lx
