#include "RectClamp.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

TEST(RectClamp, KeepsFittingRectanglesAndMovesOrShrinksOthersIntoTheArea) {
    const PlainRect work{0, 0, 1920, 1040}, second{1920, 0, 3200, 1024};
    const struct {
        PlainRect rect, area, expected;
    } cases[] = {
        {{100, 50, 900, 650}, work, {100, 50, 900, 650}},        // fits
        {{2500, 100, 3300, 700}, work, {1120, 100, 1920, 700}},  // on a monitor that is gone, keeps its size
        {{-300, -200, 500, 400}, work, {0, 0, 800, 600}},
        {{-10, -10, 4000, 3000}, work, work},                    // larger than the area
        {{0, 0, 800, 600}, second, {1920, 0, 2720, 600}},        // an area not at the origin
    };
    for (const auto& c : cases) {
        const PlainRect r = ClampRectInto(c.rect, c.area);
        EXPECT_EQ((std::vector<int>{r.left, r.top, r.right, r.bottom}),
                  (std::vector<int>{c.expected.left, c.expected.top, c.expected.right, c.expected.bottom}));
    }
    // An inverted rectangle gets no size.
    const PlainRect r = ClampRectInto({500, 500, 100, 100}, work);
    EXPECT_EQ(r.right - r.left, 0);
    EXPECT_EQ(r.bottom - r.top, 0);
    EXPECT_GE(r.left, 0);
}

}  // namespace
}  // namespace lx
