#include "RenameOrder.h"

#include <gtest/gtest.h>

#include "FakeRenameWorld.h"

#include <algorithm>

#include "LogicalOrder.h"

namespace lx {
namespace {

using lxtest::ShotAt;

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(LogicalOrder, DigitRunsByValueLettersIgnoringCaseDigitsBeforePunctuationBeforeLetters) {
    const struct {
        const wchar_t *a, *b;
        int sign;
    } cases[] = {
        {L"IMG2.jpg", L"IMG10.jpg", -1}, {L"a9b", L"a10a", -1}, {L"DSC_0099", L"DSC_100", -1}, {L"x007", L"x7", 0},
        // Longer than any integer type: still compared by value.
        {L"n99999999999999999999999", L"n100000000000000000000000", -1},
        {L"img_0001.JPG", L"IMG_0001.jpg", 0}, {L"apple", L"Banana", -1}, {L"Apple", L"banana", -1},
        {L"a1", L"a_1", -1}, {L"20240507_1.jpg", L"_DSC0001.NEF", -1}, {L"a_1", L"aa", -1}, {L"a1", L"aa", -1},
        {L"a b", L"ab", -1}, {L"IMG", L"IMG1", -1}, {L"", L"", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Sign(CompareLogical(c.a, c.b)), c.sign) << c.a << " " << c.b;
        EXPECT_EQ(Sign(CompareLogical(c.b, c.a)), -c.sign) << c.b << " " << c.a;
    }
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

TEST(RenameOrder, SortsByTimeThenByLogicalNameKeepingTheListOrderOfEquals) {
    const ShootingTime tenOClock = ShotAt(2024, 5, 7, 10, 0, 0);
    std::vector<RenameEntry> entries = {
        {L"C:\\p\\IMG10.jpg", L"", tenOClock},          {L"C:\\p\\IMG2.jpg", L"", tenOClock},
        {L"C:\\p\\late.jpg", L"", ShotAt(2024, 5, 8)},   {L"C:\\z\\early.jpg", L"", ShotAt(2023, 1, 1)},
        {L"C:\\a\\IMG3.jpg", L"", tenOClock},           {L"C:\\b\\same.jpg", L"", tenOClock},
        {L"C:\\a\\same.jpg", L"", tenOClock},           {L"C:\\c\\SAME.jpg", L"", tenOClock},
    };
    SortRenameEntries(entries, CompareLogical);
    std::vector<std::wstring> order;
    for (const auto& e : entries) order.push_back(e.oldPath);
    // Same second: the names decide, not the folders.
    EXPECT_EQ(order, (std::vector<std::wstring>{L"C:\\z\\early.jpg", L"C:\\p\\IMG2.jpg", L"C:\\a\\IMG3.jpg",
                                                 L"C:\\p\\IMG10.jpg", L"C:\\b\\same.jpg", L"C:\\a\\same.jpg",
                                                 L"C:\\c\\SAME.jpg", L"C:\\p\\late.jpg"}));
}

TEST(RenameOrder, GroupIdsFollowTheFormulaIncludingItsCollisions) {
    EXPECT_EQ(RenameGroupId(ShotAt(2024, 5, 7, 0, 0, 0)), 2024507);
    EXPECT_EQ(RenameGroupId(ShotAt(2024, 11, 5, 0, 0, 0)), 2025105);
    EXPECT_EQ(RenameGroupId(ShotAt(2025, 1, 5, 0, 0, 0)), 2025105);
    EXPECT_NE(RenameGroupId(ShotAt(2024, 5, 7, 0, 0, 0)), RenameGroupId(ShotAt(2024, 5, 8, 0, 0, 0)));
}

}  // namespace
}  // namespace lx
