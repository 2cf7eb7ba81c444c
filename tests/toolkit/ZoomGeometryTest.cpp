#include <gtest/gtest.h>

#include "ZoomGeometry.h"

using namespace lx;

TEST(ZoomSteps, StepInAndOutWalkTheWholeRangeAndStopAtItsEnds) {
    int zoom = kZoomFull, steps = 0;
    while (ZoomStepIn(zoom) != zoom) {
        EXPECT_GT(ZoomStepIn(zoom), zoom);
        EXPECT_EQ(ZoomStepOut(ZoomStepIn(zoom)), zoom) << zoom;  // in then out comes back
        zoom = ZoomStepIn(zoom);
        ++steps;
    }
    EXPECT_EQ(zoom, kZoomMax);
    EXPECT_GE(steps, 8);
    while (ZoomStepOut(zoom) != zoom) zoom = ZoomStepOut(zoom);
    EXPECT_EQ(zoom, kZoomMin);
    // A zoom between steps goes to the neighbouring steps, not two away.
    EXPECT_EQ(ZoomStepIn(1100), 1250);
    EXPECT_EQ(ZoomStepOut(1100), 1000);
    EXPECT_EQ(ZoomStepIn(999999), kZoomMax);
    EXPECT_EQ(ZoomStepOut(-5), kZoomMin);
    // The navigator's factors 1 and 8 are steps.
    EXPECT_EQ(ZoomStepIn(ZoomStepOut(8000)), 8000);
}

TEST(ZoomFit, WholeImageFitsBothSidesAndDoesNotEnlargeUnlessAsked) {
    // 1000 x 500 into 400 x 400: width limits, 40 %.
    EXPECT_EQ(FitZoom(kZoomWhole, 1000, 500, 400, 400, 16, 16, false), 400);
    // 100 x 800 into 400 x 400: height limits, 50 %.
    EXPECT_EQ(FitZoom(kZoomWhole, 100, 800, 400, 400, 16, 16, false), 500);
    // Small picture: stays at 100 % unless enlarging is allowed.
    EXPECT_EQ(FitZoom(kZoomWhole, 100, 50, 400, 400, 16, 16, false), 1000);
    EXPECT_EQ(FitZoom(kZoomWhole, 100, 50, 400, 400, 16, 16, true), 4000);
    // The scaled picture really fits, for awkward ratios too.
    for (int w : {3, 7, 640, 1999, 4001})
        for (int h : {1, 9, 480, 3001}) {
            const int z = FitZoom(kZoomWhole, w, h, 333, 251, 16, 16, true);
            EXPECT_LE(ScaledExtent(w, z), 333) << w << "x" << h;
            EXPECT_LE(ScaledExtent(h, z), 251) << w << "x" << h;
        }
}

TEST(ZoomFit, FittingOneSideMakesRoomForTheOtherSidesScrollBar) {
    // 1000 x 2000 to width 500 x 400: 50 % makes it 1000 high, so a vertical bar of 20
    // leaves 480 pixels: 48 %.
    EXPECT_EQ(FitZoom(kZoomFitWidth, 1000, 2000, 500, 400, 20, 20, false), 480);
    // No bar needed: plain ratio.
    EXPECT_EQ(FitZoom(kZoomFitWidth, 1000, 100, 500, 400, 20, 20, false), 500);
    EXPECT_EQ(FitZoom(kZoomFitHeight, 2000, 1000, 400, 500, 20, 20, false), 480);
    EXPECT_EQ(FitZoom(kZoomFitHeight, 10, 100, 400, 500, 20, 20, false), 5000);
    // Degenerate sizes give 100 %, and huge ratios stay within range.
    EXPECT_EQ(FitZoom(kZoomWhole, 0, 10, 100, 100, 0, 0, true), kZoomFull);
    EXPECT_EQ(FitZoom(kZoomWhole, 10, 10, 0, 100, 0, 0, true), kZoomFull);
    EXPECT_EQ(FitZoom(kZoomWhole, 1, 1, 30000, 30000, 0, 0, true), kZoomMax);
    EXPECT_EQ(FitZoom(kZoomWhole, 100000, 100000, 10, 10, 0, 0, true), kZoomMin);
}

