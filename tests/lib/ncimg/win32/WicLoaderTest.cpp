// LoadImageFile and the memory loads through WIC, with files our own writers made: each
// format Windows decodes must come back as the picture that went in, at the right depth.
#include "GifWriter.h"
#include "ImageLoad.h"
#include "Painted.h"
#include "../ImageLoadTestSupport.h"
#include "JpegWriter.h"
#include "PngWriter.h"
#include "../RawTestFiles.h"
#include "ImageLoadOrientation.h"
#include "TiffWriter.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

std::optional<PackedDib> SaveAndLoad(const std::filesystem::path& file, const std::vector<uint8_t>& bytes) {
    lxtest::WriteFile(file, bytes);
    return lx::LoadImageFile(file);
}

TEST(WicLoader, LosslessFormatsComeBackExactlyAtTheirDepth) {
    lxtest::ScratchDir dir("wic");
    struct Case {
        const char* leaf;
        std::vector<uint8_t> bytes;
        PackedDib source;
        int bitCount;
    };
    const PackedDib rgb = lxtest::SyntheticRgb(), rgba = lxtest::SyntheticRgba(), pal4 = lxtest::SyntheticPalette(4),
                    pal8 = lxtest::SyntheticPalette(8), grey = lxtest::SyntheticGrey(), pal1 = lxtest::SyntheticPalette(1);
    const Case cases[] = {
        {"rgb.png", lx::EncodePng(rgb), rgb, 24},       {"rgba.png", lx::EncodePng(rgba), rgba, 32},
        {"pal4.png", lx::EncodePng(pal4), pal4, 4},     {"pal8.gif", lx::EncodeGif(pal8), pal8, 8},
        {"pal1.gif", lx::EncodeGif(pal1), pal1, 8},  // GIF frames always decode as 8 bits
        {"rgb.tif", lx::EncodeTiff(rgb), rgb, 24},
        {"grey.tif", lx::EncodeTiff(grey), grey, 8},    {"rgba.tif", lx::EncodeTiff(rgba), rgba, 32},
    };
    for (const Case& c : cases) {
        const auto dib = SaveAndLoad(dir / c.leaf, c.bytes);
        ASSERT_TRUE(dib) << c.leaf;
        EXPECT_EQ(dib->bitCount(), c.bitCount) << c.leaf;
        EXPECT_TRUE(lxtest::SamePixels(*dib, lxtest::PixelsOf(c.source))) << c.leaf;
    }
}

// Files made by ImageMagick (png/make.sh, tiff/make.sh), each beside the pixels ImageMagick
// reads from it: 13 x 7, 8-bit RGBA, rows from the top.
struct OracleCase {
    const char* file;  // under tests/lib/ncimg/win32
    int bitCount;
    int tolerance;      // 16-bit samples: ImageMagick rounds to 8 bits, others may truncate
    bool grey = false;  // must keep a grey palette
};

// The loaded image, when it has the expected depth and ImageMagick's pixels.
std::optional<PackedDib> LoadLikeOracle(const OracleCase& c) {
    const std::filesystem::path file = lxtest::SourceDir() / "tests/lib/ncimg/win32" / c.file;
    const std::vector<uint8_t> raw = lxtest::ReadFile(std::filesystem::path(file).replace_extension(".rgba"));
    lxtest::Rgba expected{13, 7, {}};
    for (size_t i = 0; i + 3 < raw.size(); i += 4)
        expected.pixels.push_back(static_cast<uint32_t>(raw[i + 3]) << 24 | raw[i] << 16 | raw[i + 1] << 8 | raw[i + 2]);
    auto dib = lx::LoadImageFile(file);
    if (raw.size() != 13u * 7 * 4 || !dib) {
        ADD_FAILURE() << c.file << (dib ? ": no oracle pixels" : " did not load");
        return std::nullopt;
    }
    EXPECT_EQ(dib->bitCount(), c.bitCount) << c.file;
    EXPECT_TRUE(lxtest::SamePixels(*dib, expected, c.tolerance)) << c.file;
    return dib;
}

