// Malformed and hostile files: loops, truncations, offsets and counts that point outside
// the data. Each must give a plain "nothing" result, read only inside the file, and end;
// beneath them the byte sources, which refuse any read past the end.
#include <gtest/gtest.h>

#include <random>

#include "ByteSource.h"
#include "ExifContainer.h"
#include "ExifReader.h"
#include "ExifTestSupport.h"

using namespace lxtest;

namespace {

constexpr uint16_t kExifIfd = 0x8769, kSubIfds = 0x14A, kDateTimeOriginal = 0x9003;
const std::string kDate = "2012:12:12 12:12:12";

// Counts what is read, to show that a large file is not read whole.
class CountingSource : public lx::MemorySource {
public:
    using MemorySource::MemorySource;
    bool read(uint64_t offset, size_t count, uint8_t* out) override {
        bytesRead += count;
        return MemorySource::read(offset, count, out);
    }
    uint64_t bytesRead = 0;
};

// Runs every operation; all must return without touching memory outside `file`.
void RunAll(const Bytes& file) {
    lx::MemorySource source(file);
    lx::ReadShootingTime(source);
    lx::HasShootingInfo(source);
    lx::ReadEmbeddedImage(source, lx::EmbeddedChoice::Smallest);
    lx::ReadEmbeddedImage(source, lx::EmbeddedChoice::Largest);
    lx::EnumerateExifInfo(source, [](int, std::string_view, std::string_view) { return true; });
    lx::ReadDescription(source);
    lx::RenderPreview(source);
    lx::ReadOrientation(source);
}

std::vector<uint8_t> Pattern(size_t size) {
    std::vector<uint8_t> bytes(size);
    std::mt19937 rng(7);
    for (auto& b : bytes) b = static_cast<uint8_t>(rng());
    return bytes;
}

// Reads `count` bytes at `offset` from both sources and checks each against the bytes.
void ExpectRange(lx::ByteSource& file, lx::ByteSource& memory, const std::vector<uint8_t>& bytes, uint64_t offset,
                 size_t count) {
    const bool inside = offset <= bytes.size() && count <= bytes.size() - offset;
    for (lx::ByteSource* source : {&file, &memory}) {
        std::vector<uint8_t> out(count, 0xAA);
        EXPECT_EQ(source->read(offset, count, out.data()), inside) << offset << "+" << count;
        if (inside) {
            EXPECT_TRUE(std::equal(out.begin(), out.end(), bytes.begin() + static_cast<long>(offset)))
                << offset << "+" << count;
        } else {
            EXPECT_EQ(out, std::vector<uint8_t>(count, 0xAA)) << "a failed read leaves the buffer alone";
        }
    }
}

}  // namespace

TEST(HostileInput, IfdLoopsEndAndStillYieldWhatWasRead) {
    {  // IFD0 -> IFD1 -> IFD0
        TiffBuilder t;
        const int ifd0 = t.addIfd(), ifd1 = t.addIfd(), exif = t.addIfd();
        t.chain(ifd0, ifd1);
        t.chain(ifd1, ifd0);
        t.addIfdPointer(ifd0, kExifIfd, exif);
        t.addAscii(exif, kDateTimeOriginal, kDate);
        EXPECT_EQ(TimeOf(t.build())->year, 2012);
    }
    {  // an IFD that is its own successor, its own SubIFD and its own Exif IFD
        TiffBuilder t(true);
        const int ifd0 = t.addIfd();
        t.chain(ifd0, ifd0);
        t.addIfdPointers(ifd0, kSubIfds, {ifd0, ifd0, ifd0});
        t.addIfdPointer(ifd0, kExifIfd, ifd0);
        t.addAscii(ifd0, kDateTimeOriginal, kDate);
        const Bytes file = t.build();
        EXPECT_FALSE(TimeOf(file));  // the Exif IFD was already visited as IFD0
        RunAll(file);
    }
    {  // SubIFDs that point at each other
        TiffBuilder t;
        const int ifd0 = t.addIfd(), a = t.addIfd(), b = t.addIfd();
        t.addIfdPointer(ifd0, kSubIfds, a);
        t.addIfdPointer(a, kSubIfds, b);
        t.addIfdPointer(b, kSubIfds, a);
        RunAll(t.build());
    }
}

TEST(HostileInput, TruncatedApp1GivesNoExif) {
    const Bytes full = JpegWithExif(TiffWithDate(kDate), FrameJpeg(32, 32));
    ASSERT_TRUE(TimeOf(full));
    // Every prefix either still holds the whole date or gives nothing; none reads past its end.
    for (size_t size = 0; size < full.size(); ++size) {
        const Bytes prefix(full.begin(), full.begin() + size);
        auto time = TimeOf(prefix);
        if (time) {
            EXPECT_EQ(time, TimeOf(full)) << size;
        }
        RunAll(prefix);
    }
    // An APP1 segment that claims more bytes than the file holds.
    EXPECT_FALSE(TimeOf(Bytes(full.begin(), full.begin() + 60)));
}

