#include "ImageLoadTestSupport.h"
#include "PcxReader.h"
#include "PcxWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadPcx;

namespace {

TEST(PcxReader, ReadsSixteenColourPlanes) {
    // 3x1 picture, 1 bit in 4 planes: colours 5 (planes 0 and 2), 10 (planes 1 and 3), 15.
    std::vector<uint8_t> file(128, 0);
    file[0] = 0x0a, file[1] = 5, file[2] = 1, file[3] = 1;
    lx::WriteLe16(&file[8], 2);
    file[65] = 4;
    lx::WriteLe16(&file[66], 2);
    for (int i = 0; i < 16; ++i) file[16 + i * 3] = static_cast<uint8_t>(i * 16);  // red = 16 * index
    const uint8_t planes[4] = {0xa0, 0x60, 0xa0, 0x60};  // pixel bits per plane, MSB first
    for (uint8_t p : planes) file.insert(file.end(), {p, 0});
    const auto dib = ReadPcx(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bitCount(), 4);
    EXPECT_EQ(dib->pixel(0, 0), 0xff500000u);
    EXPECT_EQ(dib->pixel(1, 0), 0xffa00000u);
    EXPECT_EQ(dib->pixel(2, 0), 0xfff00000u);
}

TEST(PcxReader, RefusesInconsistentHeaders) {
    std::vector<uint8_t> file = lx::EncodePcx(lxtest::SyntheticRgb(4, 4));
    std::vector<uint8_t> bad = file;
    lx::WriteLe16(&bad[66], 1);  // lines shorter than the width
    EXPECT_FALSE(ReadPcx(bad));
    bad = file;
    bad[65] = 2;  // two planes of 8 bits is no PCX kind
    EXPECT_FALSE(ReadPcx(bad));
    bad = file;
    lx::WriteLe16(&bad[8], 0xffff), lx::WriteLe16(&bad[10], 0xffff);  // a huge canvas for little data
    EXPECT_FALSE(ReadPcx(bad));
}

TEST(PcxWriter, BlackAndWhiteStaysOneBitPlane) {
    // ImageMagick 6.9 shows set bits of one-bit PCX files black whatever the header's
    // palette says; Pillow follows the palette (entry 1 white), as our reader does.
    const PackedDib mono = lxtest::kMonoCase.make();
    const std::vector<uint8_t> file = lx::EncodePcx(mono);
    EXPECT_EQ(file[3], 1);
    EXPECT_EQ(file[65], 1);
    lxtest::CheckRoundTrip(ReadPcx, lx::EncodePcx, mono);
#ifndef _WIN32
    LX_REQUIRE_TOOLS("python3");
    lxtest::ScratchDir dir("pcx-mono");
    lxtest::WriteFile(dir / "mono.pcx", file);
    EXPECT_TRUE(lxtest::SamePixels(mono, lxtest::PillowRead(dir / "mono.pcx")));
#endif
}

}  // namespace
