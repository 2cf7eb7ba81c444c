// CAnchorWnd: the 3 x 3 anchor of the paste and canvas-size dialogs. Nine cells, 0 top-left
// to 8 bottom-right; the chosen one is filled. A click or the arrow keys choose a cell; each
// change is told to the parent as WM_COMMAND (control id, BN_CLICKED).
//
// A dialog puts one in the place of a placeholder control of its template (Attach): the
// anchor takes the placeholder's rectangle, id and tab position, and the placeholder goes.
// The object must outlive its window (the dialog holds it as a member).
#pragma once

#include <windows.h>

#include "Window.h"

namespace lx {

class CAnchorWnd : public MappedWindow<CAnchorWnd> {
public:
    static std::span<const MessageEntry<CAnchorWnd>> Messages();

    // Replaces `placeholder` (a child of a dialog) by the anchor; false when it cannot be made.
    bool Attach(HWND placeholder, int cell);
    int Cell() const { return cell_; }
    void SetCell(int cell);

private:
    LRESULT OnPaint(WPARAM, LPARAM);
    LRESULT OnLButtonDown(WPARAM, LPARAM);
    LRESULT OnKeyDown(WPARAM, LPARAM);
    LRESULT OnGetDlgCode(WPARAM, LPARAM);
    LRESULT OnFocus(WPARAM, LPARAM);
    LRESULT OnEnable(WPARAM, LPARAM);
    void Choose(int cell);
    RECT CellRect(int cell) const;

    int cell_ = 0;
};

}  // namespace lx
