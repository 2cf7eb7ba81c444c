#include "PickoutThumbnailTool.h"

namespace lx {

// The tool is not built yet: the request is accepted and nothing happens.
void RunPickoutThumbnailTool(HWND owner, const std::vector<std::wstring>& files, const std::wstring& path) {}

}  // namespace lx
