#include "RectClamp.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

bool operator==(const PlainRect& a, const PlainRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

const PlainRect kWork{0, 0, 1920, 1040};

TEST(RectClamp, KeepsARectangleThatFits) {
    const PlainRect inside{100, 50, 900, 650};
    EXPECT_TRUE(ClampRectInto(inside, kWork) == inside);
}

TEST(RectClamp, PullsAnOffscreenRectangleBackWithItsSize) {
    // Saved on a second monitor to the right that is gone now.
    const PlainRect r = ClampRectInto({2500, 100, 3300, 700}, kWork);
    EXPECT_TRUE(r == (PlainRect{1120, 100, 1920, 700}));
    const PlainRect above = ClampRectInto({-300, -200, 500, 400}, kWork);
    EXPECT_TRUE(above == (PlainRect{0, 0, 800, 600}));
}

TEST(RectClamp, ShrinksARectangleLargerThanTheArea) {
    const PlainRect r = ClampRectInto({-10, -10, 4000, 3000}, kWork);
    EXPECT_TRUE(r == kWork);
}

TEST(RectClamp, InvertedRectangleGetsNoSize) {
    const PlainRect r = ClampRectInto({500, 500, 100, 100}, kWork);
    EXPECT_EQ(r.right - r.left, 0);
    EXPECT_EQ(r.bottom - r.top, 0);
    EXPECT_GE(r.left, 0);
}

TEST(RectClamp, AreaNotAtTheOrigin) {
    const PlainRect second{1920, 0, 3200, 1024};
    const PlainRect r = ClampRectInto({0, 0, 800, 600}, second);
    EXPECT_TRUE(r == (PlainRect{1920, 0, 2720, 600}));
}

}  // namespace
}  // namespace lx
