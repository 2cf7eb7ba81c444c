#include "ImageProbe.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lx {
namespace {

// Heads that only a signature or a name tells apart; the files of every format are probed
// in FormatTableTest.
TEST(ImageProbe, SignaturesNamesAndRefusals) {
    using namespace std::string_literals;
    const struct {
        std::string head;
        const char* name;
        ImageType type;
    } kCases[] = {
        {"II\x1a\0\0\0HEAPCCDR"s, "", kImageCrw},
        {"FUJIFILMCCD-RAW 0201", "", kImageRaf},
        {"\0MRM\0\0"s, "", kImageMrw},
        {"FOVb", "", kImageX3f},
        {"IIRO\x08\0\0\0"s, "p.orf", kImageOrf},
        {"IIRO\x08\0\0\0"s, "p.bin", kImageUnknown},  // only the name makes it raw
        {"II*\0"s, "p.rw2", kImageRw2},
        {"II*\0"s, "p.CR2", kImageCrw},
        {"II*\0"s, "p.tif", kImageTiff},
        {"", "", kImageUnknown},
        {"BM", "", kImageUnknown},      // too short to hold a header size
        {"P7 1 1", "", kImageUnknown},  // PAM is not read
        {"hello world", "", kImageUnknown},
    };
    for (const auto& c : kCases) {
        const std::vector<uint8_t> head(c.head.begin(), c.head.end());
        EXPECT_EQ(ProbeImageBytes(head, {}, c.name), c.type) << c.head << " " << c.name;
    }
    EXPECT_EQ(ProbeImageType("/nonexistent/file.jpg"), kImageUnknown);
}

TEST(ImageProbe, TargaByItsFooterOrByItsNameWithAConsistentHeader) {
    std::vector<uint8_t> tga(18, 0);
    tga[2] = 2, tga[12] = 1, tga[14] = 1, tga[16] = 24;
    tga.insert(tga.end(), {1, 2, 3});
    EXPECT_EQ(ProbeImageBytes(tga, tga), kImageUnknown);
    EXPECT_EQ(ProbeImageBytes(tga, tga, "a.tga"), kImageUnknown);
    EXPECT_EQ(ProbeImageBytesTrustingName(tga, tga, "a.tga"), kImageTga);
    EXPECT_EQ(ProbeImageBytesTrustingName(tga, tga, "a.bin"), kImageUnknown);
    const char footer[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";
    tga.insert(tga.end(), footer, footer + sizeof footer);
    EXPECT_EQ(ProbeImageBytes(tga, tga), kImageTga);
}

}  // namespace
}  // namespace lx
