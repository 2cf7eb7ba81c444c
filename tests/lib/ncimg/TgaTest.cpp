#include "ImageLoadTestSupport.h"
#include "TgaReader.h"
#include "TgaWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadTga;

namespace {

TEST(TgaReader, AllFourOriginsGiveTheSamePicture) {
    const PackedDib rgb = lxtest::SyntheticRgb(5, 3);
    const std::vector<uint8_t> bottomLeft = lx::EncodeTga(rgb);
    ASSERT_EQ(bottomLeft[17] & 0x30, 0);
    const size_t rowBytes = 5 * 3;
    for (int origin = 0; origin < 4; ++origin) {
        std::vector<uint8_t> file = bottomLeft;
        const bool top = origin & 2, right = origin & 1;
        file[17] = static_cast<uint8_t>((top ? 0x20 : 0) | (right ? 0x10 : 0));
        for (int fileRow = 0; fileRow < 3; ++fileRow) {
            const int y = top ? fileRow : 2 - fileRow;  // picture row stored at this file row
            for (int fileCol = 0; fileCol < 5; ++fileCol) {
                const int x = right ? 4 - fileCol : fileCol;
                std::copy_n(rgb.row(y) + x * 3, 3, file.begin() + 18 + static_cast<std::ptrdiff_t>(fileRow * rowBytes + fileCol * 3));
            }
        }
        const auto dib = ReadTga(file);
        ASSERT_TRUE(dib) << origin;
        EXPECT_TRUE(lxtest::SamePixels(*dib, lxtest::PixelsOf(rgb))) << "origin " << origin;
    }
}

TEST(TgaReader, HeaderCheckAndFooter) {
    std::vector<uint8_t> file = lx::EncodeTga(lxtest::SyntheticRgb(4, 4));
    EXPECT_TRUE(lx::LooksLikeTga(file));
    EXPECT_FALSE(lx::HasTgaFooter(file));
    std::vector<uint8_t> bad = file;
    bad[2] = 4;  // no such image type
    EXPECT_FALSE(lx::LooksLikeTga(bad));
    EXPECT_FALSE(ReadTga(bad));
    bad = file;
    bad[16] = 12;  // no such depth
    EXPECT_FALSE(ReadTga(bad));
    const char footer[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";
    file.insert(file.end(), footer, footer + sizeof footer);
    EXPECT_TRUE(lx::HasTgaFooter(file));
}

}  // namespace
