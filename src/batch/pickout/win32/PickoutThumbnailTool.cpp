#include "ToolWorkers.h"

namespace lx {

// The tool is not built yet: the request is accepted and nothing happens.
void RunPickoutThumbnailTool(HWND owner, HDROP drop, const std::wstring& path) {}

}  // namespace lx
