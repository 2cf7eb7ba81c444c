#include "ImageLoadTestSupport.h"
#include "SgiReader.h"
#include "SgiWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;
using lx::ReadSgi;

namespace {

TEST(SgiWriter, RowsUseRepeatsAndLiteralsAndEndWithZero) {
    const uint8_t row[] = {1, 2, 3, 7, 7, 7, 7, 9};
    std::vector<uint8_t> out;
    lx::SgiEncodeRow(row, sizeof row, out);
    EXPECT_EQ(out, (std::vector<uint8_t>{0x83, 1, 2, 3, 4, 7, 0x81, 9, 0}));
    // Runs longer than a counter holds are split.
    std::vector<uint8_t> flat(300, 5);
    out.clear();
    lx::SgiEncodeRow(flat.data(), flat.size(), out);
    EXPECT_EQ(out, (std::vector<uint8_t>{127, 5, 127, 5, 46, 5, 0}));
}

TEST(SgiReader, RefusesRowsThatOverflowOrPointOutside) {
    std::vector<uint8_t> file = lx::EncodeSgi(lxtest::SyntheticGrey(4, 2));
    ASSERT_TRUE(ReadSgi(file));
    std::vector<uint8_t> bad = file;
    bad[512] = 0x7f;  // first row starts far outside the file
    EXPECT_FALSE(ReadSgi(bad));
    bad = file;
    const size_t rowAt = (size_t{file[514]} << 8) | file[515];
    bad[rowAt] = 0x7f;  // a run longer than the row
    EXPECT_FALSE(ReadSgi(bad));
}

}  // namespace
