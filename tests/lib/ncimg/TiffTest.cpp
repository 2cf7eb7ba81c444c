#include "ImageLoadTestSupport.h"
#include "TiffWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

TEST(TiffWriter, LargeImagesSpanSeveralStrips) {
    // 300 x 100 x 3 bytes is well over one 64 KiB strip.
    const std::vector<uint8_t> file = lx::EncodeTiff(lxtest::SyntheticRgb(300, 100));
    const uint16_t entries = lx::ReadLe16(&file[8]);
    for (uint16_t i = 0; i < entries; ++i) {
        const uint8_t* e = &file[10 + i * 12];
        if (lx::ReadLe16(e) == 273) {
            EXPECT_GT(lx::ReadLe32(e + 4), 1u);
        }
    }
}

}  // namespace
