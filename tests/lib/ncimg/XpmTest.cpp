#include "ImageLoadTestSupport.h"
#include "XpmReader.h"

#include <gtest/gtest.h>

#include <cstdio>

using lx::ReadXpm;

namespace {

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

TEST(XpmReader, ColoursByNameHexAndNone) {
    const auto dib = ReadXpm(Bytes("/* XPM */\nstatic char *x[] = {\n\"4 1 4 2\",\n"
                                   "\"aa c #f00\",\n\"bb c light grey\",\n\"cc g gray50 c #000011112222\",\n"
                                   "\"dd c None\",\n\"aabbccdd\"};\n"));
    ASSERT_TRUE(dib);
    ASSERT_EQ(dib->bitCount(), 32);
    EXPECT_EQ(dib->pixel(0, 0), 0xffff0000u);
    EXPECT_EQ(dib->pixel(1, 0), 0xffd3d3d3u);
    EXPECT_EQ(dib->pixel(2, 0), 0xff001122u);  // the colour key wins over grey
    EXPECT_EQ(dib->pixel(3, 0) >> 24, 0u);
    EXPECT_EQ(lx::XColourByName("Grey100"), 0xffffffu);
    EXPECT_EQ(lx::XColourByName("NavyBlue"), 0x000080u);
    EXPECT_FALSE(lx::XColourByName("gray101"));
    EXPECT_FALSE(lx::XColourByName("no such colour"));
}

TEST(XpmReader, MoreThan256ColoursGiveDirectColour) {
    std::string text = "/* XPM */\nstatic char *x[] = {\n\"300 1 300 3\",\n";
    auto key = [](int i) { return std::string{static_cast<char>('a' + i / 26 % 26), static_cast<char>('a' + i % 26), 'z'}; };
    char colour[16];
    for (int i = 0; i < 300; ++i) {
        std::snprintf(colour, sizeof colour, "#%02X%02X%02X", i & 0xff, i >> 8, 7);
        text += "\"" + key(i) + " c " + colour + "\",\n";
    }
    text += "\"";
    for (int i = 0; i < 300; ++i) text += key(i);
    text += "\"};\n";
    const auto dib = ReadXpm(Bytes(text));
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bitCount(), 24);
    EXPECT_EQ(dib->pixel(5, 0), 0xff050007u);
    EXPECT_EQ(dib->pixel(299, 0), 0xff2b0107u);
}

TEST(XpmReader, RefusesUnknownPixelsAndShortRows) {
    const std::string head = "/* XPM */\nstatic char *x[] = {\n\"2 1 1 1\",\n\"a c red\",\n";
    EXPECT_TRUE(ReadXpm(Bytes(head + "\"aa\"};")));
    EXPECT_FALSE(ReadXpm(Bytes(head + "\"ab\"};")));
    EXPECT_FALSE(ReadXpm(Bytes(head + "\"a\"};")));
    EXPECT_FALSE(ReadXpm(Bytes(head + "};")));
    EXPECT_FALSE(ReadXpm(Bytes("/* XPM */\nstatic char *x[] = {\n\"1 1 1 1\",\n\"a c mauvish\",\n\"a\"};")));
}

}  // namespace
