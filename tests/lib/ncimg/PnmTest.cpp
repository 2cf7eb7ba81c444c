#include "ImageLoadTestSupport.h"
#include "PnmReader.h"
#include "PnmWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadPnm;

namespace {

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

TEST(PnmReader, TextFormsWithCommentsOddMaxvalAndPackedBits) {
    const auto grey = ReadPnm(Bytes("P2 # a comment\n3 1\n# another\n10\n0 5 10\n"));
    ASSERT_TRUE(grey);
    EXPECT_EQ(grey->pixel(0, 0), 0xff000000u);
    EXPECT_EQ(grey->pixel(1, 0), 0xff808080u);  // 5 of 10 rounds to 128
    EXPECT_EQ(grey->pixel(2, 0), 0xffffffffu);
    const auto bits = ReadPnm(Bytes("P1\n4 1\n0110"));
    ASSERT_TRUE(bits);
    EXPECT_EQ(bits->pixel(0, 0), 0xffffffffu);
    EXPECT_EQ(bits->pixel(1, 0), 0xff000000u);
    EXPECT_EQ(bits->pixel(3, 0), 0xffffffffu);
}

TEST(PnmReader, RefusesBadHeaders) {
    EXPECT_FALSE(ReadPnm(Bytes("P5\n2 2\n0\n\1\2\3\4")));         // maxval 0
    EXPECT_FALSE(ReadPnm(Bytes("P5\n2 2\n70000\n")));             // maxval too large
    EXPECT_FALSE(ReadPnm(Bytes("P6\n99999 99999\n255\nabc")));    // data far short of the size
    EXPECT_FALSE(ReadPnm(Bytes("P3\n1 1\n255\n1 2 x\n")));        // not a number
    EXPECT_FALSE(ReadPnm(Bytes("P7\n1 1\n255\n")));               // not a kind we read
}

TEST(PnmWriter, GreyImagesBecomeGreyMaps) {
    EXPECT_EQ(lx::EncodePnm(lxtest::SyntheticGrey())[1], '5');
    EXPECT_EQ(lx::EncodePnm(lxtest::SyntheticPalette(8))[1], '6');
}

}  // namespace
