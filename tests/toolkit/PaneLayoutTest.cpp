#include <gtest/gtest.h>

#include "PaneLayout.h"

using lx::ClampSplitPosition;
using lx::StatusPaneEdges;

TEST(SplitPosition, StaysBetweenBothMinimumsAndFavoursTheFirstPane) {
    EXPECT_EQ(ClampSplitPosition(200, 1000, 4, 100, 100), 200);
    EXPECT_EQ(ClampSplitPosition(50, 1000, 4, 100, 100), 100);
    EXPECT_EQ(ClampSplitPosition(990, 1000, 4, 100, 100), 896);  // 1000 - 4 - 100
    EXPECT_EQ(ClampSplitPosition(990, 1000, 4, 0, 0), 990);
    EXPECT_EQ(ClampSplitPosition(999, 1000, 4, 0, 0), 996);
    // Too small for both: the first pane keeps its minimum.
    EXPECT_EQ(ClampSplitPosition(150, 150, 4, 100, 100), 100);
    EXPECT_EQ(ClampSplitPosition(-20, 0, 4, -5, 0), 0);
}

TEST(StatusPanes, FirstPaneStretchesTheOthersKeepTheirWidthsAndTheLastRunsToTheEnd) {
    EXPECT_EQ(StatusPaneEdges(1000, {0, 100, 50, 80}), (std::vector<int>{770, 870, 920, -1}));
    EXPECT_EQ(StatusPaneEdges(100, {0, 100, 50}), (std::vector<int>{0, 100, -1}));  // squeezed
    EXPECT_EQ(StatusPaneEdges(300, {0}), (std::vector<int>{-1}));
    EXPECT_TRUE(StatusPaneEdges(300, {}).empty());
}
