#include "PaneLayout.h"

#include <algorithm>

namespace lx {

int ClampSplitPosition(int position, int total, int barWidth, int minFirst, int minSecond) {
    const int highest = total - barWidth - std::max(minSecond, 0);
    return std::max(std::min(position, highest), std::max(minFirst, 0));
}

std::vector<int> StatusPaneEdges(int total, const std::vector<int>& widths) {
    std::vector<int> edges(widths.size());
    if (widths.empty()) return edges;
    int fixed = 0;
    for (size_t i = 1; i < widths.size(); ++i) fixed += std::max(widths[i], 0);
    int edge = std::max(0, total - fixed);
    edges[0] = edge;
    for (size_t i = 1; i < widths.size(); ++i) edges[i] = edge += std::max(widths[i], 0);
    edges.back() = -1;
    return edges;
}

}  // namespace lx
