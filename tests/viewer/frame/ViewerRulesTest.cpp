#include "ViewerRules.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

TEST(ViewerRules, DefaultLayoutFollowsTheScreen) {
    const ImageInfoRecord small = DefaultImageInfo(17, 700);
    EXPECT_EQ(small.infoShown, 1);
    EXPECT_EQ(small.listShown, 1);
    EXPECT_EQ(small.listBelow, 0);
    EXPECT_EQ(small.infoWidth, 17 + 224);
    EXPECT_EQ(small.listSize, -1);
    EXPECT_EQ(small.viewOptions, 1);
    EXPECT_EQ(DefaultImageInfo(17, 800).viewOptions, 0);
}

TEST(ViewerRules, NextAndPreviousWrapAround) {
    EXPECT_EQ(NextIndex(3, 5), 4);
    EXPECT_EQ(NextIndex(4, 5), 0);
    EXPECT_EQ(PreviousIndex(0, 5), 4);
    EXPECT_EQ(PreviousIndex(3, 5), 2);
    // No selection: next starts at the first, previous at the last.
    EXPECT_EQ(NextIndex(-1, 5), 0);
    EXPECT_EQ(PreviousIndex(-1, 5), 4);
    // One item or none: nowhere to go.
    EXPECT_EQ(NextIndex(0, 1), -1);
    EXPECT_EQ(PreviousIndex(0, 1), -1);
    EXPECT_EQ(NextIndex(-1, 0), -1);
}

TEST(ViewerRules, DeleteMovesForwardExceptAtTheEnd) {
    EXPECT_EQ(IndexAfterDelete(2, 5), 2);  // the item that moved into its place
    EXPECT_EQ(IndexAfterDelete(0, 5), 0);
    EXPECT_EQ(IndexAfterDelete(4, 5), 3);  // the last: the one before it
    EXPECT_EQ(IndexAfterDelete(1, 2), 0);
    EXPECT_EQ(IndexAfterDelete(0, 1), -1);  // nothing left
}

TEST(ViewerRules, ArrivalZoomIsOriginalSizeOnlyWhenBothSidesFit) {
    EXPECT_EQ(ChooseArrivalZoom(640, 480, 640, 480), ArrivalZoom::OriginalSize);
    EXPECT_EQ(ChooseArrivalZoom(641, 480, 640, 480), ArrivalZoom::WholeImage);
    EXPECT_EQ(ChooseArrivalZoom(100, 481, 640, 480), ArrivalZoom::WholeImage);
}

TEST(ViewerRules, RecentFilesAreNewestFirstUniqueAndCapped) {
    RecentFiles recent;
    recent.Add(L"C:\\a.jpg");
    recent.Add(L"C:\\b.jpg");
    recent.Add(L"c:\\A.JPG");  // the same file in other case moves to the front, once
    ASSERT_EQ(recent.Paths().size(), 2u);
    EXPECT_EQ(recent.Paths()[0], L"c:\\A.JPG");
    EXPECT_EQ(recent.Paths()[1], L"C:\\b.jpg");
    for (int i = 0; i < 20; ++i) recent.Add(L"C:\\" + std::to_wstring(i) + L".jpg");
    ASSERT_EQ(recent.Paths().size(), RecentFiles::kMaxRecent);
    EXPECT_EQ(recent.Paths().front(), L"C:\\19.jpg");
    EXPECT_EQ(recent.Paths().back(), L"C:\\4.jpg");
    recent.Remove(0);
    recent.Remove(99);  // out of range: nothing
    EXPECT_EQ(recent.Paths().front(), L"C:\\18.jpg");
    recent.Add(L"");
    EXPECT_EQ(recent.Paths().size(), RecentFiles::kMaxRecent - 1);
}

TEST(ViewerRules, AssignKeepsOrderAndDropsRepeats) {
    RecentFiles recent;
    recent.Assign({L"x", L"y", L"X", L"z"});
    ASSERT_EQ(recent.Paths().size(), 3u);
    EXPECT_EQ(recent.Paths()[0], L"x");
    EXPECT_EQ(recent.Paths()[1], L"y");
    EXPECT_EQ(recent.Paths()[2], L"z");
}

}  // namespace
}  // namespace lx
