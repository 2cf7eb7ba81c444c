// LoadImageFile and the memory loads through WIC, with files our own writers made: each
// format Windows decodes must come back as the picture that went in, at the right depth.
#include "GifWriter.h"
#include "ImageLoad.h"
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

// PNG variants made by ImageMagick (png/make.sh), each beside the pixels ImageMagick reads
// from it: every bit depth and colour type, transparency by tRNS, Adam7 interlace.
TEST(WicLoader, PngOfEveryDepthAndColourType) {
    struct Case {
        const char* stem;
        int bitCount;
        int tolerance;  // 16-bit samples: ImageMagick rounds to 8 bits, others may truncate
    };
    const Case cases[] = {
        {"rgb16", 24, 1},   {"rgba16", 32, 1},  {"grey16", 24, 1},  {"greya16", 32, 1}, {"greya8", 32, 0},
        {"grey4", 24, 0},   {"grey2", 24, 0},   {"pal1", 1, 0},     {"pal2", 4, 0},     {"pal4", 4, 0},
        {"pal8", 8, 0},     {"pal8trns", 32, 0}, {"pal4trns", 32, 0}, {"rgb8i", 24, 0},  {"rgba8i", 32, 0},
    };
    const std::filesystem::path folder = lxtest::SourceDir() / "tests/lib/ncimg/win32/png";
    for (const Case& c : cases) {
        const std::vector<uint8_t> raw = lxtest::ReadFile(folder / (std::string(c.stem) + ".rgba"));
        ASSERT_EQ(raw.size(), 13u * 7 * 4) << c.stem;
        lxtest::Rgba expected{13, 7, {}};
        for (size_t i = 0; i < raw.size(); i += 4)
            expected.pixels.push_back(static_cast<uint32_t>(raw[i + 3]) << 24 | raw[i] << 16 | raw[i + 1] << 8 | raw[i + 2]);
        const auto dib = lx::LoadImageFile(folder / (std::string(c.stem) + ".png"));
        if (!dib) {
            ADD_FAILURE() << c.stem << " did not load";
            continue;
        }
        EXPECT_EQ(dib->bitCount(), c.bitCount) << c.stem;
        EXPECT_TRUE(lxtest::SamePixels(*dib, expected, c.tolerance)) << c.stem;
    }
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

// An APP1 Exif segment whose IFD0 holds only the orientation, placed after SOI.
std::vector<uint8_t> WithOrientation(std::vector<uint8_t> jpeg, uint16_t orientation) {
    const std::vector<uint8_t> app1 = {0xff, 0xe1, 0, 34, 'E', 'x', 'i', 'f', 0, 0,  'I', 'I', 42, 0, 8, 0, 0, 0,
                                       1,    0,    0x12, 1, 3, 0, 1, 0, 0, 0, static_cast<uint8_t>(orientation), 0, 0, 0, 0, 0, 0, 0};
    jpeg.insert(jpeg.begin() + 2, app1.begin(), app1.end());
    return jpeg;
}

// Mean over all pixels of the largest channel difference: for lossy previews (about 8 for
// this picture at quality 95 with subsampled colour; a wrong turn of it gives several times that).
double MeanDistance(const PackedDib& a, const PackedDib& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) sum += lxtest::ChannelDistance(a.pixel(x, y), b.pixel(x, y), false);
    return sum / (a.width() * a.height());
}

// The 40 x 24 synthetic picture as a quality-95 JPEG.
std::vector<uint8_t> SyntheticJpeg(const PackedDib& picture) {
    lx::JpegSaveRecord record;
    record.quality = 95;
    return lx::EncodeJpeg(picture, record);
}

TEST(WicLoader, JpegIsTurnedUprightByItsOrientation) {
    lxtest::ScratchDir dir("wic-jpeg");
    const PackedDib rgb = lxtest::SyntheticRgb(40, 24);
    const std::vector<uint8_t> jpeg = SyntheticJpeg(rgb);
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
    const std::vector<uint8_t> jpeg = SyntheticJpeg(picture);
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
