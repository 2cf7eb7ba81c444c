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

// One raw row of a bitmap-mode file 4000 pixels wide, at the given bits per sample.
std::vector<uint8_t> BitmapModePsd(uint8_t depth) {
    std::vector<uint8_t> file = {
        '8', 'B', 'P', 'S',    // signature
        0, 1,                  // version
        0, 0, 0, 0, 0, 0,      // reserved
        0, 1,                  // channels
        0, 0, 0, 1,            // height
        0, 0, 0x0f, 0xa0,      // width: 4000
        0, depth,              // bits per sample
        0, 0,                  // mode: bitmap
        0, 0, 0, 0,            // colour data length
        0, 0, 0, 0,            // image resources length
        0, 0, 0, 0,            // layers and masks length
        0, 0,                  // compression: raw
    };
    file.resize(file.size() + 4000 * depth / 8, 0x80);  // the row: 1000 0000 ...
    return file;
}

TEST(PsdReader, BitmapModeIsOneBitOnly) {
    const auto one = ReadPsd(BitmapModePsd(1));
    ASSERT_TRUE(one);
    EXPECT_EQ(one->bitCount(), 1);
    EXPECT_EQ(one->width(), 4000);
    EXPECT_EQ(one->pixel(0, 0), 0xff000000u);  // a set bit is black
    EXPECT_EQ(one->pixel(1, 0), 0xffffffffu);
    // Deeper samples in bitmap mode describe rows longer than the one-bit image's.
    EXPECT_FALSE(ReadPsd(BitmapModePsd(8)));
    EXPECT_FALSE(ReadPsd(BitmapModePsd(16)));
}

}  // namespace
