#include "ContrastResizeTool.h"

namespace lx {

// The tool is not built yet: the request is accepted and nothing happens.
void RunContrastResizeTool(HWND owner, const std::vector<std::wstring>& files) {}

}  // namespace lx
