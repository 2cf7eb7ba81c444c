// CSelectFolderDlg: the module's dialog for opening a folder. A history combo box (typed or
// picked folders) over the shell's folder tree; resizable, never smaller than it opens. It
// keeps its history ("SelectFolder" / "History", 25 folders) and its placement
// ("SelectFolder" / "WndPos", a 44-byte WINDOWPLACEMENT) between uses.
//
// On OK the folder is, in order: the tree's selection when the text is empty or names it; a
// drive's current folder (or its root) for "C" or "C:"; else the typed path with its
// environment variables expanded, a UNC share first checked (and connected) by the shell,
// a file standing for its folder. A folder that cannot be reached is reported and the dialog
// stays open.
#pragma once

#include <windows.h>
#include <shlobj.h>

#include <string>

namespace lx {

// Shows the dialog with the tree on `initialFolder` (may be empty). Returns the chosen folder
// as an identifier list that the caller frees with ILFree, or null on cancel.
PIDLIST_ABSOLUTE RunSelectFolderDialog(HWND owner, const std::wstring& initialFolder);

// The same chosen folder as a path; empty on cancel or for a folder outside the file system.
std::wstring SelectFolderPath(HWND owner, const std::wstring& initialFolder);

}  // namespace lx
