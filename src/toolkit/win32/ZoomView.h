// The image view control, window class "NCCZoomView".
//
// Frames create it by class name after calling RegisterZoomViewClass() and drive it only with
// the numbered messages below. It shows one packed DIB (an HGLOBAL) scrolled and zoomed, a
// rectangle selection, an optional pixel grid, and offers the hand and selection tools.
//
// Ownership: an image handed in with wParam 1 belongs to the view until it is handed back as
// the result of the next set-image message, or freed by the view when the window is destroyed.
// With wParam 0 the view keeps a copy and the caller keeps its block. Message 1711 lends the
// handle: the view still owns it. The view draws from the block it holds, so a taken block
// laid out otherwise than a plain bottom-up DIB (top-down, a larger header) is replaced by
// one that is and freed: the handle handed back is then the replacement.
//
// The view tells its parent about changes with WM_NOTIFY carrying a ZoomViewNotify.
#pragma once

#include <windows.h>

#include "ZoomGeometry.h"
#include "ZoomViewSettings.h"

namespace lx {

constexpr wchar_t kZoomViewClass[] = L"NCCZoomView";

enum ZoomViewMessage : UINT {
    kZvSetImage = 1696,          // wParam 1: take lParam, 0: copy it. Returns the previous handle. Scrolls home.
    kZvGetZoom = 1698,           // returns the zoom (tenths of a percent)
    kZvZoomCommand = 1699,       // wParam ZoomCommand; returns the new zoom
    kZvSetOptions = 1700,        // wParam option word; returns the previous one
    kZvGetOptions = 1701,        // returns the option word
    kZvSetBackground = 1702,     // lParam COLORREF; returns the previous colour
    kZvSetSelection = 1704,      // lParam RECT* (null or empty: no selection)
    kZvGetSelection = 1705,      // lParam RECT*; returns nonzero when there is an image
    kZvApplySettings = 1709,     // lParam ZoomViewSettings*
    kZvReadSettings = 1710,      // lParam ZoomViewSettings*
    kZvGetImage = 1711,          // returns the image handle (still the view's)
    kZvFloatImage = 1715,        // wParam HIMAGELIST (image 0, scaled to the zoom), lParam POINT* (image
                                 // pixels, in and out): the user drags it into place; 1 placed, 0 cancelled
    kZvSetZoom = 1716,           // wParam zoom; returns the zoom set
    kZvInitialize = 1719,        // sent once after creation
    kZvCanZoom = 1721,           // low word: can zoom in; high word: can zoom out
    kZvReplaceImage = 1723,      // as 1696 but keeps the zoom and the scroll position
};

// Bits of the option word.
enum ZoomViewOption : uint32_t {
    kOptionRefitOnResize = 1u << 0,  // after a fit command, resizing the window fits again
    kOptionFitEnlarges = 1u << 1,    // "whole image" also enlarges pictures smaller than the window
};

enum ZoomViewNotifyCode : UINT {
    kZvnZoomChanged = 1,      // by a message
    kZvnCursor = 2,           // cursor moved or selection changed: `cursor` and `selection`
    kZvnSelectionSize = 3,    // the selection changed: `selection`
    kZvnUserZoomChanged = 5,  // by the user (Ctrl + wheel)
};

struct ZoomViewNotify {
    NMHDR header;
    POINT cursor;    // image pixel under the mouse
    RECT selection;  // empty when there is none
    int zoom;
};

static_assert(sizeof(ViewRect) == sizeof(RECT));

// Registers "NCCZoomView" for this process; true when the class is available.
bool RegisterZoomViewClass();

}  // namespace lx
