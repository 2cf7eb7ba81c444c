#include "ConvertScaling.h"

#include <cstdint>
#include <limits>

#include "ConvertOptions.h"

namespace lx {

int32_t MulDiv(int32_t a, int32_t b, int32_t c) {
    if (c == 0) return -1;
    const int64_t product = static_cast<int64_t>(a) * b;
    const bool negative = (product < 0) != (c < 0);
    const uint64_t magnitude = static_cast<uint64_t>(product < 0 ? -product : product);
    const uint64_t divisor = static_cast<uint64_t>(c < 0 ? -static_cast<int64_t>(c) : c);
    const uint64_t rounded = (magnitude + divisor / 2) / divisor;
    if (rounded > static_cast<uint64_t>(std::numeric_limits<int32_t>::max())) return -1;
    return negative ? -static_cast<int32_t>(rounded) : static_cast<int32_t>(rounded);
}

namespace {

ScaleDecision Scaled(int64_t width, int64_t height) {
    ScaleDecision decision;
    if (width <= 0 || height <= 0 || width > std::numeric_limits<int32_t>::max() ||
        height > std::numeric_limits<int32_t>::max()) {
        decision.kind = ScaleDecision::Skip;
        return decision;
    }
    decision.kind = ScaleDecision::Scale;
    decision.width = static_cast<int>(width);
    decision.height = static_cast<int>(height);
    return decision;
}

// The side named by `size` becomes `size`, the other follows in proportion.
ScaleDecision FitSide(int width, int height, int size, bool byWidth) {
    if (byWidth) return Scaled(size, MulDiv(size, height, width));
    return Scaled(MulDiv(size, width, height), size);
}

}  // namespace

ScaleDecision DecideScale(int width, int height, int mode, int size, bool noEnlarge) {
    switch (mode) {
    case kResizePercent:
        if (size == 100) return {};
        return Scaled(static_cast<int64_t>(width) * size / 100, static_cast<int64_t>(height) * size / 100);
    case kResizeLongSide: {
        const bool wide = width > height;
        if (noEnlarge && (wide ? width : height) < size) return {};
        return FitSide(width, height, size, wide);
    }
    case kResizeShortSide: {
        const bool tall = width < height;
        if (noEnlarge && (tall ? width : height) < size) return {};
        return FitSide(width, height, size, tall);
    }
    default:
        return {};
    }
}

}  // namespace lx
