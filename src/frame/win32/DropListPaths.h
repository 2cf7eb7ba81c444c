// The paths of a shell drop list held in global memory: the list of a tool request, or the
// HDROP of a WM_DROPFILES message. Every reader of a drop list in the module goes through
// here, so none of them walks a block past its end.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace lx {

// The list's paths in order; empty for a null, malformed or empty list. The block stays
// owned by the caller.
std::vector<std::wstring> DropListPaths(HGLOBAL drop);

}  // namespace lx
