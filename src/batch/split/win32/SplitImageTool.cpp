#include "SplitImageTool.h"

namespace lx {

// The tool is not built yet: the request is accepted and nothing happens.
void RunSplitImageTool(HWND owner, const std::vector<std::wstring>& files) {}

}  // namespace lx
