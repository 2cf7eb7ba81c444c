#include "PackedDib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

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

// Bytes laid out as Create lays them out are taken as they are, not copied; any other layout
// is refused with the bytes left where they were, to be read through FromBytes.
TEST(PackedDib, AdoptTakesOnlyTheCreateLayoutAndCopiesNothing) {
    const struct {
        const char* name;
        int bitCount;
        void (*change)(std::vector<uint8_t>&);
        bool taken;
    } cases[] = {
        {"plain 24-bit", 24, [](std::vector<uint8_t>&) {}, true},
        {"palette count left 0", 8, [](std::vector<uint8_t>& b) { lx::WriteLe32(b.data() + 32, 0); }, true},
        {"spare bytes after the rows", 24, [](std::vector<uint8_t>& b) { b.resize(b.size() + 13, 0xee); }, true},
        {"top-down rows", 24, [](std::vector<uint8_t>& b) { lx::WriteLe32(b.data() + 8, static_cast<uint32_t>(-3)); }, false},
        {"a table after a 24-bit header", 24, [](std::vector<uint8_t>& b) { lx::WriteLe32(b.data() + 32, 1); }, false},
        {"a larger header", 24, [](std::vector<uint8_t>& b) { lx::WriteLe32(b.data(), 52); }, false},
        {"rows cut short", 24, [](std::vector<uint8_t>& b) { b.pop_back(); }, false},
    };
    for (const auto& c : cases) {
        PackedDib source = PackedDib::Create(5, 3, c.bitCount);
        source.row(0)[2] = 0x5a;
        std::vector<uint8_t> bytes = source.bytes();
        c.change(bytes);
        lx::DibBytes block(bytes.size());
        std::copy(bytes.begin(), bytes.end(), block.begin());
        const uint8_t* address = block.data();
        const std::optional<PackedDib> dib = PackedDib::Adopt(block);
        ASSERT_EQ(dib.has_value(), c.taken) << c.name;
        if (!c.taken) {
            EXPECT_EQ(block.data(), address) << c.name;  // still the caller's
            continue;
        }
        EXPECT_TRUE(block.empty()) << c.name;
        EXPECT_EQ(dib->bytes().data(), address) << c.name;
        EXPECT_TRUE(dib->bytes().owned()) << c.name;
        EXPECT_EQ(dib->bytes(), source.bytes()) << c.name;  // header set right, spare bytes not counted
        EXPECT_EQ(dib->row(0)[2], 0x5a) << c.name;
    }
}

// A borrowed DIB reads the bytes in place and never frees them; copies of it are owned.
TEST(PackedDib, BorrowLooksWithoutTakingAndItsCopiesOwnTheirBytes) {
    PackedDib source = PackedDib::Create(4, 2, 24);
    source.row(1)[0] = 9;
    auto view = PackedDib::Borrow(source.bytes().data(), source.bytes().size());
    ASSERT_TRUE(view);
    EXPECT_EQ(view->bits(), source.bits());
    EXPECT_FALSE(view->bytes().owned());
    const PackedDib copy = *view;
    EXPECT_TRUE(copy.bytes().owned());
    EXPECT_NE(copy.bits(), source.bits());
    EXPECT_EQ(copy.row(1)[0], 9);
    EXPECT_EQ(view->release().release(), nullptr);  // nothing of its own to give up
    std::vector<uint8_t> topDown = source.bytes();
    lx::WriteLe32(topDown.data() + 8, static_cast<uint32_t>(-2));
    EXPECT_FALSE(PackedDib::Borrow(topDown.data(), topDown.size()));
}
