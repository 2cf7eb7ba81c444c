// Embedded previews and thumbnails, and the containers that hold Exif data besides JPEG and
// plain TIFF: raw files with their own magic numbers or wrappers, crafted here byte for byte.
#include "EmbeddedImage.h"
#include "ExifContainer.h"

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

void PutBe32(Bytes& b, size_t at, uint32_t v) {
    b[at] = uint8_t(v >> 24), b[at + 1] = uint8_t(v >> 16), b[at + 2] = uint8_t(v >> 8), b[at + 3] = uint8_t(v);
}

// A JPEG carrying Exif with a shooting time, as a camera writes one into its raw files.
Bytes ExifJpeg(uint16_t width, uint16_t height, const std::string& date) {
    return JpegWithExif(TiffWithDate(date), FrameJpeg(width, height));
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

// ORF's own magic numbers in either byte order, and MRW's TTW block holding the structure.
TEST(Containers, TiffStructuresUnderOtherMagicNumbersOrInABlock) {
    Bytes mrw = {0, 'M', 'R', 'M', 0, 0, 0, 0, 0, 'P', 'R', 'D', 0, 0, 0, 4, 1, 2, 3, 4, 0, 'T', 'T', 'W', 0, 0, 0, 0};
    const Bytes ttw = TiffWithDate("2018:06:07 08:09:10", true);
    PutBe32(mrw, 24, static_cast<uint32_t>(ttw.size()));
    mrw.insert(mrw.end(), ttw.begin(), ttw.end());
    PutBe32(mrw, 4, static_cast<uint32_t>(mrw.size() - 8));
    mrw.resize(mrw.size() + 100, 0xEE);  // image data follows the blocks
    std::vector<Bytes> files = {mrw};
    for (uint16_t magic : {lx::kOrfMagic, lx::kOrfMagicS})
        for (bool big : {false, true}) files.push_back(TiffWithDate("2018:06:07 08:09:10", big, magic));
    for (const Bytes& file : files) {
        auto t = TimeOf(file);
        ASSERT_TRUE(t) << files.size();
        EXPECT_EQ(t->year, 2018);
        EXPECT_EQ(t->second, 10);
    }
    // Any other magic number is not a TIFF structure.
    EXPECT_FALSE(TimeOf(TiffWithDate("2018:06:07 08:09:10", false, 43)));
}

TEST(Containers, Rw2KeepsItsShootingDataInTheEmbeddedPreview) {
    const Bytes inner = ExifJpeg(120, 80, "2017:05:06 07:08:09");
    TiffBuilder t(false, lx::kRw2Magic);
    const int ifd0 = t.addIfd();
    t.addAscii(ifd0, 0x10F, "Outer");
    t.add(ifd0, 0x002E, 7, static_cast<uint32_t>(inner.size()), inner);
    const Bytes file = t.build();
    lx::MemorySource source(file);
    auto record = lx::ReadExifRecord(source, true);
    ASSERT_TRUE(record);
    // The outer IFD0 wins where both have a value.
    EXPECT_EQ(record->text(lx::TagGroup::Image, 0x10F), "Outer");
    ASSERT_EQ(record->images.size(), 1u);
    EXPECT_EQ(record->images[0].width, 120);
    auto time = lx::ShootingTimeOf(*record);
    ASSERT_TRUE(time);
    EXPECT_EQ(time->year, 2017);
    EXPECT_EQ(time->second, 9);
}

TEST(Containers, RafWrapsAJpegThatIsAlsoThePreview) {
    const Bytes inner = ExifJpeg(96, 64, "2016:04:05 06:07:08");
    Bytes file(160, 0);
    const std::string magic = "FUJIFILMCCD-RAW 0201FF383501";
    std::copy(magic.begin(), magic.end(), file.begin());
    PutBe32(file, 84, static_cast<uint32_t>(file.size()));
    PutBe32(file, 88, static_cast<uint32_t>(inner.size()));
    file.insert(file.end(), inner.begin(), inner.end());
    ScratchDir dir("raf");
    const auto path = dir / "a.raf";
    WriteFile(path, file);
    auto t = lx::ReadShootingTime(path);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->day, 5);
    auto preview = lx::ReadEmbeddedImage(path, lx::EmbeddedChoice::Largest);
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->bytes, inner);
    EXPECT_EQ(preview->width, 96);

    // A JPEG offset past the end is refused.
    PutBe32(file, 84, static_cast<uint32_t>(file.size()));
    lx::MemorySource source(file);
    EXPECT_FALSE(lx::ReadExifRecord(source, true));
}

TEST(Containers, CrwCiffHeapAsExiftoolReadsIt) {
    // CIFF: header, then a heap of [data..., entry table, table offset]; one sub-heap.
    const Bytes preview = FrameJpeg(48, 32);
    const std::string makeModel = std::string("Canon") + '\0' + "Canon PowerShot Test" + '\0';
    Bytes sub;  // a sub-heap with the make and model and the capture time
    sub.insert(sub.end(), makeModel.begin(), makeModel.end());
    const uint32_t subTable = static_cast<uint32_t>(sub.size());
    auto le16 = [](Bytes& b, uint16_t v) { b.push_back(uint8_t(v)), b.push_back(uint8_t(v >> 8)); };
    auto le32 = [](Bytes& b, uint32_t v) {
        for (int i = 0; i < 4; ++i) b.push_back(uint8_t(v >> (8 * i)));
    };
    le16(sub, 2);
    le16(sub, 0x080A), le32(sub, static_cast<uint32_t>(makeModel.size())), le32(sub, 0);
    le16(sub, 0x580E), le32(sub, 1500000000u), le32(sub, 0);  // time held in the entry
    le32(sub, subTable);

    Bytes heap;
    heap.insert(heap.end(), preview.begin(), preview.end());
    const uint32_t subAt = static_cast<uint32_t>(heap.size());
    heap.insert(heap.end(), sub.begin(), sub.end());
    const uint32_t table = static_cast<uint32_t>(heap.size());
    le16(heap, 2);
    le16(heap, 0x2007), le32(heap, static_cast<uint32_t>(preview.size())), le32(heap, 0);
    le16(heap, 0x300A), le32(heap, static_cast<uint32_t>(sub.size())), le32(heap, subAt);
    le32(heap, table);

    Bytes file = {'I', 'I', 26, 0, 0, 0, 'H', 'E', 'A', 'P', 'C', 'C', 'D', 'R', 1, 0, 1, 0};
    file.resize(26, 0);
    file.insert(file.end(), heap.begin(), heap.end());
    lx::MemorySource source(file);
    auto record = lx::ReadExifRecord(source, true);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->text(lx::TagGroup::Image, 0x110), "Canon PowerShot Test");
    // exiftool reads this heap's time as 2017:07:14 02:40:00.
    auto t = TimeOf(file);
    ASSERT_TRUE(t);
    EXPECT_EQ((std::vector<int>{t->year, t->month, t->day, t->hour, t->minute, t->second}),
              (std::vector<int>{2017, 7, 14, 2, 40, 0}));
    auto image = lx::ReadEmbeddedImage(source, lx::EmbeddedChoice::Largest);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->bytes, preview);
}
