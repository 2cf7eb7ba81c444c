// The portable thumbnail maker: sizes, depth and pixels of the reduced picture (natively
// with Pillow's box reduction as the oracle), the embedded-picture fast path with orientation
// (a TIFF written here whose second page is an RGB thumbnail; under Windows also a JPEG whose
// Exif data embeds one, through the system codec), and damaged files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "../exif/ExifTestSupport.h"
#include "ByteSource.h"
#include "ImageCodecs.h"
#include "Painted.h"
#include "ThumbnailMaker.h"

#ifdef _WIN32
#include <utility>

#include "JpegWriter.h"
#include "Thumbnail.h"
#endif

using namespace lx;

using lxtest::ScratchDir;

namespace {

// A picture whose left half is red and right half blue, as 24-bit.
PackedDib Halves(int width, int height) {
    return lxtest::Painted(width, height, [&](int x, int) { return x < width / 2 ? 0xff0000u : 0x0000ffu; });
}

void SaveBmp(const PackedDib& dib, const std::filesystem::path& path) { ASSERT_NE(SaveBmpFile(path, dib), 0); }

uint32_t Rgb(const PackedDib& dib, int x, int y) { return dib.pixel(x, y) & 0xffffff; }

struct At {
    int x, y;
};

}  // namespace

TEST(FitInBox, KeepsTheAspectNeverZeroNeverEnlarged) {
    struct Case {
        int width, height, box;
        ThumbSize want;
    };
    const Case cases[] = {
        {4000, 3000, 72, {72, 54}}, {3000, 4000, 72, {54, 72}}, {300, 200, 72, {72, 48}}, {1000, 1000, 96, {96, 96}},
        // Rounded to the nearest pixel: 72 * 101 / 150 = 48.48, 72 * 103 / 150 = 49.44.
        {150, 101, 72, {72, 48}}, {150, 103, 72, {72, 49}},
        {10000, 1, 72, {72, 1}}, {1, 10000, 72, {1, 72}}, {2147483647, 2147483647, 72, {72, 72}},
        {20, 10, 72, {20, 10}}, {72, 5, 72, {72, 5}},  // already small enough
        {0, 10, 72, {}}, {10, -1, 72, {}}, {10, 10, 0, {}},
    };
    for (const Case& c : cases) EXPECT_EQ(FitInBox(c.width, c.height, c.box), c.want) << c.width << "x" << c.height;
}

TEST(ThumbnailMaker, LandscapeAndTinyPicturesFromBmpFiles) {
    ScratchDir dir("thumbmaker-sizes");
    SaveBmp(Halves(300, 200), dir / "wide.bmp");
    SaveBmp(Halves(20, 10), dir / "tiny.bmp");

    const auto wide = MakeThumbnailDib(dir / "wide.bmp");
    ASSERT_TRUE(wide);
    EXPECT_EQ(wide->width(), 72);
    EXPECT_EQ(wide->height(), 48);
    EXPECT_EQ(wide->bitCount(), 24);
    EXPECT_EQ(Rgb(*wide, 5, 24), 0xff0000u);
    EXPECT_EQ(Rgb(*wide, 66, 24), 0x0000ffu);

    // Smaller than the box: kept at its own size, pixel for pixel.
    const auto tiny = MakeThumbnailDib(dir / "tiny.bmp");
    ASSERT_TRUE(tiny);
    EXPECT_EQ(tiny->width(), 20);
    EXPECT_EQ(tiny->height(), 10);
    EXPECT_EQ(Rgb(*tiny, 9, 3), 0xff0000u);
    EXPECT_EQ(Rgb(*tiny, 10, 3), 0x0000ffu);
}

TEST(ThumbnailMaker, PalettePicturesBecome24BitAndAlphaLiesOverWhite) {
    PackedDib grey = PackedDib::Create(144, 144, 8);
    for (int y = 0; y < 144; ++y)
        for (int x = 0; x < 144; ++x) grey.row(y)[x] = 200;
    const auto fromGrey = FitThumbnail(grey);
    ASSERT_TRUE(fromGrey);
    EXPECT_EQ(fromGrey->bitCount(), 24);
    EXPECT_EQ(Rgb(*fromGrey, 30, 30), 0xc8c8c8u);

    PackedDib clear = PackedDib::Create(10, 10, 32);  // all zero: transparent black
    for (int x = 0; x < 10; ++x) {
        uint8_t* p = clear.row(0) + x * 4;
        p[2] = 255, p[3] = 255;  // one opaque red row
    }
    const auto fromClear = FitThumbnail(clear);
    ASSERT_TRUE(fromClear);
    EXPECT_EQ(fromClear->bitCount(), 24);
    EXPECT_EQ(Rgb(*fromClear, 4, 0), 0xff0000u);
    EXPECT_EQ(Rgb(*fromClear, 4, 5), 0xffffffu);

    EXPECT_FALSE(FitThumbnail(PackedDib()));
}

