#include "WebAlbumTool.h"

namespace lx {

// The tool is not built yet: the request is accepted and nothing happens.
void RunWebAlbumTool(HWND owner, const std::vector<std::wstring>& files, const std::vector<uint8_t>& savedStatus) {}

}  // namespace lx