// Every bit depth and colour type, transparency by tRNS, Adam7 interlace. Grey stays grey
// at the nearest DIB depth: one, four or eight bits with a grey palette.
TEST(WicLoader, PngAndTiffOfEveryDepthAndColourType) {
    const OracleCase cases[] = {
        {"png/rgb16.png", 24, 1},       {"png/rgba16.png", 32, 1},       {"png/greya16.png", 32, 1},
        {"png/greya8.png", 32, 0},      {"png/pal1.png", 1, 0},          {"png/pal2.png", 4, 0},
        {"png/pal4.png", 4, 0},         {"png/pal8.png", 8, 0},          {"png/pal8trns.png", 32, 0},
        {"png/pal4trns.png", 32, 0},    {"png/rgb8i.png", 24, 0},        {"png/rgba8i.png", 32, 0},
        {"png/grey1.png", 1, 0, true},  {"png/grey2.png", 4, 0, true},   {"png/grey4.png", 4, 0, true},
        {"png/grey16.png", 8, 1, true}, {"tiff/grey1.tif", 1, 0, true},  {"tiff/grey1w.tif", 1, 0, true},
        {"tiff/grey4.tif", 4, 0, true}, {"tiff/grey8.tif", 8, 0, true},  {"tiff/grey16.tif", 8, 1, true},
    };
    for (const OracleCase& c : cases)
        if (const auto dib = LoadLikeOracle(c); dib && c.grey) EXPECT_TRUE(dib->hasGreyPalette()) << c.file;
}

TEST(WicLoader, IconsKeepTheirAlpha) {
    // An icon directory holding one PNG image, as Windows Vista and later write them.
    const PackedDib rgba = lxtest::SyntheticRgba(16, 16);
    const std::vector<uint8_t> png = lx::EncodePng(rgba);
    std::vector<uint8_t> ico = {0, 0, 1, 0, 1, 0, 16, 16, 0, 0, 1, 0, 32, 0};
    ico.resize(22);
    lx::WriteLe32(&ico[14], static_cast<uint32_t>(png.size()));
    lx::WriteLe32(&ico[18], 22);
    ico.insert(ico.end(), png.begin(), png.end());
    lxtest::ScratchDir dir("wic-ico");
    const auto dib = SaveAndLoad(dir / "a.ico", ico);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bitCount(), 32);
    EXPECT_TRUE(lxtest::SamePixels(*dib, lxtest::PixelsOf(rgba)));
}

// The JPEG with an Exif segment whose IFD0 holds only the orientation.
std::vector<uint8_t> WithOrientation(const std::vector<uint8_t>& jpeg, uint16_t orientation) {
    lxtest::TiffBuilder t;
    t.addShort(t.addIfd(), 0x112, orientation);
    return lxtest::JpegWithExif(t.build(), jpeg);
}

// Mean over all pixels of the largest channel difference: for lossy previews (about 8 for
// this picture at quality 95 with subsampled colour; a wrong turn of it gives several times that).
double MeanDistance(const PackedDib& a, const PackedDib& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) sum += lxtest::ChannelDistance(a.pixel(x, y), b.pixel(x, y), false);
    return sum / (a.width() * a.height());
}

std::vector<uint8_t> QualityJpeg(const PackedDib& picture) {
    lx::JpegSaveRecord record;
    record.quality = 95;
    return lx::EncodeJpeg(picture, record);
}

TEST(WicLoader, JpegIsTurnedUprightByItsOrientation) {
    lxtest::ScratchDir dir("wic-jpeg");
    const PackedDib rgb = lxtest::SyntheticRgb(40, 24);
    const std::vector<uint8_t> jpeg = QualityJpeg(rgb);
    const auto plain = SaveAndLoad(dir / "plain.jpg", jpeg);
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->bitCount(), 24);
    EXPECT_EQ(plain->width(), 40);
    // Lossy with subsampled colour: close on average, not pixel for pixel.
    EXPECT_LT(MeanDistance(*plain, rgb), 12.0);
    const auto turned = SaveAndLoad(dir / "turned.jpg", WithOrientation(jpeg, 6));
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->width(), 24);
    EXPECT_EQ(turned->height(), 40);
    // The picture's top-left corner is now its top-right one.
    EXPECT_LE(lxtest::ChannelDistance(turned->pixel(23, 0), plain->pixel(0, 0), false), 8);
    // From memory as well.
    const auto fromMemory = lx::LoadJpegFromMemory(WithOrientation(jpeg, 8));
    ASSERT_TRUE(fromMemory);
    EXPECT_EQ(fromMemory->width(), 24);
    EXPECT_LE(lxtest::ChannelDistance(fromMemory->pixel(0, 39), plain->pixel(0, 0), false), 8);
}