#ifndef _WIN32
TEST(ThumbnailMaker, ReductionFiltersLikePillowsLanczos) {
    // Debian's Python, where scripts/setup.sh installs Pillow (a python3 earlier on the PATH may lack it).
    LX_REQUIRE_TOOLS("/usr/bin/python3");
    ASSERT_EQ(lxtest::Run("/usr/bin/python3 -c 'import PIL' >/dev/null 2>&1"), 0) << "Pillow is missing";
    ScratchDir dir("thumbmaker-pillow");
    // Detail finer than the reduction factor of 4, so a point sample would differ.
    const PackedDib dib = lxtest::Painted(288, 144, [](int x, int y) {
        return static_cast<uint32_t>((y * 17) % 256 << 16 | (((x ^ y) & 1) ? 250 : 10) << 8 | (x * 29 + y * 3) % 256);
    });
    SaveBmp(dib, dir / "detail.bmp");
    const auto ours = MakeThumbnailDib(dir / "detail.bmp");
    ASSERT_TRUE(ours);
    ASSERT_EQ(ours->width(), 72);
    ASSERT_EQ(ours->height(), 36);
    const std::string script = "from PIL import Image; Image.open('" + (dir / "detail.bmp").string() +
                               "').convert('RGB').resize((72, 36), Image.LANCZOS).save('" + (dir / "pillow.bmp").string() + "')";
    ASSERT_EQ(lxtest::Run("/usr/bin/python3 -c \"" + script + "\""), 0);
    const auto pillow = LoadImageFile(dir / "pillow.bmp");
    ASSERT_TRUE(pillow);
    double sum = 0;
    for (int y = 0; y < 36; ++y)
        for (int x = 0; x < 72; ++x)
            for (int shift : {0, 8, 16}) {
                const int a = (ours->pixel(x, y) >> shift) & 0xff, b = (pillow->pixel(x, y) >> shift) & 0xff;
                sum += std::abs(a - b);
            }
    // Our kernel has a lobe more than Pillow's, which is 1.2 away; Pillow's own bicubic is 2.4,
    // area averaging 5.2 and a point sample 61 away.
    EXPECT_LE(sum / (72 * 36 * 3), 1.5);
}
#endif

namespace {

// A TIFF whose first page is a 4 x 4 grey picture carrying `orientation`, and whose second
// page is a `width` x `height` picture with a red left half and a blue right half.
std::vector<uint8_t> TiffWithThumbnail(int width, int height, uint16_t orientation) {
    lxtest::Bytes halves;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool red = x < width / 2;
            halves.insert(halves.end(), {static_cast<uint8_t>(red ? 255 : 0), 0, static_cast<uint8_t>(red ? 0 : 255)});
        }
    lxtest::TiffBuilder t;
    const int main = t.addIfd(), thumb = t.addIfd();
    t.chain(main, thumb);
    for (auto [ifd, w, h, turn, pixels] : {std::tuple{main, 4, 4, orientation, lxtest::Bytes(48, 0x80)},
                                           std::tuple{thumb, width, height, uint16_t{1}, halves}}) {
        const int blob = t.addBlob(pixels);  // uncompressed 8-bit RGB in one strip
        t.addShort(ifd, 0x100, static_cast<uint16_t>(w));
        t.addShort(ifd, 0x101, static_cast<uint16_t>(h));
        t.addShort(ifd, 0x102, 8);
        t.addShort(ifd, 0x103, 1);
        t.addShort(ifd, 0x106, 2);
        t.addBlobOffset(ifd, 0x111, blob);
        t.addShort(ifd, 0x112, turn);
        t.addShort(ifd, 0x115, 3);
        t.addBlobLength(ifd, 0x117, blob);
    }
    return t.build();
}

}  // namespace

TEST(EmbeddedThumbnail, ServesWhenLargeEnoughTurnedUprightByTheOrientation) {
    struct Case {
        const char* what;
        int width, height, orientation, box;
        int wantWidth, wantHeight;
        At red, blue;
    };
    const Case cases[] = {
        {"upright", 96, 64, 1, 72, 72, 48, {3, 20}, {68, 20}},
        {"a quarter turn clockwise: the red left half on top", 96, 64, 6, 72, 48, 72, {24, 3}, {24, 68}},
        {"a box small enough for a small picture", 60, 40, 1, 40, 40, 27, {3, 10}, {36, 10}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::vector<uint8_t> file = TiffWithThumbnail(c.width, c.height, static_cast<uint16_t>(c.orientation));
        MemorySource source(file);
        const auto thumb = EmbeddedThumbnail(source, c.box);
        ASSERT_TRUE(thumb);
        EXPECT_EQ(thumb->width(), c.wantWidth);
        EXPECT_EQ(thumb->height(), c.wantHeight);
        EXPECT_EQ(Rgb(*thumb, c.red.x, c.red.y), 0xff0000u);
        EXPECT_EQ(Rgb(*thumb, c.blue.x, c.blue.y), 0x0000ffu);
        // The file entry takes the fast path too.
        const auto viaFile = MakeThumbnailDibFromBytes(file, "photo.tif", c.box);
        ASSERT_TRUE(viaFile);
        EXPECT_EQ(viaFile->bytes(), thumb->bytes());
    }
    // An embedded picture smaller than the box is passed over.
    const std::vector<uint8_t> small = TiffWithThumbnail(60, 40, 1);
    MemorySource source(small);
    EXPECT_FALSE(EmbeddedThumbnail(source));
}

#ifdef _WIN32
namespace {

// `main` with an Exif segment after its start marker: IFD0 holding `orientation`, IFD1
// pointing at `thumbnail` (a whole JPEG).
std::vector<uint8_t> WithExifThumbnail(const std::vector<uint8_t>& main, const std::vector<uint8_t>& thumbnail,
                                       uint16_t orientation) {
    lxtest::TiffBuilder t;
    const int ifd0 = t.addIfd(), ifd1 = t.addIfd(), blob = t.addBlob(thumbnail);
    t.chain(ifd0, ifd1);
    t.addShort(ifd0, 0x0112, orientation);
    t.addBlobOffset(ifd1, 0x0201, blob);
    t.addBlobLength(ifd1, 0x0202, blob);
    return lxtest::JpegWithExif(t.build(), main);
}

std::vector<uint8_t> Jpeg(const PackedDib& dib) {
    JpegSaveRecord record;
    record.quality = 95;
    return EncodeJpeg(dib, record);
}

bool Near(uint32_t a, uint32_t b) {
    for (int shift : {0, 8, 16})
        if (std::abs(static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff)) > 40) return false;
    return true;
}

}  // namespace

