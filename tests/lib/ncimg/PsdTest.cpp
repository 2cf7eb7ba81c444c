#include "ImageLoadTestSupport.h"
#include "PsdReader.h"

#include <gtest/gtest.h>

using lx::ReadPsd;

namespace {

TEST(PsdReader, RefusesOtherVersionsModesAndDepths) {
    std::vector<uint8_t> head = {'8', 'B', 'P', 'S', 0, 1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 1, 0, 8, 0, 3};
    for (int i = 0; i < 3; ++i) head.insert(head.end(), {0, 0, 0, 0});
    head.insert(head.end(), {0, 0, 1, 2, 3});
    ASSERT_TRUE(ReadPsd(head));
    std::vector<uint8_t> bad = head;
    bad[5] = 2;  // large-document format
    EXPECT_FALSE(ReadPsd(bad));
    bad = head;
    bad[25] = 9;  // Lab
    EXPECT_FALSE(ReadPsd(bad));
    bad = head;
    bad[23] = 32;  // floating point samples
    EXPECT_FALSE(ReadPsd(bad));
    bad = head;
    bad[13] = 2;  // fewer channels than RGB needs
    EXPECT_FALSE(ReadPsd(bad));
}

}  // namespace
