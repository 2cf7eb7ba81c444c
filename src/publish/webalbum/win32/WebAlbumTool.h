// The worker behind the module's RunWebAlbumW export: given the owner window and the
// request's files, it reads the album settings, asks, stores the settings when confirmed and
// builds the album. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ToolSink.h"
#include "WebAlbumRun.h"

namespace lx {

void RunWebAlbumTool(HWND owner, const std::vector<std::wstring>& files);

// The run alone with the stored settings (as the dialog last saved them), for unattended
// runs: `folder` replaces the output folder when not empty.
WebAlbumResult RunWebAlbumFiles(const std::wstring& folder, const std::vector<std::wstring>& files, ToolSink& sink);

}  // namespace lx
