// Keeping a window rectangle on screen: a saved position may come from a monitor that is no
// longer there, or from a larger desktop.
#pragma once

namespace lx {

struct PlainRect {
    int left, top, right, bottom;
};

// `rect` moved (and, when larger, shrunk) so that it lies inside `area`. An empty or inverted
// rectangle becomes one at the area's corner with no size.
PlainRect ClampRectInto(PlainRect rect, const PlainRect& area);

}  // namespace lx
