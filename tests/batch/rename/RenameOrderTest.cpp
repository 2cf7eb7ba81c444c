#include "RenameOrder.h"

#include <gtest/gtest.h>

#include "FakeRenameWorld.h"

#include <algorithm>

#include "LogicalOrder.h"

namespace lx {
namespace {

using lxtest::ShotAt;

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(LogicalOrder, DigitRunsCompareByValue) {
    EXPECT_LT(CompareLogical(L"IMG2.jpg", L"IMG10.jpg"), 0);
    EXPECT_GT(CompareLogical(L"IMG10.jpg", L"IMG2.jpg"), 0);
    EXPECT_LT(CompareLogical(L"a9b", L"a10a"), 0);
    EXPECT_LT(CompareLogical(L"DSC_0099", L"DSC_100"), 0);
    EXPECT_EQ(CompareLogical(L"x007", L"x7"), 0);
    // Longer than any integer type: still compared by value.
    EXPECT_LT(CompareLogical(L"n99999999999999999999999", L"n100000000000000000000000"), 0);
}

TEST(LogicalOrder, LettersIgnoreCase) {
    EXPECT_EQ(CompareLogical(L"img_0001.JPG", L"IMG_0001.jpg"), 0);
    EXPECT_LT(CompareLogical(L"apple", L"Banana"), 0);
    EXPECT_LT(CompareLogical(L"Apple", L"banana"), 0);
}

TEST(LogicalOrder, DigitsThenPunctuationThenLetters) {
    EXPECT_LT(CompareLogical(L"a1", L"a_1"), 0);
    EXPECT_LT(CompareLogical(L"20240507_1.jpg", L"_DSC0001.NEF"), 0);
    EXPECT_LT(CompareLogical(L"a_1", L"aa"), 0);
    EXPECT_LT(CompareLogical(L"a1", L"aa"), 0);
    EXPECT_LT(CompareLogical(L"a b", L"ab"), 0);
    EXPECT_LT(CompareLogical(L"IMG", L"IMG1"), 0);
    EXPECT_GT(CompareLogical(L"IMG1", L"IMG"), 0);
    EXPECT_EQ(CompareLogical(L"", L""), 0);
}

TEST(LogicalOrder, IsAntisymmetricOverAMixedSet) {
    const std::vector<std::wstring> names{L"", L"a", L"A1", L"a01", L"a1b", L"a_1", L"a-1", L"a 1", L"IMG10",
                                          L"img2", L"IMG_2", L"10", L"9", L"009", L"z", L"Z.jpg", L"z.JPG"};
    for (const auto& a : names) {
        for (const auto& b : names) {
            EXPECT_EQ(Sign(CompareLogical(a, b)), -Sign(CompareLogical(b, a)));
        }
    }
}

TEST(RenameOrder, ShotTimeComparesToTheMillisecondIgnoringWeekday) {
    ShootingTime a = ShotAt(2024, 5, 7, 10, 0, 0, 1);
    ShootingTime b = ShotAt(2024, 5, 7, 10, 0, 0, 2);
    EXPECT_LT(CompareShotTimes(a, b), 0);
    EXPECT_GT(CompareShotTimes(b, a), 0);
    b.milliseconds = 1;
    b.dayOfWeek = 3;
    EXPECT_EQ(CompareShotTimes(a, b), 0);
    // Each field outranks all the ones after it.
    EXPECT_LT(CompareShotTimes(ShotAt(2023, 12, 31, 23, 59, 59, 999), ShotAt(2024, 1, 1, 0, 0, 0)), 0);
    EXPECT_LT(CompareShotTimes(ShotAt(2024, 1, 31, 23, 0, 0), ShotAt(2024, 2, 1, 0, 0, 0)), 0);
    EXPECT_LT(CompareShotTimes(ShotAt(2024, 1, 1, 9, 59, 0), ShotAt(2024, 1, 1, 10, 0, 0)), 0);
}

TEST(RenameOrder, SortsByTimeThenByLogicalName) {
    std::vector<RenameEntry> entries(5);
    entries[0] = {L"C:\\p\\IMG10.jpg", L"", ShotAt(2024, 5, 7, 10, 0, 0)};
    entries[1] = {L"C:\\p\\IMG2.jpg", L"", ShotAt(2024, 5, 7, 10, 0, 0)};
    entries[2] = {L"C:\\p\\late.jpg", L"", ShotAt(2024, 5, 8, 0, 0, 0)};
    entries[3] = {L"C:\\z\\early.jpg", L"", ShotAt(2023, 1, 1, 0, 0, 0)};
    entries[4] = {L"C:\\a\\IMG3.jpg", L"", ShotAt(2024, 5, 7, 10, 0, 0)};
    SortRenameEntries(entries, CompareLogical);
    std::vector<std::wstring> order;
    for (const auto& e : entries) order.push_back(e.oldPath);
    // Same second: the names decide, not the folders.
    EXPECT_EQ(order, (std::vector<std::wstring>{L"C:\\z\\early.jpg", L"C:\\p\\IMG2.jpg", L"C:\\a\\IMG3.jpg",
                                                 L"C:\\p\\IMG10.jpg", L"C:\\p\\late.jpg"}));
}

TEST(RenameOrder, EqualEntriesKeepTheirListOrder) {
    std::vector<RenameEntry> entries(3);
    entries[0] = {L"C:\\b\\same.jpg", L"", ShotAt(2024, 5, 7, 10, 0, 0)};
    entries[1] = {L"C:\\a\\same.jpg", L"", ShotAt(2024, 5, 7, 10, 0, 0)};
    entries[2] = {L"C:\\c\\SAME.jpg", L"", ShotAt(2024, 5, 7, 10, 0, 0)};
    SortRenameEntries(entries, CompareLogical);
    EXPECT_EQ(entries[0].oldPath, L"C:\\b\\same.jpg");
    EXPECT_EQ(entries[1].oldPath, L"C:\\a\\same.jpg");
    EXPECT_EQ(entries[2].oldPath, L"C:\\c\\SAME.jpg");
}

TEST(RenameOrder, GroupIdsFollowTheFormulaIncludingItsCollisions) {
    EXPECT_EQ(RenameGroupId(ShotAt(2024, 5, 7, 0, 0, 0)), 2024507);
    EXPECT_EQ(RenameGroupId(ShotAt(2024, 11, 5, 0, 0, 0)), 2025105);
    EXPECT_EQ(RenameGroupId(ShotAt(2025, 1, 5, 0, 0, 0)), 2025105);
    EXPECT_NE(RenameGroupId(ShotAt(2024, 5, 7, 0, 0, 0)), RenameGroupId(ShotAt(2024, 5, 8, 0, 0, 0)));
}

}  // namespace
}  // namespace lx
