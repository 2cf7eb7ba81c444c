// Reading and showing the fields of the editor's dialogs: numbers that are refused by a beep
// and the focus on their box (never a message), and the colour fields (a swatch beside a
// button that opens the system's colour dialog).
#pragma once

#include <windows.h>

#include <cstdint>

#include "GdiObjects.h"

namespace lx {

// The number in edit control `id` when it lies in [low, high]; otherwise beeps, focuses the
// control with its text selected and returns false.
bool ReadNumberField(HWND dialog, int id, int low, int high, int32_t& value);

// Beeps and puts the focus on control `id` (its text selected when it is an edit box).
void RefuseField(HWND dialog, int id);

// The system colour dialog starting from `colour`; true with `colour` changed when confirmed.
bool ChooseColour(HWND owner, COLORREF& colour);

// A colour shown as a filled static control; the dialog answers WM_CTLCOLORSTATIC with Brush().
class ColourField {
public:
    void Set(HWND dialog, int swatchId, COLORREF colour);
    COLORREF colour() const { return colour_; }
    // The brush for WM_CTLCOLORSTATIC when `control` is the swatch; null otherwise.
    HBRUSH BrushFor(HWND control) const { return control == swatch_ ? brush_.get() : nullptr; }
    // The system colour dialog from the present colour; true and shown when one was chosen.
    bool Choose(HWND dialog);

private:
    HWND swatch_ = nullptr;
    COLORREF colour_ = 0;
    Brush brush_;
};

}  // namespace lx
