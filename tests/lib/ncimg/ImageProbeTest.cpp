#include "ImageLoadTestSupport.h"
#include "ImageProbe.h"

#include <gtest/gtest.h>

using lx::ProbeImageBytes;
using lx::ProbeImageType;

namespace {

struct ProbeCase {
    const char* name;
    std::string arguments;  // convert arguments ending in the format prefix
    const char* leaf;       // file name (the name only matters for raw kinds and Targa)
    int type;
};

class ProbeMagickFiles : public ::testing::TestWithParam<ProbeCase> {};

TEST_P(ProbeMagickFiles, ContentGivesTheType) {
    LX_REQUIRE_MAGICK();
    const ProbeCase& c = GetParam();
    lxtest::ScratchDir dir(std::string("probe-") + c.name);
    ASSERT_TRUE(lxtest::MagickMake(c.arguments, dir / c.leaf));
    EXPECT_EQ(ProbeImageType(dir / c.leaf), c.type) << c.arguments;
}

const std::string kSmall = "rose: -resize 9x7!";

INSTANTIATE_TEST_SUITE_P(
    Formats, ProbeMagickFiles,
    ::testing::Values(ProbeCase{"bmp", kSmall + " BMP3:", "a.bmp", 1}, ProbeCase{"bmpv5", kSmall + " BMP:", "a.bmp", 1},
                      ProbeCase{"jpeg", kSmall + " JPEG:", "a.jpg", 2},
                      ProbeCase{"jpegbyanothername", kSmall + " JPEG:", "a.png", 2},
                      ProbeCase{"gif", kSmall + " GIF:", "a.gif", 3}, ProbeCase{"tiff", kSmall + " TIFF:", "a.tif", 4},
                      ProbeCase{"bigendiantiff", kSmall + " -endian MSB TIFF:", "a.tif", 4},
                      ProbeCase{"nef", kSmall + " TIFF:", "a.NEF", 27}, ProbeCase{"dng", kSmall + " TIFF:", "a.dng", 34},
                      ProbeCase{"pcx", kSmall + " PCX:", "a.pcx", 6}, ProbeCase{"sun", kSmall + " SUN:", "a.ras", 9},
                      ProbeCase{"png", kSmall + " PNG:", "a.png", 10}, ProbeCase{"psd", kSmall + " PSD:", "a.psd", 11},
                      ProbeCase{"sgi", kSmall + " SGI:", "a.sgi", 14}, ProbeCase{"ppm", kSmall + " PPM:", "a.ppm", 17},
                      ProbeCase{"pbm", kSmall + " -monochrome -compress none PBM:", "a.pbm", 17},
                      ProbeCase{"ico", kSmall + " ICO:", "a.ico", 18}, ProbeCase{"xpm", kSmall + " XPM:", "a.xpm", 20},
                      ProbeCase{"xbm", kSmall + " XBM:", "a.xbm", 21},
                      // Targa without the version 2 footer has no signature at all.
                      ProbeCase{"tga", kSmall + " TGA:", "a.tga", 0}),
    [](const auto& info) { return std::string(info.param.name); });

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

TEST(ImageProbe, RawSignaturesAndRefusals) {
    EXPECT_EQ(ProbeImageBytes(Bytes(std::string("II\x1a\0\0\0HEAPCCDR", 14))), 26);
    EXPECT_EQ(ProbeImageBytes(Bytes("FUJIFILMCCD-RAW 0201")), 28);
    EXPECT_EQ(ProbeImageBytes(Bytes(std::string("\0MRM\0\0", 6))), 29);
    EXPECT_EQ(ProbeImageBytes(Bytes("FOVb")), 30);
    EXPECT_EQ(ProbeImageBytes(Bytes("IIRO\x08\0\0\0"), {}, "p.orf"), 33);
    EXPECT_EQ(ProbeImageBytes(Bytes("IIRO\x08\0\0\0"), {}, "p.bin"), 0);  // only the name makes it raw
    EXPECT_EQ(ProbeImageBytes(Bytes(std::string("II*\0", 4)), {}, "p.rw2"), 37);
    EXPECT_EQ(ProbeImageBytes(Bytes("")), 0);
    EXPECT_EQ(ProbeImageBytes(Bytes("BM")), 0);      // too short to hold a header size
    EXPECT_EQ(ProbeImageBytes(Bytes("P7 1 1")), 0);  // PAM is not read
    EXPECT_EQ(ProbeImageBytes(Bytes("hello world")), 0);
    EXPECT_EQ(ProbeImageType("/nonexistent/file.jpg"), 0);
}

TEST(ImageProbe, TargaWithItsFooterIsRecognised) {
    std::vector<uint8_t> tga(18, 0);
    tga[2] = 2, tga[12] = 1, tga[14] = 1, tga[16] = 24;
    tga.insert(tga.end(), {1, 2, 3});
    EXPECT_EQ(ProbeImageBytes(tga, tga), 0);
    const char footer[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";
    tga.insert(tga.end(), footer, footer + sizeof footer);
    EXPECT_EQ(ProbeImageBytes(tga, tga), 5);
}

TEST(ImageProbe, ExtensionsAreReadWithoutRegardToCase) {
    EXPECT_EQ(lx::RawTypeFromName("IMG_0001.CR2"), 26);
    EXPECT_EQ(lx::RawTypeFromName("x.3fr"), 39);
    EXPECT_EQ(lx::RawTypeFromName("x.jpg"), 0);
    EXPECT_EQ(lx::LowerExtension("photo.JPeG"), ".jpeg");
    EXPECT_EQ(lx::LowerExtension("noext"), "");
}

}  // namespace
