#include "EmbeddedImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExifReader.h"
#include "ExifTestSupport.h"

using namespace lxtest;
using lx::EmbeddedChoice;
using lx::EmbeddedFormat;

namespace {

constexpr uint16_t kNewSubfileType = 0xFE, kWidth = 0x100, kHeight = 0x101, kBits = 0x102, kCompression = 0x103,
                   kPhotometric = 0x106, kStripOffsets = 0x111, kSamples = 0x115, kStripCounts = 0x117,
                   kSubIfds = 0x14A, kJpegOffset = 0x201, kJpegLength = 0x202, kExifIfd = 0x8769;

// A raw-like TIFF: IFD0 a reduced-resolution RGB thumbnail (as NEF has), three SubIFDs (a
// JPEG strip preview, lossless raw data as CR2 and DNG hold it, a JPEG by interchange-format offset), then IFD1
// with a small JPEG thumbnail, and an Exif IFD.
struct RawLike {
    Bytes file, rgb, stripJpeg, interchangeJpeg, thumbJpeg;
};

RawLike MakeRawLike(bool bigEndian) {
    RawLike raw;
    for (int i = 0; i < 4 * 3 * 3; ++i) raw.rgb.push_back(static_cast<uint8_t>(i * 7));
    raw.stripJpeg = FrameJpeg(160, 120);
    raw.interchangeJpeg = FrameJpeg(320, 240);
    raw.thumbJpeg = FrameJpeg(64, 48);

    TiffBuilder t(bigEndian);
    const int ifd0 = t.addIfd(), ifd1 = t.addIfd(), sub0 = t.addIfd(), sub1 = t.addIfd(), sub2 = t.addIfd(),
              exif = t.addIfd();
    t.chain(ifd0, ifd1);
    const int rgb = t.addBlob(raw.rgb), strip = t.addBlob(raw.stripJpeg), lossless = t.addBlob(FrameJpeg(32, 16, 0, 0xC3)),
              interchange = t.addBlob(raw.interchangeJpeg), thumb = t.addBlob(raw.thumbJpeg);
    t.addLong(ifd0, kNewSubfileType, 1);
    t.addShort(ifd0, kWidth, 4);
    t.addShort(ifd0, kHeight, 3);
    t.addShorts(ifd0, kBits, {8, 8, 8});
    t.addShort(ifd0, kCompression, 1);
    t.addShort(ifd0, kPhotometric, 2);
    t.addAscii(ifd0, 0x10F, "Maker");
    t.addBlobOffset(ifd0, kStripOffsets, rgb);
    t.addShort(ifd0, kSamples, 3);
    t.addBlobLength(ifd0, kStripCounts, rgb);
    t.addIfdPointers(ifd0, kSubIfds, {sub0, sub1, sub2});
    t.addIfdPointer(ifd0, kExifIfd, exif);

    t.addShort(sub0, kCompression, 6);
    t.addBlobOffset(sub0, kStripOffsets, strip);
    t.addBlobLength(sub0, kStripCounts, strip);
    t.addShort(sub1, kCompression, 7);
    t.addBlobOffset(sub1, kStripOffsets, lossless);
    t.addBlobLength(sub1, kStripCounts, lossless);
    t.addBlobOffset(sub2, kJpegOffset, interchange);
    t.addBlobLength(sub2, kJpegLength, interchange);
    t.addShort(ifd1, kCompression, 6);
    t.addBlobOffset(ifd1, kJpegOffset, thumb);
    t.addBlobLength(ifd1, kJpegLength, thumb);
    t.addAscii(exif, 0x9003, "2021:03:04 05:06:07");
    raw.file = t.build();
    return raw;
}

}  // namespace

class EmbeddedImages : public ::testing::Test {
protected:
    ScratchDir dir{"embedded"};
};

TEST_F(EmbeddedImages, RawLikeFileOffersItsPreviewsAndSkipsLosslessData) {
    for (bool bigEndian : {false, true}) {
        RawLike raw = MakeRawLike(bigEndian);
        const auto path = dir / (bigEndian ? "raw-mm.tif" : "raw-ii.tif");
        WriteFile(path, raw.file);
        EXPECT_EQ(lx::ReadShootingTime(path)->second, 7);

        const auto list = lx::ListEmbeddedImages(path);
        std::vector<std::string> seen;
        for (const auto& image : list)
            seen.push_back(image.where + " " + std::to_string(image.width) + "x" + std::to_string(image.height));
        EXPECT_THAT(seen, ::testing::UnorderedElementsAre("IFD0 4x3", "SubIFD0 160x120", "SubIFD2 320x240",
                                                          "IFD1 64x48"));

        auto smallest = lx::ReadEmbeddedImage(path, EmbeddedChoice::Smallest);
        ASSERT_TRUE(smallest);
        EXPECT_EQ(smallest->format, EmbeddedFormat::Bmp);
        EXPECT_EQ(smallest->bytes, lx::RgbToBmpFile(raw.rgb.data(), 4, 3));

        auto largest = lx::ReadEmbeddedImage(path, EmbeddedChoice::Largest);
        ASSERT_TRUE(largest);
        EXPECT_EQ(largest->format, EmbeddedFormat::Jpeg);
        EXPECT_EQ(largest->bytes, raw.interchangeJpeg);
        EXPECT_EQ(lx::RenderPreview(path)->jpeg, raw.interchangeJpeg);
    }
}