TEST(HostileInput, ValuesOutsideTheExifSegmentAreNotRead) {
    Bytes tiff = TiffWithDate(kDate);
    ASSERT_EQ(std::string(tiff.end() - 20, tiff.end() - 1), kDate);
    // Cut the date off the segment and put it right after it, where an offset that
    // ignored the segment's end would find it.
    const Bytes date(tiff.end() - 20, tiff.end());
    tiff.resize(tiff.size() - 20);
    Bytes file = JpegWithExif(tiff, {0xFF, 0xD8, 0xFF, 0xD9});
    file.insert(file.begin() + 4 + 2 + 6 + static_cast<long>(tiff.size()), date.begin(), date.end());
    EXPECT_FALSE(TimeOf(file));
}

TEST(HostileInput, ImpossibleCountsAndSizesAreRefused) {
    TiffBuilder t;
    const int ifd0 = t.addIfd();
    t.add(ifd0, 0x111, 4, 0x40000000, {});      // strip offsets far beyond the file
    t.add(ifd0, 0x117, 4, 0x40000000, {});
    t.add(ifd0, kDateTimeOriginal, 2, 0xFFFFFFFF, {});
    t.addShort(ifd0, 0x100, 65535);
    t.addShort(ifd0, 0x101, 65535);
    RunAll(t.build());
    // An IFD that claims 65535 entries in a few bytes.
    Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0, 0xFF, 0xFF, 1, 2, 3};
    RunAll(file);
    EXPECT_FALSE(TimeOf(file));
}

TEST(HostileInput, CiffHeapThatContainsItselfEnds) {
    // A heap whose one entry is a sub-heap spanning the heap itself.
    Bytes file = {'I', 'I', 14, 0, 0, 0, 'H', 'E', 'A', 'P', 'C', 'C', 'D', 'R'};
    const Bytes heap = {1, 0, 0x0A, 0x30, 16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    file.insert(file.end(), heap.begin(), heap.end());
    RunAll(file);
}

TEST(HostileInput, LargeRawFilesAreNotReadWhole) {
    // 50 MB of "sensor data" after the IFDs.
    TiffBuilder t;
    const int ifd0 = t.addIfd(), exif = t.addIfd();
    t.addIfdPointer(ifd0, kExifIfd, exif);
    t.addAscii(exif, kDateTimeOriginal, kDate);
    const Bytes preview = FrameJpeg(64, 64);
    const int blob = t.addBlob(preview);
    t.addBlobOffset(ifd0, 0x201, blob);
    t.addBlobLength(ifd0, 0x202, blob);
    t.addBlob(Bytes(50u << 20, 0x55));
    const Bytes file = t.build();

    CountingSource source(file);
    EXPECT_TRUE(lx::ReadShootingTime(source));
    EXPECT_LT(source.bytesRead, 4096u);
    source.bytesRead = 0;
    auto image = lx::ReadEmbeddedImage(source, lx::EmbeddedChoice::Largest);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->bytes, preview);
    EXPECT_LT(source.bytesRead, 8192u + 2 * preview.size());
}

TEST(ByteSource, FileReadsAgreeWithTheBytesAcrossWindowsAndAtTheEnd) {
    ScratchDir dir("source");
    const std::vector<uint8_t> bytes = Pattern(300 * 1024 + 17);
    lxtest::WriteFile(dir / "data.bin", bytes);
    lx::FileSource file(dir / "data.bin");
    lx::MemorySource memory(bytes);
    ASSERT_TRUE(file.isOpen());
    ASSERT_EQ(file.size(), bytes.size());

    const uint64_t size = bytes.size();
    const uint64_t window = 64 * 1024;
    // Within the first window, across its end, far away and back, a large block, the tail.
    for (auto [offset, count] : std::vector<std::pair<uint64_t, size_t>>{
             {0, 16}, {100, 4}, {window - 3, 8}, {window + 5, 2}, {250000, 100}, {10, 10}, {1000, 200000},
             {size - 4, 4}, {size, 0}, {size - 4, 5}, {size, 1}, {size + 10, 0}, {UINT64_MAX - 1, 4}})
        ExpectRange(file, memory, bytes, offset, count);
    // Random ranges, in and out of the file.
    std::mt19937 rng(3);
    for (int i = 0; i < 500; ++i) {
        const uint64_t offset = rng() % (size + 100);
        const size_t count = rng() % (i % 10 == 0 ? 2 * window : 64);
        ExpectRange(file, memory, bytes, offset, count);
    }
}

TEST(ByteSource, MissingFilesAndFoldersDoNotOpen) {
    ScratchDir dir("missing");
    lx::FileSource missing(dir / "nothing.bin");
    EXPECT_FALSE(missing.isOpen());
    EXPECT_EQ(missing.size(), 0u);
    uint8_t b;
    EXPECT_FALSE(missing.read(0, 1, &b));
    EXPECT_FALSE(lx::FileSource(dir.path()).isOpen());
    EXPECT_TRUE(missing.readVector(0, 0).empty());
}
