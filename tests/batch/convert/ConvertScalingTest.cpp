#include <gtest/gtest.h>

#include "ConvertOptions.h"
#include "ConvertScaling.h"

namespace lx {
namespace {

testing::AssertionResult Is(const ScaleDecision& d, ScaleDecision::Kind kind, int w = 0, int h = 0) {
    if (d.kind != kind) return testing::AssertionFailure() << "kind " << d.kind << " instead of " << kind;
    if (kind == ScaleDecision::Scale && (d.width != w || d.height != h))
        return testing::AssertionFailure() << d.width << "x" << d.height << " instead of " << w << "x" << h;
    return testing::AssertionSuccess();
}

TEST(ConvertScalingTest, MulDivRoundsHalfAwayFromZeroAndFailsLikeTheSystem) {
    EXPECT_EQ(MulDiv(1000, 2000, 3000), 667);
    EXPECT_EQ(MulDiv(1, 1, 2), 1);
    EXPECT_EQ(MulDiv(1, 1, 3), 0);
    EXPECT_EQ(MulDiv(-1, 1, 2), -1);
    EXPECT_EQ(MulDiv(1, 1, -2), -1);
    EXPECT_EQ(MulDiv(-5, 3, -2), 8);
    EXPECT_EQ(MulDiv(5, 7, 0), -1);
    EXPECT_EQ(MulDiv(0x7fffffff, 0x7fffffff, 0x7fffffff), 0x7fffffff);
    EXPECT_EQ(MulDiv(0x7fffffff, 2, 1), -1);
}

TEST(ConvertScalingTest, LongSideAndShortSideOfALandscapePhoto) {
    EXPECT_TRUE(Is(DecideScale(3000, 2000, kResizeLongSide, 1000, false), ScaleDecision::Scale, 1000, 667));
    EXPECT_TRUE(Is(DecideScale(3000, 2000, kResizeShortSide, 1000, false), ScaleDecision::Scale, 1500, 1000));
    // Portrait: the sides swap roles.
    EXPECT_TRUE(Is(DecideScale(2000, 3000, kResizeLongSide, 1000, false), ScaleDecision::Scale, 667, 1000));
    EXPECT_TRUE(Is(DecideScale(2000, 3000, kResizeShortSide, 1000, false), ScaleDecision::Scale, 1000, 1500));
    // A square counts as "not wider": its height is the long side, and its width the short one... both
    // are the same, so either way the result is square.
    EXPECT_TRUE(Is(DecideScale(500, 500, kResizeLongSide, 100, false), ScaleDecision::Scale, 100, 100));
    EXPECT_TRUE(Is(DecideScale(500, 500, kResizeShortSide, 100, false), ScaleDecision::Scale, 100, 100));
    // Enlarging is allowed without noEnlarge.
    EXPECT_TRUE(Is(DecideScale(800, 600, kResizeLongSide, 1000, false), ScaleDecision::Scale, 1000, 750));
}

TEST(ConvertScalingTest, NoEnlargeLeavesOnlyImagesBelowTheTarget) {
    EXPECT_TRUE(Is(DecideScale(800, 600, kResizeLongSide, 1000, true), ScaleDecision::Keep));
    EXPECT_TRUE(Is(DecideScale(600, 800, kResizeLongSide, 1000, true), ScaleDecision::Keep));
    // The comparison is with the side the mode names, not the other one.
    EXPECT_TRUE(Is(DecideScale(1200, 600, kResizeLongSide, 1000, true), ScaleDecision::Scale, 1000, 500));
    EXPECT_TRUE(Is(DecideScale(1200, 600, kResizeShortSide, 1000, true), ScaleDecision::Keep));
    EXPECT_TRUE(Is(DecideScale(1200, 1100, kResizeShortSide, 1000, true), ScaleDecision::Scale, 1091, 1000));
    // Exactly the target size is not below it.
    EXPECT_TRUE(Is(DecideScale(1000, 600, kResizeLongSide, 1000, true), ScaleDecision::Scale, 1000, 600));
    // noEnlarge means nothing to the percent mode.
    EXPECT_TRUE(Is(DecideScale(100, 50, kResizePercent, 200, true), ScaleDecision::Scale, 200, 100));
}

TEST(ConvertScalingTest, PercentTruncatesAndHundredIsUntouched) {
    EXPECT_TRUE(Is(DecideScale(3000, 2000, kResizePercent, 100, false), ScaleDecision::Keep));
    EXPECT_TRUE(Is(DecideScale(333, 199, kResizePercent, 50, false), ScaleDecision::Scale, 166, 99));
    EXPECT_TRUE(Is(DecideScale(3, 7, kResizePercent, 40, false), ScaleDecision::Scale, 1, 2));
}

TEST(ConvertScalingTest, ZeroOrNegativeLengthsAreSkipped) {
    EXPECT_TRUE(Is(DecideScale(1, 1, kResizePercent, 20, false), ScaleDecision::Skip));
    EXPECT_TRUE(Is(DecideScale(4000, 1, kResizeLongSide, 1000, false), ScaleDecision::Skip));
    EXPECT_TRUE(Is(DecideScale(3000, 2000, kResizeLongSide, 0, false), ScaleDecision::Skip));
    EXPECT_TRUE(Is(DecideScale(3000, 2000, kResizePercent, -50, false), ScaleDecision::Skip));
    // A percentage that overflows a side does not wrap into a small image.
    EXPECT_TRUE(Is(DecideScale(60000, 60000, kResizePercent, 0x7fffffff, false), ScaleDecision::Skip));
}

TEST(ConvertScalingTest, UnknownModeLeavesTheImage) {
    EXPECT_TRUE(Is(DecideScale(3000, 2000, 3, 1000, false), ScaleDecision::Keep));
    EXPECT_TRUE(Is(DecideScale(3000, 2000, -1, 1000, false), ScaleDecision::Keep));
}

}  // namespace
}  // namespace lx