TEST(ZoomMapping, SmallPicturesAreCentredLargeOnesScrollWithinRange) {
    const ViewMapping small = MapView(100, 50, 1000, 300, 250, 40, 40);
    EXPECT_EQ(small.originX, 100);
    EXPECT_EQ(small.originY, 100);
    EXPECT_EQ(small.scrollX, 0);  // nothing to scroll
    EXPECT_EQ(small.ToClientX(0), 100);
    EXPECT_EQ(small.ToImageX(149), 49);

    const ViewMapping big = MapView(1000, 1000, 2000, 300, 200, 5000, -7);
    EXPECT_EQ(big.scrollX, 2000 - 300);  // clamped to the far end
    EXPECT_EQ(big.scrollY, 0);
    EXPECT_EQ(big.originX, 0);
    EXPECT_EQ(big.ToClientX(999), 2 * 999 - 1700);
    EXPECT_EQ(big.ToImageX(0), 850);
    EXPECT_EQ(big.ToImageX(1), 850);  // both halves of the doubled pixel
    EXPECT_EQ(big.ToImageX(2), 851);
}

TEST(ZoomMapping, ClientAndImageCoordinatesInvertEachOther) {
    for (int zoom : {10, 333, 500, 667, 1000, 1250, 3000, 16000}) {
        const ViewMapping map = MapView(900, 700, zoom, 400, 300, 123, 77);
        for (int64_t c = -50; c < 450; c += 7) {
            const int64_t i = map.ToImageX(c);
            // c lies inside pixel i: at or after its left edge, before the next one's.
            EXPECT_LE(map.ToClientX(i), c) << zoom;
            if (zoom >= 1000) {
                EXPECT_GT(map.ToClientX(i + 1), c) << zoom;
                EXPECT_EQ(map.ToImageX(map.ToClientX(i)), i) << zoom;
            }
        }
    }
    // Reduced, a client pixel reports the image pixel under its centre.
    EXPECT_EQ(MapView(1000, 10, 100, 100, 10, 0, 0).ToImageX(0), 5);
    EXPECT_EQ(MapView(1000, 10, 100, 100, 10, 0, 0).ToImageX(99), 995);
    EXPECT_EQ(MapView(1000, 10, 500, 500, 10, 0, 0).ToImageX(3), 7);
    // Negative client positions map below zero, not towards it.
    EXPECT_EQ(MapView(10, 10, 1000, 10, 10, 0, 0).ToImageX(-1), -1);
    EXPECT_EQ(MapView(10, 10, 3000, 10, 10, 0, 0).ToImageY(-1), -1);
}

TEST(ZoomMapping, ScrollToKeepHoldsThePointUnderTheMouse) {
    int64_t sx = 0, sy = 0;
    ScrollToKeep(400, 300, 2000, 100, 50, sx, sy);
    const ViewMapping map = MapView(2000, 2000, 2000, 500, 500, sx, sy);
    EXPECT_EQ(map.ToImageX(100), 400);
    EXPECT_EQ(map.ToImageY(50), 300);
}

TEST(ZoomSelection, ClipNormalisesAndClips) {
    EXPECT_EQ(ClipSelection({10, 20, 30, 40}, 100, 100), (ViewRect{10, 20, 30, 40}));
    EXPECT_EQ(ClipSelection({30, 40, 10, 20}, 100, 100), (ViewRect{10, 20, 30, 40}));
    EXPECT_EQ(ClipSelection({-5, -5, 500, 60}, 100, 50), (ViewRect{0, 0, 100, 50}));
    EXPECT_EQ(ClipSelection({100, 0, 200, 10}, 100, 50), ViewRect{});  // wholly outside
    EXPECT_EQ(ClipSelection({5, 5, 5, 9}, 100, 50), ViewRect{});       // no width
    EXPECT_EQ(ClipSelection({0, 0, 10, 10}, 0, 0), ViewRect{});         // no image
    EXPECT_EQ(ClipSelection({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, 7, 3), (ViewRect{0, 0, 7, 3}));
}

TEST(ZoomSelection, DragIncludesBothCornerPixelsInEitherDirection) {
    EXPECT_EQ(SelectionFromDrag(2, 3, 5, 7, 10, 10), (ViewRect{2, 3, 6, 8}));
    EXPECT_EQ(SelectionFromDrag(5, 7, 2, 3, 10, 10), (ViewRect{2, 3, 6, 8}));
    EXPECT_EQ(SelectionFromDrag(-20, 4, 400, 4, 10, 10), (ViewRect{0, 4, 10, 5}));
    EXPECT_EQ(SelectionFromDrag(20, 20, 30, 30, 10, 10), ViewRect{});
}
