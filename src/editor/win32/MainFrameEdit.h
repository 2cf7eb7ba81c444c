// CMainFrame::EditImage, the pattern of every editing command, for the files that hold them.
#pragma once

#include <new>

#include "MainFrame.h"

namespace lx {

template <typename Operation>
bool CMainFrame::EditImage(UINT id, bool restoreSelection, Operation operation) {
    HGLOBAL shown = ViewImage();
    if (!shown) return false;
    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    HGLOBAL result = nullptr;
    try {
        mif image(shown);
        if (!image.empty() && operation(image, Selection())) result = static_cast<HGLOBAL>(image.createglobaldib());
    } catch (const std::bad_alloc&) {
        result = nullptr;  // too large to work on: as if the operation had failed
    }
    SetCursor(previous);
    // An operation that yields nothing changes nothing: no step, no view change.
    return result && document_.Commit(result, static_cast<int>(id), !restoreSelection, restoreSelection);
}

}  // namespace lx