// Through the system codec: a JPEG's embedded JPEG thumbnail serves when large enough.
TEST(ThumbnailMaker, AJpegsExifThumbnailServesTurnedUprightWhenLargeEnough) {
    const std::vector<uint8_t> main = Jpeg(Halves(400, 300));
    struct Case {
        const char* what;
        int thumbWidth, thumbHeight, orientation, width, height;
        At at;
        uint32_t colour;
    };
    // The main picture is red and blue, the embedded one blue and red: the colours tell
    // which served.
    const Case cases[] = {
        {"a quarter turn clockwise: the left half on top", 160, 120, 6, 54, 72, {27, 8}, 0x0000ff},
        {"smaller than the box: the whole picture instead", 64, 48, 1, 72, 54, {10, 27}, 0xff0000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PackedDib thumb = Halves(c.thumbWidth, c.thumbHeight);
        for (int y = 0; y < c.thumbHeight; ++y)
            for (int x = 0; x < c.thumbWidth; ++x) std::swap(thumb.row(y)[x * 3], thumb.row(y)[x * 3 + 2]);
        const auto made = MakeThumbnailDibFromBytes(WithExifThumbnail(main, Jpeg(thumb), c.orientation), "a.jpg");
        ASSERT_TRUE(made);
        EXPECT_EQ(made->width(), c.width);
        EXPECT_EQ(made->height(), c.height);
        EXPECT_TRUE(Near(Rgb(*made, c.at.x, c.at.y), c.colour)) << std::hex << Rgb(*made, c.at.x, c.at.y);
    }
}

// The list's bitmap: a 24-bit DIB section of the fitted size, or none.
TEST(ThumbnailMaker, TheListBitmapIsA24BitSectionOfTheFittedSize) {
    ScratchDir dir("thumbnail-win");
    lxtest::WriteFile(dir / "plain.jpg", Jpeg(Halves(400, 300)));
    HBITMAP bitmap = MakeThumbnail((dir / "plain.jpg").wstring());
    DIBSECTION section{};
    ASSERT_EQ(GetObjectW(bitmap, sizeof(section), &section), static_cast<int>(sizeof(section)));
    EXPECT_EQ(section.dsBm.bmWidth, 72);
    EXPECT_EQ(section.dsBm.bmHeight, 54);
    EXPECT_EQ(section.dsBm.bmBitsPixel, 24);
    DeleteObject(bitmap);
    EXPECT_EQ(MakeThumbnail((dir / "absent.jpg").wstring()), nullptr);
}
#endif

TEST(ThumbnailMaker, MissingTruncatedAndUnknownFilesFail) {
    ScratchDir dir("thumbmaker-bad");
    EXPECT_FALSE(MakeThumbnailDib(dir / "absent.bmp"));
    SaveBmp(Halves(300, 200), dir / "whole.bmp");
    std::vector<uint8_t> bytes = lxtest::ReadFile(dir / "whole.bmp");
    bytes.resize(bytes.size() / 2);
    lxtest::WriteFile(dir / "half.bmp", bytes);
    EXPECT_FALSE(MakeThumbnailDib(dir / "half.bmp"));
    EXPECT_FALSE(MakeThumbnailDibFromBytes(bytes, "half.bmp"));
    lxtest::WriteFile(dir / "text.jpg", std::string("not a picture at all"));
    EXPECT_FALSE(MakeThumbnailDib(dir / "text.jpg"));
    // A TIFF header pointing outside the file.
    const std::vector<uint8_t> hostile = {'I', 'I', 42, 0, 0xf0, 0xff, 0xff, 0x7f};
    EXPECT_FALSE(MakeThumbnailDibFromBytes(hostile, "x.tif"));
}
