#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>

#include "../MifTestImages.h"
#include "DibGlobal.h"
#include "mif.h"

using lx::mif;
using lx::PackedDib;
using miftest::Pattern;

TEST(MifWin32, GlobalBlocksGoInAndOut) {
    const PackedDib original = Pattern(7, 3, {24, false});
    HGLOBAL block = lx::DibToGlobal(original);
    ASSERT_NE(block, nullptr);
    const mif copy(static_cast<void*>(block));  // copies; the block stays ours
    EXPECT_EQ(copy.dib().bytes(), original.bytes());
    EXPECT_NE(GlobalSize(block), 0u);

    mif taken;
    ASSERT_TRUE(taken.attachdib(static_cast<void*>(block)));  // takes and frees the block
    EXPECT_EQ(taken.width(), 7);

    HGLOBAL out = static_cast<HGLOBAL>(taken.createglobaldib());
    ASSERT_NE(out, nullptr);
    auto back = lx::DibFromGlobal(out);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->bytes(), original.bytes());
    GlobalFree(out);

    EXPECT_FALSE(taken.attachdib(static_cast<void*>(nullptr)));
    EXPECT_EQ(mif().createglobaldib(), nullptr);
}

TEST(MifWin32, CreateBitmapShowsThePixelsAndThePalette) {
    for (int bits : {1, 4, 8, 24, 32}) {
        const mif image(Pattern(9, 5, {bits, false}));
        HPALETTE palette = nullptr;
        HBITMAP bitmap = image.createbitmap(&palette);
        ASSERT_NE(bitmap, nullptr) << bits;
        DIBSECTION section{};
        ASSERT_EQ(GetObjectW(bitmap, sizeof(section), &section), static_cast<int>(sizeof(section)));
        EXPECT_EQ(section.dsBm.bmWidth, 9);
        EXPECT_EQ(section.dsBm.bmHeight, 5);
        EXPECT_EQ(section.dsBm.bmBitsPixel, bits);
        EXPECT_EQ(0, std::memcmp(section.dsBm.bmBits, image.dib().bits(), image.dib().stride() * 5));
        if (bits <= 8) {
            ASSERT_NE(palette, nullptr);
            PALETTEENTRY entry{};
            ASSERT_EQ(GetPaletteEntries(palette, 1, 1, &entry), 1u);
            EXPECT_EQ(entry.peRed, 76);  // the pattern's palette entry 1
            EXPECT_EQ(entry.peBlue, 37);
            // A GDI palette put back in as the colour table.
            mif other(Pattern(9, 5, {bits, false}));
            ASSERT_TRUE(other.replace_palette(palette));
            EXPECT_EQ(other.palette()[1], image.palette()[1]);
            DeleteObject(palette);
        } else {
            EXPECT_EQ(palette, nullptr);
        }
        DeleteObject(bitmap);
    }
    EXPECT_EQ(mif().createbitmap(nullptr), nullptr);
}
