#include <gtest/gtest.h>

#include "ConvertOptions.h"
#include "ConvertScaling.h"

namespace lx {
namespace {

// MulDiv's rounding shows in 1000 x 667 and 1091 x 1000; its use is checked, not its arithmetic.
TEST(ConvertScalingTest, DecidesByTheSideTheModeNames) {
    constexpr auto K = ScaleDecision::Keep, S = ScaleDecision::Scale, X = ScaleDecision::Skip;
    const struct {
        int w, h, mode, size;
        bool noEnlarge;
        ScaleDecision::Kind kind;
        int newW, newH;
    } cases[] = {
        {3000, 2000, kResizeLongSide, 1000, false, S, 1000, 667},
        {3000, 2000, kResizeShortSide, 1000, false, S, 1500, 1000},
        {2000, 3000, kResizeLongSide, 1000, false, S, 667, 1000},  // portrait: the sides swap roles
        {2000, 3000, kResizeShortSide, 1000, false, S, 1000, 1500},
        {500, 500, kResizeLongSide, 100, false, S, 100, 100},
        {500, 500, kResizeShortSide, 100, false, S, 100, 100},
        {800, 600, kResizeLongSide, 1000, false, S, 1000, 750},  // enlarging is allowed
        {800, 600, kResizeLongSide, 1000, true, K},
        {600, 800, kResizeLongSide, 1000, true, K},
        {1200, 600, kResizeLongSide, 1000, true, S, 1000, 500},  // noEnlarge looks at the named side
        {1200, 600, kResizeShortSide, 1000, true, K},
        {1200, 1100, kResizeShortSide, 1000, true, S, 1091, 1000},
        {1000, 600, kResizeLongSide, 1000, true, S, 1000, 600},  // exactly the target is not below it
        {100, 50, kResizePercent, 200, true, S, 200, 100},       // noEnlarge means nothing to percent
        {3000, 2000, kResizePercent, 100, false, K},
        {333, 199, kResizePercent, 50, false, S, 166, 99},  // truncated
        {3, 7, kResizePercent, 40, false, S, 1, 2},
        {1, 1, kResizePercent, 20, false, X},
        {4000, 1, kResizeLongSide, 1000, false, X},
        {3000, 2000, kResizeLongSide, 0, false, X},
        {3000, 2000, kResizePercent, -50, false, X},
        {60000, 60000, kResizePercent, 0x7fffffff, false, X},  // an overflow does not wrap into a small image
        {3000, 2000, 3, 1000, false, K},                       // unknown modes leave the image
        {3000, 2000, -1, 1000, false, K},
    };
    for (const auto& c : cases) {
        const ScaleDecision d = DecideScale(c.w, c.h, c.mode, c.size, c.noEnlarge);
        EXPECT_EQ(d.kind, c.kind) << c.w << "x" << c.h << " mode " << c.mode << " size " << c.size;
        if (c.kind == S) {
            EXPECT_EQ(std::make_pair(d.width, d.height), std::make_pair(c.newW, c.newH)) << c.w << "x" << c.h;
        }
    }
}

}  // namespace
}  // namespace lx
