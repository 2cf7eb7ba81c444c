// Arithmetic of the toolkit's pane windows, kept apart from Win32 so it is tested natively:
// where a splitter's bar may go, and the right edges of status-bar panes.
#pragma once

#include <vector>

namespace lx {

// Position of a splitter bar `barWidth` wide inside `total` pixels, so that the first pane
// keeps at least `minFirst` and the second at least `minSecond`. When both minimums cannot be
// met the first pane's wins (the information pane stays usable as the window shrinks).
int ClampSplitPosition(int position, int total, int barWidth, int minFirst, int minSecond);

// Right edges of status-bar panes: the first pane takes what the others leave of `total`
// (never below zero), the others keep their widths, the last edge is -1 (to the window's end)
// as the status control expects.
std::vector<int> StatusPaneEdges(int total, const std::vector<int>& widths);

}  // namespace lx
