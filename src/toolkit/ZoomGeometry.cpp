#include "ZoomGeometry.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace lx {

namespace {

// Steps that land on whole screen pixels for common ratios (1/3, 1/2, 2/3, 2x ...).
constexpr int kSteps[] = {10,   20,   30,   50,   70,   100,  150,  200,  250,   333,   500,   667, 750,
                          1000, 1250, 1500, 2000, 3000, 4000, 5000, 6000, 8000, 10000, 12000, 16000};

int64_t FloorDiv(int64_t a, int64_t b) {
    int64_t q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
    return q;
}

// Largest zoom at which `pixels` still fit in `room`.
int ZoomToFit(int pixels, int room) {
    if (pixels <= 0 || room <= 0) return kZoomMin;
    return ClampZoom(static_cast<int>(std::min<int64_t>(kZoomMax, int64_t{room} * kZoomFull / pixels)));
}

}  // namespace

int ClampZoom(int zoom) { return std::clamp(zoom, kZoomMin, kZoomMax); }

int ZoomStepIn(int zoom) {
    zoom = ClampZoom(zoom);
    for (int step : kSteps)
        if (step > zoom) return step;
    return zoom;
}

int ZoomStepOut(int zoom) {
    zoom = ClampZoom(zoom);
    for (auto it = std::rbegin(kSteps); it != std::rend(kSteps); ++it)
        if (*it < zoom) return *it;
    return zoom;
}

int64_t ScaledExtent(int pixels, int zoom) {
    if (pixels <= 0) return 0;
    return std::max<int64_t>(1, int64_t{pixels} * ClampZoom(zoom) / kZoomFull);
}

int FitZoom(ZoomCommand command, int imageWidth, int imageHeight, int clientWidth, int clientHeight,
            int scrollBarWidth, int scrollBarHeight, bool enlarge) {
    if (imageWidth <= 0 || imageHeight <= 0 || clientWidth <= 0 || clientHeight <= 0) return kZoomFull;
    switch (command) {
        case kZoomWhole: {
            const int zoom = std::min(ZoomToFit(imageWidth, clientWidth), ZoomToFit(imageHeight, clientHeight));
            return enlarge ? zoom : std::min(zoom, kZoomFull);
        }
        case kZoomFitWidth: {
            int zoom = ZoomToFit(imageWidth, clientWidth);
            if (ScaledExtent(imageHeight, zoom) > clientHeight)
                zoom = ZoomToFit(imageWidth, clientWidth - scrollBarWidth);
            return zoom;
        }
        case kZoomFitHeight: {
            int zoom = ZoomToFit(imageHeight, clientHeight);
            if (ScaledExtent(imageWidth, zoom) > clientWidth)
                zoom = ZoomToFit(imageHeight, clientHeight - scrollBarHeight);
            return zoom;
        }
        default:
            return kZoomFull;
    }
}

int64_t ViewMapping::ToClientX(int64_t i) const { return originX - scrollX + FloorDiv(i * zoom, kZoomFull); }
int64_t ViewMapping::ToClientY(int64_t i) const { return originY - scrollY + FloorDiv(i * zoom, kZoomFull); }

// Inverse of ToClient. Enlarged, a client pixel lies in exactly one image pixel: the largest i
// with floor(i * zoom / 1000) <= c. Reduced, it covers several; the one under its centre is
// reported, so neither edge of the picture is favoured.
static int64_t InverseEdge(int64_t c, int zoom) {
    if (zoom >= kZoomFull) return FloorDiv((c + 1) * kZoomFull - 1, zoom);
    return FloorDiv((2 * c + 1) * kZoomFull, 2 * int64_t{zoom});
}
int64_t ViewMapping::ToImageX(int64_t c) const { return InverseEdge(c - originX + scrollX, zoom); }
int64_t ViewMapping::ToImageY(int64_t c) const { return InverseEdge(c - originY + scrollY, zoom); }

int64_t ClampScroll(int64_t position, int64_t content, int64_t client) {
    return std::clamp<int64_t>(position, 0, std::max<int64_t>(0, content - client));
}

ViewMapping MapView(int imageWidth, int imageHeight, int zoom, int clientWidth, int clientHeight,
                    int64_t scrollX, int64_t scrollY) {
    ViewMapping map;
    map.zoom = ClampZoom(zoom);
    const int64_t width = ScaledExtent(imageWidth, map.zoom);
    const int64_t height = ScaledExtent(imageHeight, map.zoom);
    map.originX = std::max<int64_t>(0, (clientWidth - width) / 2);
    map.originY = std::max<int64_t>(0, (clientHeight - height) / 2);
    map.scrollX = ClampScroll(scrollX, width, clientWidth);
    map.scrollY = ClampScroll(scrollY, height, clientHeight);
    return map;
}

void ScrollToKeep(double x, double y, int zoom, int cx, int cy, int64_t& scrollX, int64_t& scrollY) {
    const double scale = ClampZoom(zoom) / double{kZoomFull};
    scrollX = std::llround(x * scale - cx);
    scrollY = std::llround(y * scale - cy);
}

ViewRect ClipSelection(ViewRect rect, int imageWidth, int imageHeight) {
    if (rect.left > rect.right) std::swap(rect.left, rect.right);
    if (rect.top > rect.bottom) std::swap(rect.top, rect.bottom);
    ViewRect clipped{std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, std::max(imageWidth, 0)),
                     std::min(rect.bottom, std::max(imageHeight, 0))};
    return clipped.empty() ? ViewRect{} : clipped;
}

ViewRect SelectionFromDrag(int64_t x0, int64_t y0, int64_t x1, int64_t y1, int imageWidth, int imageHeight) {
    auto fit = [](int64_t v, int limit) { return static_cast<int32_t>(std::clamp<int64_t>(v, 0, std::max(limit, 0))); };
    ViewRect rect{fit(std::min(x0, x1), imageWidth), fit(std::min(y0, y1), imageHeight),
                  fit(std::max(x0, x1) + 1, imageWidth), fit(std::max(y0, y1) + 1, imageHeight)};
    return rect.empty() ? ViewRect{} : rect;
}

}  // namespace lx
