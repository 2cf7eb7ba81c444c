#include "PackedDib.h"

#include <gtest/gtest.h>

using lx::PackedDib;

TEST(PackedDib, CreateLaysOutHeaderPaletteAndPaddedRows) {
    PackedDib dib = PackedDib::Create(3, 2, 8);
    ASSERT_FALSE(dib.empty());
    EXPECT_EQ(dib.stride(), 4u);
    EXPECT_EQ(dib.paletteSize(), 256);
    EXPECT_EQ(dib.bytes().size(), 40u + 1024u + 8u);
    EXPECT_EQ(lx::ReadLe32(dib.bytes().data() + 8), 2u);
    EXPECT_EQ(dib.palette()[255], (lx::Rgbq{255, 255, 255, 0}));
    EXPECT_TRUE(dib.hasGreyPalette());
    EXPECT_TRUE(dib.hasGreyRamp());
    dib.palette()[7] = lx::Rgbq{8, 8, 8, 0};  // still grey, but no longer level 7
    EXPECT_TRUE(dib.hasGreyPalette());
    EXPECT_FALSE(dib.hasGreyRamp());
    EXPECT_FALSE(PackedDib::Create(3, 2, 4).hasGreyRamp());
    // Row 0 is the top of the picture, stored last.
    dib.row(0)[0] = 7;
    EXPECT_EQ(dib.bytes()[40 + 1024 + 4], 7);
}

TEST(PackedDib, CreateRefusesImpossibleSizes) {
    EXPECT_TRUE(PackedDib::Create(0, 5, 24).empty());
    EXPECT_TRUE(PackedDib::Create(5, 5, 12).empty());
    EXPECT_TRUE(PackedDib::Create(100000, 100000, 24).empty());
}

TEST(PackedDib, FromBytesTurnsTopDownRowsBottomUp) {
    PackedDib dib = PackedDib::Create(1, 2, 24);
    std::vector<uint8_t> bytes = dib.bytes();
    lx::WriteLe32(bytes.data() + 8, static_cast<uint32_t>(-2));
    bytes[40] = 0x11;      // first stored row: top when top-down
    bytes[40 + 4] = 0x22;  // second stored row
    auto parsed = PackedDib::FromBytes(bytes.data(), bytes.size());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->height(), 2);
    EXPECT_EQ(parsed->row(0)[0], 0x11);
    EXPECT_EQ(parsed->row(1)[0], 0x22);
}

TEST(PackedDib, FromBytesRefusesTruncatedOrHostileHeaders) {
    PackedDib dib = PackedDib::Create(16, 16, 4);
    const auto& good = dib.bytes();
    ASSERT_TRUE(PackedDib::FromBytes(good.data(), good.size()));
    EXPECT_FALSE(PackedDib::FromBytes(good.data(), good.size() - 1));
    std::vector<uint8_t> bad = good;
    lx::WriteLe32(bad.data() + 4, 0x7fffffff);
    EXPECT_FALSE(PackedDib::FromBytes(bad.data(), bad.size()));
    bad = good;
    lx::WriteLe16(bad.data() + 14, 7);
    EXPECT_FALSE(PackedDib::FromBytes(bad.data(), bad.size()));
    EXPECT_FALSE(PackedDib::FromBytes(good.data(), 39));
}

TEST(PackedDib, PixelReadsEveryDepth) {
    PackedDib one = PackedDib::Create(9, 1, 1);
    one.row(0)[1] = 0x80;  // pixel 8
    EXPECT_EQ(one.pixel(8, 0), 0xffffffffu);
    EXPECT_EQ(one.pixel(7, 0), 0xff000000u);
    PackedDib rgb16 = PackedDib::Create(1, 1, 16);
    lx::WriteLe16(rgb16.row(0), 0x7c00);
    EXPECT_EQ(rgb16.pixel(0, 0), 0xffff0000u);
    PackedDib rgb24 = PackedDib::Create(1, 1, 24);
    rgb24.row(0)[0] = 1; rgb24.row(0)[1] = 2; rgb24.row(0)[2] = 3;
    EXPECT_EQ(rgb24.pixel(0, 0), 0xff030201u);
}
