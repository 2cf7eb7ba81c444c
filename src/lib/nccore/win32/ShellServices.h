// Shell services the frames share: the window rectangle kept on its monitor, and the shell's
// context menu of a file.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

// `rect` (screen coordinates) moved and shrunk into the work area of the monitor nearest to it.
RECT ClampToMonitor(const RECT& rect);

// Shows the Explorer context menu of `path` at `screenPoint`, owned by `owner`, and runs the
// verb chosen. False when the menu could not be made or nothing was chosen.
bool ShowShellContextMenu(HWND owner, const std::wstring& path, POINT screenPoint);

}  // namespace lx
