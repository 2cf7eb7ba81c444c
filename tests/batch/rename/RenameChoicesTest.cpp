#include "RenameChoices.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

TEST(RenameChoices, PacksOneByteEachInItemOrder) {
    EXPECT_EQ(PackRenameChoices({1, 0, 7, 2}), 0x02070001u);
    EXPECT_EQ(PackRenameChoices({10, 9, 8, 3}), 0x0308090Au);
    EXPECT_EQ(PackRenameChoices({}), 0u);
}

TEST(RenameChoices, EveryRestorableChoiceSurvivesARoundTrip) {
    for (int item = 0; item <= 10; ++item) {
        for (int rule = 0; rule <= 3; ++rule) {
            const RenameChoices choices{item, (item + 3) % 11, (item + 7) % 11, rule};
            EXPECT_EQ(UnpackRenameChoices(PackRenameChoices(choices)), choices) << item << " " << rule;
        }
    }
}

TEST(RenameChoices, OldNameItemComesBackAsTheFourDigitCounter) {
    const RenameChoices restored = UnpackRenameChoices(PackRenameChoices({11, 11, 0, 1}));
    EXPECT_EQ(restored, (RenameChoices{10, 10, 0, 1}));
}

TEST(RenameChoices, OutOfRangeBytesAreClamped) {
    // 0x7F is the largest positive byte, 0x80 and above read as negative.
    EXPECT_EQ(UnpackRenameChoices(0x047F0C0Bu), (RenameChoices{10, 10, 10, 3}));
    EXPECT_EQ(UnpackRenameChoices(0x7F000001u), (RenameChoices{1, 0, 0, 3}));
    EXPECT_EQ(UnpackRenameChoices(0xFF80FF81u), (RenameChoices{0, 0, 0, 0}));
    EXPECT_EQ(UnpackRenameChoices(0x80000005u), (RenameChoices{5, 0, 0, 0}));
}

TEST(RenameChoices, StoredZeroLeavesEverythingAtNone) {
    EXPECT_EQ(UnpackRenameChoices(0), RenameChoices{});
    EXPECT_FALSE(UnpackRenameChoices(0).HasAnyItem());
    EXPECT_TRUE(UnpackRenameChoices(0x00010000u).HasAnyItem());
}

}  // namespace
}  // namespace lx