TEST_F(EmbeddedImages, PreviewRenderTakesTheLargestJpegEvenWhenABitmapIsBigger) {
    TiffBuilder t;
    const int ifd0 = t.addIfd(), ifd1 = t.addIfd();
    t.chain(ifd0, ifd1);
    const Bytes jpeg = FrameJpeg(16, 16);
    const int rgb = t.addBlob(Bytes(64 * 64 * 3, 0x80)), small = t.addBlob(jpeg);
    t.addBlobOffset(ifd0, kJpegOffset, small);
    t.addBlobLength(ifd0, kJpegLength, small);
    t.addShort(ifd1, kWidth, 64);
    t.addShort(ifd1, kHeight, 64);
    t.addShorts(ifd1, kBits, {8, 8, 8});
    t.addShort(ifd1, kPhotometric, 2);
    t.addBlobOffset(ifd1, kStripOffsets, rgb);
    t.addShort(ifd1, kSamples, 3);
    t.addBlobLength(ifd1, kStripCounts, rgb);
    t.addAscii(ifd1, 0x10E, "ignored: only IFD0 describes the picture");
    const auto path = dir / "both.tif";
    WriteFile(path, t.build());
    EXPECT_EQ(lx::ReadEmbeddedImage(path, EmbeddedChoice::Largest)->format, EmbeddedFormat::Bmp);
    EXPECT_EQ(lx::RenderPreview(path)->jpeg, jpeg);
    EXPECT_EQ(lx::ReadDescription(path), "");
}

TEST(EmbeddedImageChoice, PixelCountDecidesAndByteSizeBreaksTiesOrStandsIn) {
    auto ref = [](int w, int h, uint64_t length) {
        lx::EmbeddedImageRef r;
        r.width = w;
        r.height = h;
        r.length = length;
        return r;
    };
    const std::vector<lx::EmbeddedImageRef> images = {ref(160, 120, 9000), ref(640, 480, 5000), ref(160, 120, 7000)};
    EXPECT_EQ(lx::ChooseEmbeddedImage(images, EmbeddedChoice::Largest), 1);
    EXPECT_EQ(lx::ChooseEmbeddedImage(images, EmbeddedChoice::Smallest), 2);
    // Without a pixel size the byte size decides.
    const std::vector<lx::EmbeddedImageRef> unsized = {ref(0, 0, 300), ref(100, 100, 200), ref(0, 0, 900)};
    EXPECT_EQ(lx::ChooseEmbeddedImage(unsized, EmbeddedChoice::Largest), 2);
    EXPECT_EQ(lx::ChooseEmbeddedImage(unsized, EmbeddedChoice::Smallest), 1);
    EXPECT_EQ(lx::ChooseEmbeddedImage({}, EmbeddedChoice::Largest), -1);
}

TEST(EmbeddedImageBmp, RgbRowsBecomeABottomUpBgrFileImage) {
    const Bytes rgb = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};  // 3 x 2
    const Bytes bmp = lx::RgbToBmpFile(rgb.data(), 3, 2);
    ASSERT_EQ(bmp.size(), 14u + 40u + 2 * 12u);
    EXPECT_EQ(std::string(bmp.begin(), bmp.begin() + 2), "BM");
    // File size, pixel offset, header size, width, height (positive: bottom-up), planes and 24 bits.
    for (auto [at, value] : std::vector<std::pair<int, uint32_t>>{
             {2, uint32_t(bmp.size())}, {10, 54}, {14, 40}, {18, 3}, {22, 2}, {26, 1 | 24 << 16}})
        EXPECT_EQ(lx::ReadLe32(bmp.data() + at), value) << at;
    // The last stored row is the top one; pixels are blue, green, red; rows padded to 4 bytes.
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()),
              (Bytes{12, 11, 10, 15, 14, 13, 18, 17, 16, 0, 0, 0, 3, 2, 1, 6, 5, 4, 9, 8, 7, 0, 0, 0}));
}
