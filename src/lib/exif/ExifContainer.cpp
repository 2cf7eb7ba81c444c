#include "ExifContainer.h"

#include <cstring>

#include "CiffReader.h"
#include "JpegSegments.h"
#include "TiffExif.h"

namespace lx {

namespace {

constexpr int kMaxMrwBlocks = 32;

bool ReadTiffAt(ByteSource& source, uint64_t base, uint64_t limit, ExifRecord& record, bool withImages) {
    auto reader = TiffReader::Open(source, base, limit);
    if (!reader) return false;
    ReadTiffStructure(*reader, record, withImages);
    return true;
}

bool ReadJpeg(ByteSource& source, uint64_t start, uint64_t end, ExifRecord& record, bool withImages) {
    auto segment = FindExifSegment(source, start, end);
    return segment && ReadTiffAt(source, segment->tiffBase, segment->limit, record, withImages);
}

// Fuji RAF: a fixed header whose bytes 84-91 give the offset and length of a full JPEG,
// which carries the Exif data and is itself the largest preview.
bool ReadRaf(ByteSource& source, ExifRecord& record, bool withImages) {
    uint8_t h[8];
    if (!source.read(84, 8, h)) return false;
    const uint64_t offset = ReadBe32(h), length = ReadBe32(h + 4);
    if (!source.contains(offset, length)) return false;
    const bool found = ReadJpeg(source, offset, offset + length, record, withImages);
    if (withImages) {
        if (auto frame = ProbeJpegFrame(source, offset, offset + length)) {
            EmbeddedImageRef image;
            image.where = "RAF preview";
            image.offset = offset;
            image.length = length;
            image.width = frame->width;
            image.height = frame->height;
            record.images.push_back(std::move(image));
        }
    }
    return found || !record.images.empty();
}

// Minolta MRW: "\0MRM" and the length of a sequence of blocks (4-byte name, 4-byte
// big-endian length); the "\0TTW" block is a TIFF structure.
bool ReadMrw(ByteSource& source, ExifRecord& record, bool withImages) {
    uint8_t h[8];
    if (!source.read(0, 8, h)) return false;
    const uint64_t end = std::min<uint64_t>(8ull + ReadBe32(h + 4), source.size());
    uint64_t at = 8;
    for (int n = 0; n < kMaxMrwBlocks && at + 8 <= end; ++n) {
        if (!source.read(at, 8, h)) return false;
        const uint64_t length = ReadBe32(h + 4);
        if (length > end - at - 8) return false;
        if (std::memcmp(h, "\0TTW", 4) == 0) return ReadTiffAt(source, at + 8, at + 8 + length, record, withImages);
        at += 8 + length;
    }
    return false;
}

}  // namespace

std::optional<ExifRecord> ReadExifRecord(ByteSource& source, bool withImages) {
    uint8_t head[16] = {};
    if (!source.read(0, std::min<uint64_t>(16, source.size()), head)) return std::nullopt;
    ExifRecord record;
    bool found = false;
    if (head[0] == 0xFF && head[1] == 0xD8) found = ReadJpeg(source, 0, source.size(), record, withImages);
    else if (std::memcmp(head, "FUJIFILMCCD-RAW ", 16) == 0) found = ReadRaf(source, record, withImages);
    else if (std::memcmp(head, "\0MRM", 4) == 0) found = ReadMrw(source, record, withImages);
    else if (IsCiff(source)) {
        ReadCiff(source, record, withImages);
        found = !record.empty();
    } else found = ReadTiffAt(source, 0, source.size(), record, withImages);
    if (!found) return std::nullopt;
    return record;
}

}  // namespace lx
