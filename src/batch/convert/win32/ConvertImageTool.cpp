#include "ToolWorkers.h"

namespace lx {

// The tool is not built yet: the request is accepted and nothing happens.
void RunConvertImageTool(HWND owner, HDROP drop) {}

}  // namespace lx
