// Every format through the format table: its names, its probe, its reader and its writer,
// checked against ImageMagick (and Pillow where ImageMagick cannot be trusted) as the
// independent oracle. The hand-made hostile and corner cases are in CodecDetailsTest.
#include "ImageFormats.h"
#include "ImageLoad.h"
#include "ImageLoadTestSupport.h"
#include "ImageProbe.h"
#include "ImageSave.h"

#include <gtest/gtest.h>

#include <set>

namespace lx {
namespace {

using lxtest::DibCase;
using lxtest::kRose;

TEST(ImageFormats, EveryTypeHasOneRowAndEveryExtensionLeadsBackToIt) {
    std::set<ImageType> types;
    for (const ImageFormat& format : kImageFormats) {
        EXPECT_TRUE(types.insert(format.type).second) << format.name;
        std::wstring list = format.extensions;
        for (size_t start = 0; start < list.size();) {
            const size_t end = std::min(list.find(L' ', start), list.size());
            std::wstring upper = list.substr(start, end - start);
            for (wchar_t& c : upper) c = (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
            EXPECT_EQ(ImageTypeFromExtension(upper), format.type) << format.name;
            start = end + 1;
        }
    }
    EXPECT_EQ(types.size(), 37u);  // 1 to 39 but the two ids never produced
    EXPECT_EQ(ImageTypeFromName("IMG_0001.CR2"), kImageCrw);
    EXPECT_EQ(ImageTypeFromName("a.b/noext"), kImageUnknown);
    EXPECT_EQ(ImageTypeFromExtension(L""), kImageUnknown);
}

// Whatever a format writes, its own probe recognises and its own reader (where it has one)
// gives back pixel for pixel. Targa has no signature: its name vouches for it.
TEST(ImageFormats, WritersAreProbedAndReadBackAsTheirOwnType) {
    for (const ImageFormat& format : kImageFormats) {
        if (!format.encode) continue;
        SCOPED_TRACE(format.name);
        const PackedDib dib = lxtest::SyntheticPalette(8);
        const std::vector<uint8_t> bytes = format.encode(dib);
        const std::wstring extensions = format.extensions;
        const std::filesystem::path name = L"a." + extensions.substr(0, extensions.find(L' '));
        EXPECT_EQ(ProbeImageBytesTrustingName(bytes, bytes, name), format.type);
        if (format.read) EXPECT_TRUE(lxtest::SamePixels(format.read(bytes).value_or(PackedDib()), lxtest::PixelsOf(dib)));
    }
}

#ifndef _WIN32
// One file made by ImageMagick: its type by content, and for formats of our own, the
// reader's depth and pixels against the oracle, the loader's dispatch to that reader, and
// a refusal of the file cut short.
struct MagickFile {
    const char* name;
    std::string arguments;  // for convert, ending with the output format prefix ("TGA:")
    const char* leaf;       // the name matters only for raw kinds and Targa
    ImageType type;         // by content alone
    int bitCount;           // the depth the reader must give
    int tolerance = 0;      // per channel, for formats whose samples are scaled or converted
};

class FormatsReadMagickFiles : public ::testing::TestWithParam<MagickFile> {};

TEST_P(FormatsReadMagickFiles, ProbeReaderAndLoaderAgreeWithTheOracle) {
    LX_REQUIRE_TOOLS("convert identify python3");
    const MagickFile& c = GetParam();
    lxtest::ScratchDir dir(std::string("format-") + c.name);
    const auto path = dir / c.leaf;
    ASSERT_TRUE(lxtest::MagickMake(c.arguments, path)) << c.arguments;
    EXPECT_EQ(ProbeImageType(path), c.type);
    const ImageType named = ImageTypeFromName(path);
    const ImageFormat* format = FindImageFormat(c.type ? c.type : named);
    if (!format || !format->read) return;  // left to the system's codecs
    const auto bytes = lxtest::ReadFile(path);
    const auto dib = format->read(bytes);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bitCount(), c.bitCount);
    // The oracle is told the format when the name hides it.
    std::string prefix = c.arguments.substr(c.arguments.rfind(' ') + 1);
    prefix.erase(std::remove_if(prefix.begin(), prefix.end(), [](char ch) { return ch >= '0' && ch <= '9'; }),
                 prefix.end());
    const lxtest::Rgba oracle = lxtest::OracleRead(path, named == format->type ? "" : prefix);
    EXPECT_TRUE(lxtest::SamePixels(*dib, oracle, c.tolerance));
    EXPECT_TRUE(lxtest::SamePixels(LoadImageFile(path).value_or(PackedDib()), oracle, c.tolerance));
    EXPECT_TRUE(lxtest::FailsWhenTruncated(format->read, bytes));
}

const std::string kAlpha = " -alpha set -channel A -fx 'i/w' +channel";
const std::string kSmall = "rose: -resize 9x7!";

MagickFile File(const char* name, std::string arguments, const char* leaf, ImageType type, int bits, int tolerance = 0) {
    return {name, std::move(arguments), leaf, type, bits, tolerance};
}

INSTANTIATE_TEST_SUITE_P(
    Files, FormatsReadMagickFiles,
    ::testing::Values(
        File("bmp", kRose + " -type TrueColor BMP3:", "a.bmp", kImageBmp, 24),
        File("bmppal8", kRose + " -colors 200 -type Palette BMP3:", "a.bmp", kImageBmp, 8),
        File("bmppal4", kRose + " -colors 12 -type Palette BMP3:", "a.bmp", kImageBmp, 4),
        File("bmpmono", kRose + " -monochrome BMP3:", "a.bmp", kImageBmp, 1),
        File("bmprle8", kRose + " -colors 200 -type Palette -compress RLE BMP3:", "a.bmp", kImageBmp, 8),
        // 5- and 6-bit channels round either way when widened.
        File("bmp565", kRose + " -define bmp:subtype=RGB565 BMP:", "a.bmp", kImageBmp, 24, 4),
        File("bmpargb", kRose + kAlpha + " BMP:", "a.bmp", kImageBmp, 32),
        File("bmpv5", kRose + " -type TrueColor BMP:", "a.bmp", kImageBmp, 24),
        File("misnamedbmp", kRose + " -colors 64 BMP3:", "a.tga", kImageBmp, 8),
        File("tga", kRose + " -type TrueColor TGA:", "a.TGA", kImageUnknown, 24),  // no footer, no signature
        File("tgarle", kRose + " -type TrueColor -compress RLE TGA:", "a.tga", kImageUnknown, 24),
        File("tgamapped", kRose + " -colors 100 -type Palette TGA:", "a.tga", kImageUnknown, 8),
        File("tgarlemapped", kRose + " -colors 100 -type Palette -compress RLE TGA:", "a.tga", kImageUnknown, 8),
        File("tgagrey", kRose + " -colorspace Gray -type Grayscale TGA:", "a.tga", kImageUnknown, 8),
        File("tgargba", kRose + kAlpha + " TGA:", "a.tga", kImageUnknown, 32),
        File("tgarlergba", kRose + kAlpha + " -compress RLE TGA:", "a.tga", kImageUnknown, 32),
        File("sun", kRose + " -type TrueColor SUN:", "a.ras", kImageRas, 24),
        File("sunrle", kRose + " -type TrueColor -compress RLE SUN:", "a.ras", kImageRas, 24),
        File("sunpal8", kRose + " -colors 100 -type Palette SUN:", "a.ras", kImageRas, 8),
        File("sunrlepal8", kRose + " -colors 100 -type Palette -compress RLE SUN:", "a.ras", kImageRas, 8),
        // ImageMagick stores black and white as 24-bit RGB (Sun) and 24-bit planes (PCX).
        File("sunmono", kRose + " -monochrome SUN:", "a.ras", kImageRas, 24),
        File("sunrgba", kRose + kAlpha + " SUN:", "a.ras", kImageRas, 32),
        File("pcx", kRose + " -type TrueColor PCX:", "a.pcx", kImagePcx, 24),
        File("pcxpal8", kRose + " -colors 100 -type Palette PCX:", "a.pcx", kImagePcx, 8),
        File("pcxmono", kRose + " -monochrome PCX:", "a.pcx", kImagePcx, 24),
        File("pcxrgba", kRose + kAlpha + " PCX:", "a.pcx", kImagePcx, 32),
        File("p6", kRose + " PPM:", "a.ppm", kImagePnm, 24),
        File("p5", kRose + " -colorspace Gray PGM:", "a.pgm", kImagePnm, 8),
        File("p4", kRose + " -monochrome PBM:", "a.pbm", kImagePnm, 1),
        File("p3", kRose + " -compress none PPM:", "a.ppm", kImagePnm, 24),
        File("p2", kRose + " -colorspace Gray -compress none PGM:", "a.pgm", kImagePnm, 8),
        File("p1", kRose + " -monochrome -compress none PBM:", "a.pbm", kImagePnm, 1),
        File("p6deep", kRose + " -depth 16 PPM:", "a.ppm", kImagePnm, 24, 1),
        File("p5deep", kRose + " -colorspace Gray -depth 16 PGM:", "a.pgm", kImagePnm, 8, 1),
        File("sgi", kRose + " -compress RLE SGI:", "a.sgi", kImageSgi, 24),
        File("sgiverbatim", kRose + " -compress none SGI:", "a.sgi", kImageSgi, 24),
        File("sgigrey", kRose + " -colorspace Gray -type Grayscale SGI:", "a.sgi", kImageSgi, 8),
        File("sgirgba", kRose + kAlpha + " SGI:", "a.sgi", kImageSgi, 32),
        File("sgideep", kRose + " -depth 16 -compress RLE SGI:", "a.sgi", kImageSgi, 24),
        File("sgideepverbatim", kRose + " -depth 16 -compress none SGI:", "a.sgi", kImageSgi, 24),
        File("xpm", kRose + " -colors 60 XPM:", "a.xpm", kImageXpm, 8),
        // ImageMagick's pixmaps hold at most 256 colours (224 here).
        File("xpmrose", kRose + " XPM:", "a.xpm", kImageXpm, 8),
        File("xpmtransparent", kRose + " -colors 30 -alpha set -channel A -fx 'i<w/2?0:1' +channel XPM:", "a.xpm",
             kImageXpm, 32),
        File("xbm", kRose + " -monochrome XBM:", "a.xbm", kImageXbm, 1),
        File("psd", kRose + " -compress RLE PSD:", "a.psd", kImagePsd, 24),
        File("psdraw", kRose + " -compress none PSD:", "a.psd", kImagePsd, 24),
        File("psdgrey", kRose + " -colorspace Gray -type Grayscale PSD:", "a.psd", kImagePsd, 8),
        File("psdindexed", kRose + " -colors 50 -type Palette PSD:", "a.psd", kImagePsd, 8),
        File("psdrgba", kRose + kAlpha + " PSD:", "a.psd", kImagePsd, 32),
        File("psddeep", kRose + " -depth 16 PSD:", "a.psd", kImagePsd, 24, 1),
        File("psdcmyk", kRose + " -colorspace CMYK PSD:", "a.psd", kImagePsd, 24, 2),
        // Formats the system's codecs read: only the probe is ours.
        File("jpeg", kSmall + " JPEG:", "a.jpg", kImageJpeg, 0),
        File("jpegbyanothername", kSmall + " JPEG:", "a.png", kImageJpeg, 0),
        File("gif", kSmall + " GIF:", "a.gif", kImageGif, 0), File("tiff", kSmall + " TIFF:", "a.tif", kImageTiff, 0),
        File("bigendiantiff", kSmall + " -endian MSB TIFF:", "a.tif", kImageTiff, 0),
        File("nef", kSmall + " TIFF:", "a.NEF", kImageNef, 0), File("dng", kSmall + " TIFF:", "a.dng", kImageDng, 0),
        File("png", kSmall + " PNG:", "a.png", kImagePng, 0), File("ico", kSmall + " ICO:", "a.ico", kImageIco, 0)),
    [](const auto& info) { return std::string(info.param.name); });

// What each writer stores, through the save operation, the oracle reads as the same pixels,
// nothing is left beside the file, and our own reader gives the pixels back.
struct WriterCase {
    ImageType type;
    const char* leaf;
    const char* prefix;  // tells ImageMagick the format where the extension does not
    std::vector<DibCase> pictures;
    bool sameBytes = false;  // our reader gives back the very same DIB
};

class FormatsWriteWhatMagickReads : public ::testing::TestWithParam<WriterCase> {};

TEST_P(FormatsWriteWhatMagickReads, ThroughTheSaveOperation) {
    LX_REQUIRE_TOOLS("convert identify python3");
    const WriterCase& c = GetParam();
    for (const DibCase& picture : c.pictures) {
        SCOPED_TRACE(picture.name);
        lxtest::ScratchDir dir("write");
        const PackedDib dib = picture.make();
        ASSERT_NE(SaveImageByType(dir / c.leaf, dib, c.type), 0);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
        EXPECT_TRUE(lxtest::SamePixels(dib, lxtest::OracleRead(dir / c.leaf, c.prefix)));
        const ImageFormat* format = FindImageFormat(c.type);
        if (!format->read) continue;
        const auto back = format->read(lxtest::ReadFile(dir / c.leaf));
        ASSERT_TRUE(back);
        EXPECT_TRUE(lxtest::SamePixels(*back, lxtest::PixelsOf(dib)));
        if (c.sameBytes) EXPECT_EQ(back->bytes(), dib.bytes());
    }
}

using namespace lxtest;

const DibCase kLargeRgb{"large", [] { return SyntheticRgb(513, 301); }};
// 300 x 100 x 3 bytes is well over one 64 KiB TIFF strip.
const DibCase kStrips{"strips", [] { return SyntheticRgb(300, 100); }};

INSTANTIATE_TEST_SUITE_P(
    Writers, FormatsWriteWhatMagickReads,
    ::testing::Values(
        WriterCase{kImageBmp, "a.bmp", "", {kRgbCase, kPal8Case, kPal4Case, kPal1Case}, true},
        WriterCase{kImageGif, "a.gif", "", {kGreyCase, kPal8Case, kPal4Case, kPal1Case}},
        WriterCase{kImageTiff, "a.tif", "", {kRgbCase, kRgbaCase, kGreyCase, kPal8Case, kPal4Case, kPal1Case, kMonoCase, kStrips}},
        WriterCase{kImageTga, "a.tga", "", {kRgbCase, kRgbaCase, kGreyCase, kPal8Case, kPal4Case, kPal1Case}},
        WriterCase{kImagePcx, "a.pcx", "", {kRgbCase, kGreyCase, kPal8Case, kPal4Case, kPal1Case}},
        WriterCase{kImageRas, "a.ras", "", {kRgbCase, kGreyCase, kPal8Case, kPal4Case, kPal1Case, kMonoCase}},
        WriterCase{kImagePng, "a.png", "", {kRgbCase, kRgbaCase, kGreyCase, kPal8Case, kPal4Case, kPal1Case, kLargeRgb}},
        WriterCase{kImageSgi, "a.sgi", "SGI:", {kRgbCase, kRgbaCase, kGreyCase, kPal8Case, kPal1Case}},
        WriterCase{kImagePnm, "a.ppm", "", {kRgbCase, kGreyCase, kPal8Case, kPal1Case}}),
    [](const auto& info) { return std::string(info.param.leaf).substr(2); });

#endif

}  // namespace
}  // namespace lx
