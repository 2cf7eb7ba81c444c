// The list's arithmetic: thumbnail order, and where an item's boxes and shadow pieces go.
#include <gtest/gtest.h>

#include <numeric>

#include "ThumbnailLayout.h"

using namespace lx;

namespace {

std::vector<int> Range(int from, int to) {
    std::vector<int> v(static_cast<size_t>(to - from));
    std::iota(v.begin(), v.end(), from);
    return v;
}

}  // namespace

TEST(ThumbnailOrder, StartsSixteenBeforeTheShownItemAndWrapsAround) {
    EXPECT_EQ(ThumbnailStartIndex(50), 34);
    std::vector<int> expected = Range(34, 100);
    const std::vector<int> head = Range(0, 34);
    expected.insert(expected.end(), head.begin(), head.end());
    EXPECT_EQ(ThumbnailOrder(100, ThumbnailStartIndex(50)), expected);
}

TEST(ThumbnailOrder, AmongTheFirstSixteenStartsAtZero) {
    EXPECT_EQ(ThumbnailStartIndex(0), 0);
    EXPECT_EQ(ThumbnailStartIndex(15), 0);
    EXPECT_EQ(ThumbnailStartIndex(16), 0);
    EXPECT_EQ(ThumbnailStartIndex(17), 1);
    EXPECT_EQ(ThumbnailOrder(20, ThumbnailStartIndex(10)), Range(0, 20));
}

TEST(ThumbnailOrder, EmptyListsAndStartsOutsideTheList) {
    EXPECT_TRUE(ThumbnailOrder(0, 0).empty());
    EXPECT_TRUE(ThumbnailOrder(-3, 0).empty());
    EXPECT_EQ(ThumbnailOrder(3, 7), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(ThumbnailOrder(3, -1), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(ThumbnailOrder(3, 2), (std::vector<int>{2, 0, 1}));
}

TEST(LayOutItem, CentresThePictureBoxAndDerivesTheOthersFromIt) {
    // A 96 x 74 icon area; a 72 x 48 thumbnail makes a 77 x 53 picture box.
    const ItemBoxes boxes = LayOutItem({10, 20, 106, 94}, {72, 48});
    EXPECT_EQ(boxes.picture, (LayoutRect{10 + 9, 20 + 10, 10 + 9 + 77, 20 + 10 + 53}));
    EXPECT_EQ(boxes.background, (LayoutRect{15, 26, 96, 83}));
    EXPECT_EQ(boxes.thumbnail, (LayoutRect{19, 30, 91, 78}));
}

TEST(LayOutItem, HalvesRoundTowardZeroEvenWhenTheBoxIsLargerThanTheCell) {
    // 80 - 77 = 3 -> 1; 60 - 77 = -17 -> -8 (not -9).
    const ItemBoxes boxes = LayOutItem({0, 0, 80, 60}, {72, 72});
    EXPECT_EQ(boxes.picture.left, 1);
    EXPECT_EQ(boxes.picture.top, -8);
    EXPECT_EQ(boxes.picture.width(), 77);
    EXPECT_EQ(boxes.picture.height(), 77);
}

TEST(ShadowLayout, CornersFirstThenEdgesEveryFivePixels) {
    // Picture box 30 x 20 at (100, 50): the shadow lies in its last 5 columns and rows.
    const std::vector<ShadowPlacement> pieces = ShadowLayout({100, 50, 130, 70});
    const std::vector<ShadowPlacement> expected = {
        {kShadowBottomLeft, 100, 65}, {kShadowBottomRight, 125, 65}, {kShadowTopRight, 125, 50},
        {kShadowBottom, 105, 65},     {kShadowBottom, 110, 65},      {kShadowBottom, 115, 65},
        {kShadowBottom, 120, 65},     {kShadowRight, 125, 55},       {kShadowRight, 125, 60},
    };
    EXPECT_EQ(pieces, expected);
}

TEST(ShadowLayout, EdgesWhoseLengthIsNoMultipleOfFiveReachTheCorner) {
    // 77 wide: bottom pieces at 5, 10 ... 70; the last one ends at 75, two pixels into the
    // corner piece at 72, which the drawing has clipped out by then.
    const std::vector<ShadowPlacement> pieces = ShadowLayout({0, 0, 77, 53});
    int bottom = 0, right = 0, lastBottom = 0, lastRight = 0;
    for (const ShadowPlacement& p : pieces) {
        if (p.piece == kShadowBottom) ++bottom, lastBottom = p.x;
        if (p.piece == kShadowRight) ++right, lastRight = p.y;
    }
    EXPECT_EQ(bottom, 14);
    EXPECT_EQ(lastBottom, 70);
    EXPECT_EQ(right, 9);
    EXPECT_EQ(lastRight, 45);
    // A picture box too small for edges has its corners only.
    EXPECT_EQ(ShadowLayout({0, 0, 6, 6}).size(), 3u);
}
