// Zoom geometry of the image view: the zoom steps, fitting an image into a window, the
// mapping between image pixels and client pixels, and clipping of selections.
//
// Zooms are in tenths of a percent (1000 = every image pixel on one screen pixel), the unit
// the view's messages use. All of this is plain arithmetic so it is tested without windows;
// the Windows control only asks these functions and draws.
#pragma once

#include <cstdint>

namespace lx {

constexpr int kZoomMin = 10;     // 1 %
constexpr int kZoomMax = 16000;  // 1600 %
constexpr int kZoomFull = 1000;

// The zoom commands of the view.
enum ZoomCommand : int {
    kZoomIn = 0,
    kZoomOut = 1,
    kZoomWhole = 2,     // the whole image in the window
    kZoomOriginal = 3,  // 100 %
    kZoomFitHeight = 4,
    kZoomFitWidth = 5,
};

// Field for field a RECT: right and bottom exclusive.
struct ViewRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    bool empty() const { return right <= left || bottom <= top; }
    int32_t width() const { return right - left; }
    int32_t height() const { return bottom - top; }
    bool operator==(const ViewRect&) const = default;
};

int ClampZoom(int zoom);
// The next step above / below `zoom`; `zoom` itself (clamped) at the end of the range.
int ZoomStepIn(int zoom);
int ZoomStepOut(int zoom);

// Extent in client pixels of `pixels` image pixels at `zoom`; at least 1 for a non-empty image.
int64_t ScaledExtent(int pixels, int zoom);

// The zoom a fit command picks for an image in a client area of `clientWidth` x `clientHeight`
// (measured without scroll bars). Fitting one side may leave the other side too long, which
// brings a scroll bar that takes `scrollBarWidth` (vertical) or `scrollBarHeight` (horizontal)
// away; the result allows for it. `enlarge` false caps the whole-image fit at 100 %, so small
// pictures are not blown up. Returns kZoomFull for an empty image or client area.
int FitZoom(ZoomCommand command, int imageWidth, int imageHeight, int clientWidth, int clientHeight,
            int scrollBarWidth, int scrollBarHeight, bool enlarge);

// Where the picture sits in the client area: a scaled image smaller than the client area is
// centred (origin > 0), a larger one is scrolled (scroll > 0). Exactly one of the two is
// non-zero per axis.
struct ViewMapping {
    int zoom = kZoomFull;
    int64_t originX = 0, originY = 0;
    int64_t scrollX = 0, scrollY = 0;

    // Left/top client pixel of image column/row `i`.
    int64_t ToClientX(int64_t i) const;
    int64_t ToClientY(int64_t i) const;
    // The image column/row under client pixel `c` (may lie outside the image).
    int64_t ToImageX(int64_t c) const;
    int64_t ToImageY(int64_t c) const;
};

// Scroll range and position along one axis: clamps the position to [0, content - client].
int64_t ClampScroll(int64_t position, int64_t content, int64_t client);

// The mapping for an image at `zoom` with the wanted scroll position (clamped).
ViewMapping MapView(int imageWidth, int imageHeight, int zoom, int clientWidth, int clientHeight,
                    int64_t scrollX, int64_t scrollY);

// The scroll position that keeps image point (x, y) under client point (cx, cy) after a
// change to `zoom` (used when zooming around the mouse or the window centre); not clamped.
void ScrollToKeep(double x, double y, int zoom, int cx, int cy, int64_t& scrollX, int64_t& scrollY);

// A selection made from any two corners, clipped to the image; empty (all zero) when nothing
// of it lies inside.
ViewRect ClipSelection(ViewRect rect, int imageWidth, int imageHeight);

// The image rectangle between two image points of a drag (both corners included), clipped.
ViewRect SelectionFromDrag(int64_t x0, int64_t y0, int64_t x1, int64_t y1, int imageWidth, int imageHeight);

}  // namespace lx
