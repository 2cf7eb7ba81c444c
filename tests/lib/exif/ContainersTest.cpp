// The containers that hold Exif data besides JPEG and plain TIFF: raw files with their
// own magic numbers or wrappers, crafted here byte for byte.
#include "ExifContainer.h"

#include <gtest/gtest.h>

#include "ExifReader.h"
#include "ExifTestSupport.h"

using namespace lxtest;

namespace {

void PutBe32(Bytes& b, size_t at, uint32_t v) {
    b[at] = uint8_t(v >> 24), b[at + 1] = uint8_t(v >> 16), b[at + 2] = uint8_t(v >> 8), b[at + 3] = uint8_t(v);
}

// A JPEG carrying Exif with a shooting time, as a camera writes one into its raw files.
Bytes ExifJpeg(uint16_t width, uint16_t height, const std::string& date) {
    return JpegWithExif(TiffWithDate(date), FrameJpeg(width, height));
}

}  // namespace

TEST(Containers, OrfMagicNumbersInBothByteOrders) {
    for (uint16_t magic : {lx::kOrfMagic, lx::kOrfMagicS})
        for (bool big : {false, true}) {
            auto t = TimeOf(TiffWithDate("2018:06:07 08:09:10", big, magic));
            ASSERT_TRUE(t) << magic << big;
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

TEST(Containers, MrwHoldsATiffStructureInItsTtwBlock) {
    const Bytes tiff = TiffWithDate("2005:01:02 03:04:05", true);
    Bytes file = {0, 'M', 'R', 'M', 0, 0, 0, 0, 0, 'P', 'R', 'D', 0, 0, 0, 4, 1, 2, 3, 4, 0, 'T', 'T', 'W', 0, 0, 0, 0};
    PutBe32(file, 24, static_cast<uint32_t>(tiff.size()));
    file.insert(file.end(), tiff.begin(), tiff.end());
    PutBe32(file, 4, static_cast<uint32_t>(file.size() - 8));
    file.resize(file.size() + 100, 0xEE);  // image data follows the blocks
    auto t = TimeOf(file);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->year, 2005);
    EXPECT_EQ(t->second, 5);
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
