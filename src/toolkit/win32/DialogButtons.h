// Two small buttons for dialogs, made by class name in dialog templates once registered:
//
//   "NCCColorPick"   shows a colour as a swatch; a click (or Space) opens the system colour
//                    dialog and, when a colour is chosen, tells the parent with BN_CLICKED.
//                    kColorPickGet returns the colour; kColorPickSet takes it in lParam.
//   "NCCFlatButton"  a flat push button showing its text, raised while the mouse is over it;
//                    a click (or Space) sends BN_CLICKED to the parent.
#pragma once

#include <windows.h>

namespace lx {

constexpr UINT kColorPickGet = 1585;
constexpr UINT kColorPickSet = 1587;

// Registers both classes; true when they are ready (also when registered before).
bool RegisterDialogButtons();

}  // namespace lx
