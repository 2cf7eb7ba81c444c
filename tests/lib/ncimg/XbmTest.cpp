#include "ImageLoadTestSupport.h"
#include "XbmReader.h"

#include <gtest/gtest.h>

using lx::ReadXbm;

namespace {

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

TEST(XbmReader, ReadsBitsLeastSignificantFirstInBothFlavours) {
    const auto x11 = ReadXbm(Bytes("#define t_width 10\n#define t_height 1\nstatic char t_bits[] = { 0x05, 0x02 };\n"));
    ASSERT_TRUE(x11);
    auto black = [](const lx::PackedDib& d, int x) { return d.pixel(x, 0) == 0xff000000u; };
    EXPECT_TRUE(black(*x11, 0));
    EXPECT_FALSE(black(*x11, 1));
    EXPECT_TRUE(black(*x11, 2));
    EXPECT_TRUE(black(*x11, 9));
    EXPECT_FALSE(black(*x11, 8));
    const auto x10 = ReadXbm(Bytes("#define t_width 17\n#define t_height 1\nstatic short t_bits[] = {\n 0x8001, 0x0001 };\n"));
    ASSERT_TRUE(x10);
    EXPECT_TRUE(black(*x10, 0));
    EXPECT_TRUE(black(*x10, 15));
    EXPECT_TRUE(black(*x10, 16));
    EXPECT_FALSE(black(*x10, 14));
}

TEST(XbmReader, RefusesMissingSizesOrData) {
    EXPECT_FALSE(ReadXbm(Bytes("#define t_width 8\nstatic char t_bits[] = { 0x01 };")));
    EXPECT_FALSE(ReadXbm(Bytes("#define t_width 8\n#define t_height 2\nstatic char t_bits[] = { 0x01 };")));
    EXPECT_FALSE(ReadXbm(Bytes("#define t_width 0\n#define t_height 1\nstatic char t_bits[] = { 0x01 };")));
    EXPECT_TRUE(lx::LooksLikeXbm(Bytes("\n#define t_width 8\n")));
    EXPECT_FALSE(lx::LooksLikeXbm(Bytes("#define VERSION 8\n")));
}

}  // namespace
