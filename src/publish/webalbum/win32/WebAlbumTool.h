// The worker behind the module's RunWebAlbumW export: given the owner window and the
// request's files, it runs the tool to the end. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lx {

constexpr int kWebAlbumStatusBytes = 1588;

// `savedStatus` is the album's saved settings block (1588 bytes), empty when absent.
void RunWebAlbumTool(HWND owner, const std::vector<std::wstring>& files, const std::vector<uint8_t>& savedStatus);

}  // namespace lx