TEST(WicLoader, CameraRawShowsItsLargestPreviewUpright) {
    lxtest::ScratchDir dir("wic-raw");
    const PackedDib picture = lxtest::SyntheticRgb(40, 24);
    const std::vector<uint8_t> jpeg = QualityJpeg(picture);
    const PackedDib thumb = lxtest::SyntheticRgb(16, 12);
    for (int orientation : {0, 6, 3}) {
        PackedDib upright = picture;
        ASSERT_TRUE(lx::OrientUpright(upright, orientation));
        for (const char* leaf : {"a.cr2", "b.nef", "c.dng"}) {
            const auto dib = SaveAndLoad(dir / leaf, lxtest::MakeRawLikeFile({jpeg, thumb, orientation}));
            ASSERT_TRUE(dib) << leaf << " orientation " << orientation;
            EXPECT_EQ(dib->bitCount(), 24);
            ASSERT_EQ(dib->width(), upright.width()) << leaf << " orientation " << orientation;
            ASSERT_EQ(dib->height(), upright.height());
            EXPECT_LT(MeanDistance(*dib, upright), 12.0) << leaf << " orientation " << orientation;
        }
    }
    // A preview that carries its own orientation is turned by that one alone.
    const auto own = SaveAndLoad(dir / "own.nef", lxtest::MakeRawLikeFile({WithOrientation(jpeg, 8), thumb, 6}));
    ASSERT_TRUE(own);
    PackedDib left = picture;
    ASSERT_TRUE(lx::OrientUpright(left, 8));
    ASSERT_EQ(own->width(), 24);
    EXPECT_LT(MeanDistance(*own, left), 12.0);
    PackedDib right = picture;
    ASSERT_TRUE(lx::OrientUpright(right, 6));
    EXPECT_GT(MeanDistance(*own, right), 24.0);
    // Without a JPEG the RGB thumbnail is the largest image.
    const auto small = SaveAndLoad(dir / "thumb.nef", lxtest::MakeRawLikeFile({{}, thumb, 0}));
    ASSERT_TRUE(small);
    EXPECT_TRUE(lxtest::SamePixels(*small, lxtest::PixelsOf(thumb)));
}

// A grey JPEG of four blocks whose frame claims `width` x `height` pixels: a decoder fills
// the rest of the canvas in grey.
std::vector<uint8_t> JpegClaiming(uint16_t width, uint16_t height) {
    std::vector<uint8_t> file = QualityJpeg(PackedDib::Create(32, 8, 8));
    for (size_t i = 2; i + 8 < file.size(); ++i)
        if (file[i] == 0xff && file[i + 1] == 0xc0) {
            file[i + 5] = static_cast<uint8_t>(height >> 8), file[i + 6] = static_cast<uint8_t>(height);
            file[i + 7] = static_cast<uint8_t>(width >> 8), file[i + 8] = static_cast<uint8_t>(width);
            break;
        }
    return file;
}

TEST(WicLoader, RefusesCanvasesTheFileIsTooSmallToHold) {
    lxtest::ScratchDir dir("wic-claims");
    // A 2-megapixel canvas is small enough to be filled in, as damaged photographs are.
    const auto small = SaveAndLoad(dir / "small.jpg", JpegClaiming(2000, 1000));
    ASSERT_TRUE(small);
    EXPECT_EQ(small->width(), 2000);
    // 400 megapixels need at least 780 KB of JPEG data, one bit per block; 24 at least 47 KB.
    EXPECT_FALSE(SaveAndLoad(dir / "claim.jpg", JpegClaiming(20000, 20000)));
    EXPECT_FALSE(lx::LoadJpegFromMemory(JpegClaiming(6000, 4000)));
    // The emptiest real photograph, a blank 12-megapixel sky, progressive with optimised
    // tables, still loads.
    const PackedDib sky = lxtest::Painted(4000, 3000, [](int, int) { return 0x87b5e8u; });
    lx::JpegSaveRecord record;
    record.quality = 75;
    record.progressive = 1;
    record.optimizeHuffman = 1;
    const auto loaded = SaveAndLoad(dir / "sky.jpg", lx::EncodeJpeg(sky, record));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->width(), 4000);
}

TEST(WicLoader, JapaneseNamesAndDamagedFiles) {
    lxtest::ScratchDir dir("wic-names");
    const PackedDib rgb = lxtest::SyntheticRgb();
    const auto named = SaveAndLoad(dir.path() / std::filesystem::path(L"\u5199\u771f.png"), lx::EncodePng(rgb));
    ASSERT_TRUE(named);
    EXPECT_TRUE(lxtest::SamePixels(*named, lxtest::PixelsOf(rgb)));
    std::vector<uint8_t> cut = lx::EncodePng(rgb);
    cut.resize(cut.size() / 3);
    EXPECT_FALSE(SaveAndLoad(dir / "cut.png", cut));
    EXPECT_FALSE(lx::LoadImageFile(dir / "missing.png"));
    EXPECT_FALSE(lx::LoadJpegFromMemory(std::vector<uint8_t>{0xff, 0xd8, 0xff, 0xd9}));
}

}  // namespace
