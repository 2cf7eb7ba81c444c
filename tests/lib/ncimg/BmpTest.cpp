#include "BmpReader.h"
#include "BmpWriter.h"
#include "ImageLoadTestSupport.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadBmp;

namespace {


TEST(BmpReader, ReadsTopDownRowsAndRle4) {
    // A 3x2 RLE4 picture built by hand: row 0 (bottom) is a run of 3 pixels of colours 1,2
    // alternating, row 1 an absolute run of 3 nibbles, then end of picture.
    PackedDib pal = PackedDib::Create(3, 2, 4);
    std::vector<uint8_t> file = lx::EncodeBmp(pal);
    lx::WriteLe32(file.data() + 14 + 16, lx::kBiRle4);
    file.resize(14 + 40 + 64);
    const std::vector<uint8_t> rle = {3, 0x12, 0, 0, 0, 3, 0x34, 0x50, 0, 1};
    file.insert(file.end(), rle.begin(), rle.end());
    const auto dib = ReadBmp(file);
    ASSERT_TRUE(dib);
    auto index = [&](int x, int y) { return (dib->row(y)[x >> 1] >> ((x & 1) ? 0 : 4)) & 15; };
    EXPECT_EQ(index(0, 1), 1);
    EXPECT_EQ(index(1, 1), 2);
    EXPECT_EQ(index(2, 1), 1);
    EXPECT_EQ(index(0, 0), 3);
    EXPECT_EQ(index(1, 0), 4);
    EXPECT_EQ(index(2, 0), 5);

    // The same 24-bit image stored top-down reads the same as bottom-up.
    const PackedDib rgb = lxtest::SyntheticRgb(5, 3);
    std::vector<uint8_t> topDown = lx::EncodeBmp(rgb);
    lx::WriteLe32(topDown.data() + 14 + 8, static_cast<uint32_t>(-3));
    const size_t stride = rgb.stride();
    for (int y = 0; y < 3; ++y)
        std::copy(rgb.row(y), rgb.row(y) + stride, topDown.begin() + 54 + static_cast<std::ptrdiff_t>(y * stride));
    const auto back = ReadBmp(topDown);
    ASSERT_TRUE(back);
    EXPECT_TRUE(lxtest::SamePixels(*back, lxtest::PixelsOf(rgb)));
}

TEST(BmpReader, RefusesHostileHeaders) {
    std::vector<uint8_t> file = lx::EncodeBmp(lxtest::SyntheticRgb(4, 4));
    auto patched = [&](size_t at, uint32_t v) {
        std::vector<uint8_t> f = file;
        lx::WriteLe32(f.data() + at, v);
        return ReadBmp(f);
    };
    EXPECT_FALSE(patched(14 + 4, 0x7fffffff));      // width far beyond the data
    EXPECT_FALSE(patched(14 + 8, 0x80000000));      // INT32_MIN height
    EXPECT_FALSE(patched(14 + 16, 9));              // unknown compression
    EXPECT_FALSE(patched(14, 5));                   // impossible header size
    EXPECT_FALSE(ReadBmp(std::vector<uint8_t>{'B', 'M'}));
}

}  // namespace
