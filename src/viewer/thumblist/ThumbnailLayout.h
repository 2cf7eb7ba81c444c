// The arithmetic of the thumbnail list, apart from any window: in which order the
// thumbnails of a listed folder are made, how big a thumbnail is, and where the pieces of
// one list item (picture, its selection box, the grey placeholder, the shadow) are drawn.
//
// Rectangles are left, top, right, bottom with right and bottom exclusive, like RECT.
#pragma once

#include <vector>

#include "ThumbnailMaker.h"

namespace lx {

// How many items before the shown one get their thumbnails first.
constexpr int kThumbnailLead = 16;
// The picture box's margin at the right and bottom (where the shadow lies), the selection
// box's extra margin at the left and top, and the size of one square shadow piece.
constexpr int kPictureMargin = 5;
constexpr int kSelectionMargin = 4;
constexpr int kShadowPiece = 5;

struct LayoutRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool operator==(const LayoutRect&) const = default;
};

// The index thumbnails start from: `kThumbnailLead` before the shown item, never below 0.
int ThumbnailStartIndex(int currentIndex);

// Every index of a list of `count` items once: `start` to the end, then 0 to `start` - 1.
// A start outside the list counts as 0.
std::vector<int> ThumbnailOrder(int count, int start);

// Where one item is drawn inside its cell `item`, for a thumbnail of `thumb` size.
struct ItemBoxes {
    LayoutRect picture;     // the thumbnail plus the shadow margin, centred in the cell
    LayoutRect background;  // the picture box grown at the left and top: the selection box
    LayoutRect thumbnail;   // where the thumbnail (or the grey placeholder) goes
};
ItemBoxes LayOutItem(const LayoutRect& item, ThumbSize thumb);

// One shadow piece at (x, y); `piece` indexes the five images of the shadow strip.
enum ShadowPieceKind { kShadowBottomLeft = 0, kShadowBottomRight = 1, kShadowTopRight = 2, kShadowBottom = 3, kShadowRight = 4 };
struct ShadowPlacement {
    int piece = 0;
    int x = 0, y = 0;
    bool operator==(const ShadowPlacement&) const = default;
};

// The shadow of a picture box: the three corners first (bottom-left, bottom-right,
// top-right), then the bottom edge every 5 pixels and the right edge every 5 pixels. Edge
// pieces may reach into a corner; the drawing clips the corners out once they are drawn.
std::vector<ShadowPlacement> ShadowLayout(const LayoutRect& picture);

}  // namespace lx
