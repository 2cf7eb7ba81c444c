// "NCCFolderTree": the shell's folder namespace as a tree, from the desktop down, filled
// lazily as branches open, with the shell's own icons. Created by class name (dialog
// templates) once RegisterFolderTree has run.
//
// Messages:
//   kFolderTreeSelect    wParam 1: lParam an identifier list; wParam 0: lParam a path text.
//                        Opens the branches down to that folder and selects it. Returns TRUE
//                        when the folder was found.
//   kFolderTreeSelected  the identifier list of the selected folder, or null. The list stays
//                        the tree's: callers copy it (ILClone) to keep it.
// When the selection changes the tree tells its parent with WM_NOTIFY TVN_SELCHANGEDW, its own
// control id and handle in the header.
#pragma once

#include <windows.h>

namespace lx {

constexpr UINT kFolderTreeSelect = 1744;
constexpr UINT kFolderTreeSelected = 1747;

bool RegisterFolderTree();

}  // namespace lx
