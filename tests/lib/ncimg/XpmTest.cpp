#include "ImageLoadTestSupport.h"
#include "XpmReader.h"

#include <gtest/gtest.h>

using lx::ReadXpm;
using lxtest::kRose;
using lxtest::MagickCase;

namespace {

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

class XpmReadsMagickFiles : public ::testing::TestWithParam<MagickCase> {};

TEST_P(XpmReadsMagickFiles, PixelsMatchTheOracleAndCutFilesFail) {
    LX_REQUIRE_MAGICK();
    lxtest::CheckReadsMagickFile(ReadXpm, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, XpmReadsMagickFiles,
    ::testing::Values(MagickCase{"pal", kRose + " -colors 60 XPM:", 8},
                      MagickCase{"manycolours", kRose + " XPM:", 24},
                      MagickCase{"transparent", kRose + " -colors 30 -alpha set -channel A -fx 'i<w/2?0:1' +channel XPM:", 32}),
    lxtest::CaseName);

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

TEST(XpmReader, RefusesUnknownPixelsAndShortRows) {
    const std::string head = "/* XPM */\nstatic char *x[] = {\n\"2 1 1 1\",\n\"a c red\",\n";
    EXPECT_TRUE(ReadXpm(Bytes(head + "\"aa\"};")));
    EXPECT_FALSE(ReadXpm(Bytes(head + "\"ab\"};")));
    EXPECT_FALSE(ReadXpm(Bytes(head + "\"a\"};")));
    EXPECT_FALSE(ReadXpm(Bytes(head + "};")));
    EXPECT_FALSE(ReadXpm(Bytes("/* XPM */\nstatic char *x[] = {\n\"1 1 1 1\",\n\"a c mauvish\",\n\"a\"};")));
}

}  // namespace
