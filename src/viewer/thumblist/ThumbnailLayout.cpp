#include "ThumbnailLayout.h"

#include <algorithm>

namespace lx {

int ThumbnailStartIndex(int currentIndex) { return std::max(currentIndex - kThumbnailLead, 0); }

std::vector<int> ThumbnailOrder(int count, int start) {
    std::vector<int> order;
    if (count <= 0) return order;
    if (start < 0 || start >= count) start = 0;
    order.reserve(static_cast<size_t>(count));
    for (int i = start; i < count; ++i) order.push_back(i);
    for (int i = 0; i < start; ++i) order.push_back(i);
    return order;
}

ItemBoxes LayOutItem(const LayoutRect& item, ThumbSize thumb) {
    const int width = thumb.width + kPictureMargin, height = thumb.height + kPictureMargin;
    // Halves round toward zero, so a box wider than its cell moves left of it, not right.
    const int left = item.left + (item.width() - width) / 2;
    const int top = item.top + (item.height() - height) / 2;
    ItemBoxes boxes;
    boxes.picture = {left, top, left + width, top + height};
    boxes.background = {left - kSelectionMargin, top - kSelectionMargin, left + width, top + height};
    boxes.thumbnail = {left, top, left + width - kPictureMargin, top + height - kPictureMargin};
    return boxes;
}

std::vector<ShadowPlacement> ShadowLayout(const LayoutRect& picture) {
    const int right = picture.right - kShadowPiece, bottom = picture.bottom - kShadowPiece;
    std::vector<ShadowPlacement> pieces = {
        {kShadowBottomLeft, picture.left, bottom},
        {kShadowBottomRight, right, bottom},
        {kShadowTopRight, right, picture.top},
    };
    for (int x = picture.left + kShadowPiece; x < right; x += kShadowPiece) pieces.push_back({kShadowBottom, x, bottom});
    for (int y = picture.top + kShadowPiece; y < bottom; y += kShadowPiece) pieces.push_back({kShadowRight, right, y});
    return pieces;
}

}  // namespace lx
