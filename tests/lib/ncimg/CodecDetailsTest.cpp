// The hand-made corner cases of each format, beside FormatTableTest's files from the oracle:
// layouts ImageMagick does not write, hostile headers, and what each writer chooses to store.
#include "BmpReader.h"
#include "BmpWriter.h"
#include "GifWriter.h"
#include "ImageLoadTestSupport.h"
#include "PcxReader.h"
#include "PcxWriter.h"
#include "PngWriter.h"
#include "PnmReader.h"
#include "PnmWriter.h"
#include "PsdReader.h"
#include "SgiReader.h"
#include "SgiWriter.h"
#include "SunReader.h"
#include "TgaReader.h"
#include "TgaWriter.h"
#include "TiffWriter.h"
#include "XbmReader.h"
#include "XpmReader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

namespace lx {
namespace {

using Bytes = std::vector<uint8_t>;
using lxtest::SyntheticRgb;

Bytes Text(const std::string& text) { return {text.begin(), text.end()}; }

// A copy of `file` with `value` stored little-endian in `size` bytes at `at`.
Bytes Patched(Bytes file, size_t at, uint32_t value, int size = 1) {
    for (int i = 0; i < size; ++i) file[at + i] = static_cast<uint8_t>(value >> (8 * i));
    return file;
}

// A 1 x 1 RGB Photoshop file, raw.
Bytes PsdHead() {
    Bytes head = {'8', 'B', 'P', 'S', 0, 1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 1, 0, 8, 0, 3};
    head.resize(head.size() + 12, 0);
    head.insert(head.end(), {0, 0, 1, 2, 3});
    return head;
}

// One raw row of a bitmap-mode Photoshop file 4000 pixels wide, at the given bits per sample.
Bytes BitmapModePsd(uint8_t depth) {
    Bytes file = Patched(Patched(Patched(PsdHead(), 13, 1), 20, 0xa00f, 2), 23, depth);  // 1 channel, 4000 wide
    file[25] = 0;                                                                         // mode: bitmap
    file.resize(file.size() - 3);
    file.resize(file.size() + 4000 * depth / 8, 0x80);  // the row: 1000 0000 ...
    return file;
}

TEST(CodecReaders, RefuseHostileOrInconsistentHeaders) {
    const Bytes bmp = EncodeBmp(SyntheticRgb(4, 4)), pcx = EncodePcx(SyntheticRgb(4, 4)), tga = EncodeTga(SyntheticRgb(4, 4)),
                sgi = EncodeSgi(lxtest::SyntheticGrey(4, 2)), psd = PsdHead();
    const std::string xpm = "/* XPM */\nstatic char *x[] = {\n\"2 1 1 1\",\n\"a c red\",\n";
    const std::string xbm = "#define t_width 8\n#define t_height 1\nstatic char t_bits[] = { 0x01 };";
    for (auto [read, file] : std::initializer_list<std::pair<lxtest::Reader, Bytes>>{
             {ReadBmp, bmp}, {ReadPcx, pcx}, {ReadTga, tga}, {ReadSgi, sgi}, {ReadPsd, psd},
             {ReadXpm, Text(xpm + "\"aa\"};")}, {ReadXbm, Text(xbm)}})
        ASSERT_TRUE(read(file));
    const struct {
        const char* what;
        lxtest::Reader read;
        Bytes file;
    } cases[] = {
        {"bmp width far beyond the data", ReadBmp, Patched(bmp, 14 + 4, 0x7fffffff, 4)},
        {"bmp INT32_MIN height", ReadBmp, Patched(bmp, 14 + 8, 0x80000000, 4)},
        {"bmp unknown compression", ReadBmp, Patched(bmp, 14 + 16, 9, 4)},
        {"bmp impossible header size", ReadBmp, Patched(bmp, 14, 5, 4)},
        {"bmp signature alone", ReadBmp, Bytes{'B', 'M'}},
        {"pcx lines shorter than the width", ReadPcx, Patched(pcx, 66, 1, 2)},
        {"pcx two planes of 8 bits", ReadPcx, Patched(pcx, 65, 2)},
        {"pcx huge canvas for little data", ReadPcx, Patched(Patched(pcx, 8, 0xffff, 2), 10, 0xffff, 2)},
        {"pnm maxval 0", ReadPnm, Text("P5\n2 2\n0\n\1\2\3\4")},
        {"pnm maxval too large", ReadPnm, Text("P5\n2 2\n70000\n")},
        {"pnm data far short of the size", ReadPnm, Text("P6\n99999 99999\n255\nabc")},
        {"pnm not a number", ReadPnm, Text("P3\n1 1\n255\n1 2 x\n")},
        {"pnm PAM", ReadPnm, Text("P7\n1 1\n255\n")},
        {"psd large-document format", ReadPsd, Patched(psd, 5, 2)},
        {"psd Lab", ReadPsd, Patched(psd, 25, 9)},
        {"psd floating point samples", ReadPsd, Patched(psd, 23, 32)},
        {"psd fewer channels than RGB needs", ReadPsd, Patched(psd, 13, 2)},
        // Deeper samples in bitmap mode describe rows longer than the one-bit image's.
        {"psd 8-bit bitmap mode", ReadPsd, BitmapModePsd(8)},
        {"psd 16-bit bitmap mode", ReadPsd, BitmapModePsd(16)},
        {"sgi first row far outside the file", ReadSgi, Patched(sgi, 512, 0x7f)},
        {"sgi run longer than the row", ReadSgi, Patched(sgi, (size_t{sgi[514]} << 8) | sgi[515], 0x7f)},
        {"tga no such image type", ReadTga, Patched(tga, 2, 4)},
        {"tga no such depth", ReadTga, Patched(tga, 16, 12)},
        {"xbm no height", ReadXbm, Text("#define t_width 8\nstatic char t_bits[] = { 0x01 };")},
        {"xbm rows missing", ReadXbm, Text("#define t_width 8\n#define t_height 2\nstatic char t_bits[] = { 0x01 };")},
        {"xbm zero width", ReadXbm, Text("#define t_width 0\n#define t_height 1\nstatic char t_bits[] = { 0x01 };")},
        {"xpm unknown pixel", ReadXpm, Text(xpm + "\"ab\"};")},
        {"xpm short row", ReadXpm, Text(xpm + "\"a\"};")},
        {"xpm no rows", ReadXpm, Text(xpm + "};")},
        {"xpm unknown colour name", ReadXpm, Text("/* XPM */\nstatic char *x[] = {\n\"1 1 1 1\",\n\"a c mauvish\",\n\"a\"};")},
    };
    for (const auto& c : cases) EXPECT_FALSE(c.read(c.file)) << c.what;
    EXPECT_TRUE(LooksLikeTga(tga));
    EXPECT_FALSE(LooksLikeTga(Patched(tga, 2, 4)));
    EXPECT_FALSE(HasTgaFooter(tga));
    const char footer[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";
    Bytes withFooter = tga;
    withFooter.insert(withFooter.end(), footer, footer + sizeof footer);
    EXPECT_TRUE(HasTgaFooter(withFooter));
    EXPECT_TRUE(LooksLikeXbm(Text("\n#define t_width 8\n")));
    EXPECT_FALSE(LooksLikeXbm(Text("#define VERSION 8\n")));
}

TEST(CodecReaders, BmpTopDownRowsAndRle4) {
    // A 3x2 RLE4 picture built by hand: row 0 (bottom) is a run of 3 pixels of colours 1,2
    // alternating, row 1 an absolute run of 3 nibbles, then end of picture.
    Bytes file = Patched(EncodeBmp(PackedDib::Create(3, 2, 4)), 14 + 16, kBiRle4, 4);
    file.resize(14 + 40 + 64);
    file.insert(file.end(), {3, 0x12, 0, 0, 0, 3, 0x34, 0x50, 0, 1});
    const auto dib = ReadBmp(file);
    ASSERT_TRUE(dib);
    std::vector<int> indices;
    for (int y : {1, 0})
        for (int x = 0; x < 3; ++x) indices.push_back((dib->row(y)[x >> 1] >> ((x & 1) ? 0 : 4)) & 15);
    EXPECT_EQ(indices, (std::vector<int>{1, 2, 1, 3, 4, 5}));

    // The same 24-bit image stored top-down reads the same as bottom-up.
    const PackedDib rgb = SyntheticRgb(5, 3);
    Bytes topDown = Patched(EncodeBmp(rgb), 14 + 8, static_cast<uint32_t>(-3), 4);
    for (int y = 0; y < 3; ++y)
        std::copy(rgb.row(y), rgb.row(y) + rgb.stride(), topDown.begin() + 54 + static_cast<std::ptrdiff_t>(y * rgb.stride()));
    const auto back = ReadBmp(topDown);
    ASSERT_TRUE(back);
    EXPECT_TRUE(lxtest::SamePixels(*back, lxtest::PixelsOf(rgb)));
}

TEST(CodecReaders, PcxSixteenColourPlanes) {
    // 3x1 picture, 1 bit in 4 planes: colours 5 (planes 0 and 2), 10 (planes 1 and 3), 15.
    Bytes file(128, 0);
    file[0] = 0x0a, file[1] = 5, file[2] = 1, file[3] = 1, file[65] = 4;
    WriteLe16(&file[8], 2);
    WriteLe16(&file[66], 2);
    for (int i = 0; i < 16; ++i) file[16 + i * 3] = static_cast<uint8_t>(i * 16);  // red = 16 * index
    for (uint8_t plane : {0xa0, 0x60, 0xa0, 0x60}) file.insert(file.end(), {plane, 0});  // pixel bits, MSB first
    const auto dib = ReadPcx(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bitCount(), 4);
    EXPECT_EQ(dib->pixel(0, 0), 0xff500000u);
    EXPECT_EQ(dib->pixel(1, 0), 0xffa00000u);
    EXPECT_EQ(dib->pixel(2, 0), 0xfff00000u);
}

TEST(CodecReaders, PnmTextFormsWithCommentsOddMaxvalAndPackedBits) {
    const auto grey = ReadPnm(Text("P2 # a comment\n3 1\n# another\n10\n0 5 10\n"));
    ASSERT_TRUE(grey);
    EXPECT_EQ(grey->pixel(0, 0), 0xff000000u);
    EXPECT_EQ(grey->pixel(1, 0), 0xff808080u);  // 5 of 10 rounds to 128
    EXPECT_EQ(grey->pixel(2, 0), 0xffffffffu);
    const auto bits = ReadPnm(Text("P1\n4 1\n0110"));
    ASSERT_TRUE(bits);
    EXPECT_EQ(bits->pixel(0, 0), 0xffffffffu);
    EXPECT_EQ(bits->pixel(1, 0), 0xff000000u);
    EXPECT_EQ(bits->pixel(3, 0), 0xffffffffu);
}

TEST(CodecReaders, PsdBitmapModeIsOneBit) {
    const auto one = ReadPsd(BitmapModePsd(1));
    ASSERT_TRUE(one);
    EXPECT_EQ(one->bitCount(), 1);
    EXPECT_EQ(one->width(), 4000);
    EXPECT_EQ(one->pixel(0, 0), 0xff000000u);  // a set bit is black
    EXPECT_EQ(one->pixel(1, 0), 0xffffffffu);
}

TEST(CodecReaders, SunRunsWithEscapedMarkerAndRgbOrder) {
    // 3x1, 24 bits, type 2: run-length with BGR order: pixel 0 = 0x80,0x80,0x80 via a run of
    // 3, then 1,2,3 and 0x80 (escaped as 0x80 0x00),5,6, then the row pad byte.
    Bytes file = {0x59, 0xa6, 0x6a, 0x95, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 24,
                  0,    0,    0,    0,    0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0};
    file.insert(file.end(), {0x80, 2, 0x80, 1, 2, 3, 0x80, 0, 5, 6, 0});
    const auto dib = ReadSun(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->pixel(0, 0), 0xff808080u);
    EXPECT_EQ(dib->pixel(1, 0), 0xff030201u);
    EXPECT_EQ(dib->pixel(2, 0), 0xff060580u);
    file[23] = 3;  // type 3: the same bytes raw, in RGB order
    file.resize(32);
    file.insert(file.end(), {1, 2, 3, 4, 5, 6, 7, 8, 9, 0});
    const auto rgb = ReadSun(file);
    ASSERT_TRUE(rgb);
    EXPECT_EQ(rgb->pixel(0, 0), 0xff010203u);
}

TEST(CodecReaders, TgaAllFourOriginsGiveTheSamePicture) {
    const PackedDib rgb = SyntheticRgb(5, 3);
    const Bytes bottomLeft = EncodeTga(rgb);
    ASSERT_EQ(bottomLeft[17] & 0x30, 0);
    for (int origin = 0; origin < 4; ++origin) {
        Bytes file = bottomLeft;
        const bool top = origin & 2, right = origin & 1;
        file[17] = static_cast<uint8_t>((top ? 0x20 : 0) | (right ? 0x10 : 0));
        for (int fileRow = 0; fileRow < 3; ++fileRow)
            for (int fileCol = 0; fileCol < 5; ++fileCol)
                std::copy_n(rgb.row(top ? fileRow : 2 - fileRow) + (right ? 4 - fileCol : fileCol) * 3, 3,
                            file.begin() + 18 + static_cast<std::ptrdiff_t>(fileRow * 15 + fileCol * 3));
        const auto dib = ReadTga(file);
        ASSERT_TRUE(dib) << origin;
        EXPECT_TRUE(lxtest::SamePixels(*dib, lxtest::PixelsOf(rgb))) << "origin " << origin;
    }
}

TEST(CodecReaders, XbmBitsLeastSignificantFirstInBothFlavours) {
    auto blacks = [](const std::string& text) {
        std::string seen;
        if (const auto dib = ReadXbm(Text(text)))
            for (int x = 0; x < dib->width(); ++x) seen += dib->pixel(x, 0) == 0xff000000u ? '#' : '.';
        return seen;
    };
    EXPECT_EQ(blacks("#define t_width 10\n#define t_height 1\nstatic char t_bits[] = { 0x05, 0x02 };\n"), "#.#......#");
    EXPECT_EQ(blacks("#define t_width 17\n#define t_height 1\nstatic short t_bits[] = {\n 0x8001, 0x0001 };\n"),
              "#..............##");
}

TEST(CodecReaders, XpmColoursByNameHexAndNone) {
    const auto dib = ReadXpm(Text("/* XPM */\nstatic char *x[] = {\n\"4 1 4 2\",\n"
                                  "\"aa c #f00\",\n\"bb c light grey\",\n\"cc g gray50 c #000011112222\",\n"
                                  "\"dd c None\",\n\"aabbccdd\"};\n"));
    ASSERT_TRUE(dib);
    ASSERT_EQ(dib->bitCount(), 32);
    EXPECT_EQ(dib->pixel(0, 0), 0xffff0000u);
    EXPECT_EQ(dib->pixel(1, 0), 0xffd3d3d3u);
    EXPECT_EQ(dib->pixel(2, 0), 0xff001122u);  // the colour key wins over grey
    EXPECT_EQ(dib->pixel(3, 0) >> 24, 0u);
    EXPECT_EQ(XColourByName("Grey100"), 0xffffffu);
    EXPECT_EQ(XColourByName("NavyBlue"), 0x000080u);
    EXPECT_FALSE(XColourByName("gray101"));
    EXPECT_FALSE(XColourByName("no such colour"));

    // More than 256 colours give direct colour.
    std::string text = "/* XPM */\nstatic char *x[] = {\n\"300 1 300 3\",\n", row;
    char colour[16];
    for (int i = 0; i < 300; ++i) {
        const std::string key{static_cast<char>('a' + i / 26 % 26), static_cast<char>('a' + i % 26), 'z'};
        std::snprintf(colour, sizeof colour, "#%02X%02X%02X", i & 0xff, i >> 8, 7);
        text += "\"" + key + " c " + colour + "\",\n";
        row += key;
    }
    const auto direct = ReadXpm(Text(text + "\"" + row + "\"};\n"));
    ASSERT_TRUE(direct);
    EXPECT_EQ(direct->bitCount(), 24);
    EXPECT_EQ(direct->pixel(5, 0), 0xff050007u);
    EXPECT_EQ(direct->pixel(299, 0), 0xff2b0107u);
}

// What each writer chooses to store, by the byte that says so.
TEST(CodecWriters, StoreTheSmallestKindThatHoldsThePicture) {
    // Alpha that is zero everywhere means "no alpha": such images are written opaque.
    PackedDib zeroAlpha = PackedDib::Create(9, 4, 32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 9; ++x) zeroAlpha.row(y)[x * 4 + 1] = static_cast<uint8_t>(x * 20);
    const PackedDib mono = lxtest::kMonoCase.make();
    const struct {
        const char* what;
        Bytes file;
        size_t at;
        int expected;
    } cases[] = {
        {"png rgb colour type", EncodePng(SyntheticRgb()), 25, 2},
        {"png rgba colour type", EncodePng(lxtest::SyntheticRgba()), 25, 6},
        {"png zero alpha colour type", EncodePng(zeroAlpha), 25, 2},
        {"png pal4 colour type", EncodePng(lxtest::SyntheticPalette(4)), 25, 3},
        {"png pal4 bit depth", EncodePng(lxtest::SyntheticPalette(4)), 24, 4},
        {"png pal1 bit depth", EncodePng(lxtest::SyntheticPalette(1)), 24, 1},
        {"pnm grey map", EncodePnm(lxtest::SyntheticGrey()), 1, '5'},
        {"pnm colour palette", EncodePnm(lxtest::SyntheticPalette(8)), 1, '6'},
        {"pcx mono bits", EncodePcx(mono), 3, 1},
        {"pcx mono planes", EncodePcx(mono), 65, 1},
    };
    for (const auto& c : cases) EXPECT_EQ(c.file[c.at], c.expected) << c.what;
    EXPECT_TRUE(EncodePng(PackedDib()).empty());
    // 300 x 100 x 3 bytes is well over one 64 KiB TIFF strip.
    const Bytes tiff = EncodeTiff(SyntheticRgb(300, 100));
    for (uint16_t i = 0; i < ReadLe16(&tiff[8]); ++i)
        if (ReadLe16(&tiff[10 + i * 12]) == 273) {
            EXPECT_GT(ReadLe32(&tiff[10 + i * 12 + 4]), 1u);
        }
}

TEST(CodecWriters, GifCodesArePackedLeastSignificantBitFirstToTheLastBit) {
    // Indices 0 1 0 1 with 2-bit pixels give the 3-bit codes clear (4), 0, 1, 6 (the string
    // "0 1" learnt on the way), end (5): bits 100 000 100 011 101 from the low end. Readers
    // forgive a lost last byte, so only this shows it.
    EXPECT_EQ(GifLzwCompress(std::vector<uint8_t>{0, 1, 0, 1}, 2), (Bytes{0x44, 0x5c}));
}

TEST(CodecWriters, SgiRowsUseRepeatsAndLiteralsAndEndWithZero) {
    const uint8_t row[] = {1, 2, 3, 7, 7, 7, 7, 9};
    Bytes out;
    SgiEncodeRow(row, sizeof row, out);
    EXPECT_EQ(out, (Bytes{0x83, 1, 2, 3, 4, 7, 0x81, 9, 0}));
    // Runs longer than a counter holds are split.
    const Bytes flat(300, 5);
    out.clear();
    SgiEncodeRow(flat.data(), flat.size(), out);
    EXPECT_EQ(out, (Bytes{127, 5, 127, 5, 46, 5, 0}));
}

TEST(CodecWriters, PcxBlackAndWhiteReadsBackByItsPalette) {
    // ImageMagick 6.9 shows set bits of one-bit PCX files black whatever the header's
    // palette says; Pillow follows the palette (entry 1 white), as our reader does.
    const PackedDib mono = lxtest::kMonoCase.make();
    const auto back = ReadPcx(EncodePcx(mono));
    ASSERT_TRUE(back);
    EXPECT_TRUE(lxtest::SamePixels(*back, lxtest::PixelsOf(mono)));
#ifndef _WIN32
    LX_REQUIRE_TOOLS("python3");
    lxtest::ScratchDir dir("pcx-mono");
    lxtest::WriteFile(dir / "mono.pcx", EncodePcx(mono));
    EXPECT_TRUE(lxtest::SamePixels(mono, lxtest::PillowRead(dir / "mono.pcx")));
#endif
}

#ifndef _WIN32
TEST(CodecWriters, GifCodeTableFillsAndStartsOverAndColourIsReduced) {
    LX_REQUIRE_TOOLS("convert identify");
    lxtest::ScratchDir dir("gif");
    // Random indices defeat LZW, so the 4096-code table fills several times over; long runs
    // of one index make the longest strings instead; few colours are kept exactly.
    PackedDib noise = PackedDib::Create(301, 157, 8), few = PackedDib::Create(20, 10, 24);
    std::mt19937 random(7);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x) noise.row(y)[x] = static_cast<uint8_t>(random());
    for (int i = 0; i < 256; ++i)
        noise.palette()[i] = Rgbq{static_cast<uint8_t>(i), static_cast<uint8_t>(i * 3), static_cast<uint8_t>(255 - i), 0};
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x) few.row(y)[x * 3 + (x % 3)] = static_cast<uint8_t>(40 * (y % 5) + 50);
    for (const PackedDib& dib : {noise, PackedDib::Create(640, 480, 1), few}) {
        lxtest::WriteFile(dir / "a.gif", EncodeGif(dib));
        EXPECT_TRUE(lxtest::SamePixels(dib, lxtest::OracleRead(dir / "a.gif"))) << dib.width();
    }
    // Many colours: a GIF comes out with the picture's size, close in colour.
    const PackedDib many = SyntheticRgb(64, 48);
    lxtest::WriteFile(dir / "many.gif", EncodeGif(many));
    const lxtest::Rgba back = lxtest::OracleRead(dir / "many.gif");
    ASSERT_EQ(back.width, 64);
    ASSERT_EQ(back.height, 48);
    double error = 0;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) error += lxtest::ChannelDistance(many.pixel(x, y), back.at(x, y), false);
    EXPECT_LT(error / (64 * 48), 24.0);
}
#endif

}  // namespace
}  // namespace lx
