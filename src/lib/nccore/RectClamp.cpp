#include "RectClamp.h"

#include <algorithm>

namespace lx {
namespace {

// One axis: the span keeps its length up to the area's, then is pushed inside.
void ClampSpan(int& low, int& high, int areaLow, int areaHigh) {
    const int length = std::clamp(high - low, 0, std::max(areaHigh - areaLow, 0));
    low = std::clamp(low, areaLow, std::max(areaHigh - length, areaLow));
    high = low + length;
}

}  // namespace

PlainRect ClampRectInto(PlainRect rect, const PlainRect& area) {
    ClampSpan(rect.left, rect.right, area.left, area.right);
    ClampSpan(rect.top, rect.bottom, area.top, area.bottom);
    return rect;
}

}  // namespace lx
