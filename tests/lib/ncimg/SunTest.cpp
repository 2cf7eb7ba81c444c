#include "ImageLoadTestSupport.h"
#include "SunReader.h"
#include "SunWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadSun;

namespace {

TEST(SunReader, RunsWithEscapedMarkerAndRgbOrder) {
    // 3x1, 24 bits, type 3 (RGB order), byte-run encoded: 0x80 0x00 is a literal 0x80.
    std::vector<uint8_t> file = {0x59, 0xa6, 0x6a, 0x95, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 24,
                                 0,    0,    0,    0,    0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0};
    // Type 2 is run-length with BGR order: pixel 0 = 0x80,0x80,0x80 via a run of 3, then
    // 1,2,3 and 0x80 (escaped),5,6, then the row pad byte.
    const std::vector<uint8_t> runs = {0x80, 2, 0x80, 1, 2, 3, 0x80, 0, 5, 6, 0};
    file.insert(file.end(), runs.begin(), runs.end());
    const auto dib = ReadSun(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->pixel(0, 0), 0xff808080u);
    EXPECT_EQ(dib->pixel(1, 0), 0xff030201u);
    EXPECT_EQ(dib->pixel(2, 0), 0xff060580u);
    file[23] = 3;  // the same bytes raw, in RGB order
    file.resize(32);
    file.insert(file.end(), {1, 2, 3, 4, 5, 6, 7, 8, 9, 0});
    const auto rgb = ReadSun(file);
    ASSERT_TRUE(rgb);
    EXPECT_EQ(rgb->pixel(0, 0), 0xff010203u);
}

}  // namespace
