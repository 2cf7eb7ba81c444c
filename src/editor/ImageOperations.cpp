#include "ImageOperations.h"

#include <algorithm>
#include <vector>

#include "PasteSettings.h"

namespace lx {

bool ResampleImage(mif& image, int width, int height, int method, int cubic) {
    switch (method) {
        case kResampleCubic: return image.zoom(width, height, std::clamp(cubic, 0, kMaxCubicParameter), 0);
        case kResampleLinear: return image.zoom_linear(width, height);
        default: return image.zoom_near(width, height);
    }
}

bool ResizeCanvas(mif& image, int width, int height, int anchorCell, uint32_t background) {
    if (image.empty()) return false;
    mif canvas(width, height, image.depth());
    if (canvas.empty()) return false;
    if (image.depth() <= 8) {
        const std::vector<Rgbq> table(image.palette().begin(), image.palette().end());
        if (table.empty() || !canvas.replace_palette(table)) return false;
    } else if (!canvas.solidfill(nullptr, background, 255, 0)) {
        return false;
    }
    const PastePoint at = AnchorPosition(anchorCell, width, height, image.width(), image.height());
    // The anchor keeps the picture on the canvas; blt cuts what does not fit.
    if (!canvas.blt(at.x, at.y, image.width(), image.height(), &image, 0, 0)) return false;
    image = std::move(canvas);
    return true;
}

bool ReduceColours(mif& image, int method, int count) {
    if (image.empty() || image.depth() < 9 || count < 2 || count > 256) return false;
    if (method < kQuantizeNearest || method > kQuantizePattern) return false;
    return image.quantize(count, method, nullptr);
}

int PercentOfSide(int pixels, int current) {
    if (current <= 0) return 100;
    return static_cast<int>(std::max<int64_t>(1, (int64_t{pixels} * 200 + current) / (2 * int64_t{current})));
}

int SideOfPercent(int percent, int current) {
    return static_cast<int>(std::clamp<int64_t>((int64_t{percent} * current * 2 + 100) / 200, 1, INT32_MAX));
}

int KeptRatioSide(int changedSide, int changedCurrent, int otherCurrent) {
    if (changedCurrent <= 0) return otherCurrent;
    const int64_t side = (int64_t{changedSide} * otherCurrent * 2 + changedCurrent) / (2 * int64_t{changedCurrent});
    return static_cast<int>(std::clamp<int64_t>(side, 1, INT32_MAX));
}

}  // namespace lx
