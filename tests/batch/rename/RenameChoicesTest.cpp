#include "RenameChoices.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

TEST(RenameChoices, PackOneByteEachInItemOrderAndUnpackClamped) {
    EXPECT_EQ(PackRenameChoices({1, 0, 7, 2}), 0x02070001u);
    EXPECT_EQ(PackRenameChoices({10, 9, 8, 3}), 0x0308090Au);
    const struct {
        uint32_t stored;
        RenameChoices expected;
    } cases[] = {
        {0, {}},
        {0x0308090Au, {10, 9, 8, 3}},
        {0x01000B0Bu, {10, 10, 0, 1}},  // the old name item (11) comes back as the four-digit counter
        // Out of range: 0x7F is the largest positive byte, 0x80 and above read as negative.
        {0x047F0C0Bu, {10, 10, 10, 3}},
        {0x7F000001u, {1, 0, 0, 3}},
        {0xFF80FF81u, {0, 0, 0, 0}},
        {0x80000005u, {5, 0, 0, 0}},
    };
    for (const auto& c : cases) EXPECT_EQ(UnpackRenameChoices(c.stored), c.expected) << std::hex << c.stored;
    EXPECT_FALSE(UnpackRenameChoices(0).HasAnyItem());
    EXPECT_TRUE(UnpackRenameChoices(0x00010000u).HasAnyItem());
}

TEST(RenameChoices, EveryRestorableChoiceSurvivesARoundTrip) {
    for (int item = 0; item <= 10; ++item) {
        for (int rule = 0; rule <= 3; ++rule) {
            const RenameChoices choices{item, (item + 3) % 11, (item + 7) % 11, rule};
            EXPECT_EQ(UnpackRenameChoices(PackRenameChoices(choices)), choices) << item << " " << rule;
        }
    }
}

}  // namespace
}  // namespace lx
