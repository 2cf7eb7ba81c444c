#include "JpegSegments.h"

#include <cstring>

#include "TiffReader.h"

namespace lx {

namespace {

constexpr uint8_t kSoi = 0xD8, kEoi = 0xD9, kSos = 0xDA, kDqt = 0xDB, kApp1 = 0xE1;

// Calls `visit(marker, payloadOffset, payloadLength)` for each segment up to the start of
// scan; `visit` returns false to stop. Returns false when the stream is not a JPEG.
template <typename Visit>
bool WalkSegments(ByteSource& source, uint64_t start, uint64_t end, Visit visit) {
    if (end > source.size() || !StartsJpeg(source, start)) return false;
    uint64_t at = start + 2;
    for (int n = 0; n < kMaxSegments; ++n) {
        uint8_t head[4];
        if (at > end || end - at < 4 || !source.read(at, 4, head)) return true;
        if (head[0] != 0xFF) return true;
        if (head[1] == 0xFF) {  // fill byte before a marker
            ++at;
            continue;
        }
        const uint8_t marker = head[1];
        if (marker == kEoi || marker == kSos) {
            visit(marker, at + 2, 0);
            return true;
        }
        if (marker == kSoi || (marker >= 0xD0 && marker <= 0xD7) || marker == 0x01) {  // no length field
            at += 2;
            continue;
        }
        const uint16_t length = ReadBe16(head + 2);
        if (length < 2 || end - at - 2 < length) return true;
        if (!visit(marker, at + 4, static_cast<uint64_t>(length - 2))) return true;
        at += 2ull + length;
    }
    return true;
}

}  // namespace

bool StartsJpeg(ByteSource& source, uint64_t offset) {
    uint8_t soi[2];
    return source.read(offset, 2, soi) && soi[0] == 0xFF && soi[1] == kSoi;
}

std::optional<ExifSegment> FindExifSegment(ByteSource& source, uint64_t start, uint64_t end) {
    std::optional<ExifSegment> found;
    WalkSegments(source, start, end, [&](uint8_t marker, uint64_t payload, uint64_t length) {
        uint8_t id[6];
        if (marker == kApp1 && length >= 14 && source.read(payload, 6, id) && std::memcmp(id, "Exif\0\0", 6) == 0) {
            found = ExifSegment{payload + 6, payload + length};
            return false;
        }
        return true;
    });
    return found;
}

std::optional<JpegFrameSize> ProbeJpegFrame(ByteSource& source, uint64_t start, uint64_t end) {
    bool tables = false;
    std::optional<JpegFrameSize> frame;
    bool lossless = false;
    WalkSegments(source, start, end, [&](uint8_t marker, uint64_t payload, uint64_t length) {
        if (marker == kDqt) tables = true;
        const bool sof = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (sof) {
            uint8_t f[5];
            if (length < 6 || !source.read(payload, 5, f)) return false;
            lossless = !(marker == 0xC0 || marker == 0xC1 || marker == 0xC2);
            frame = JpegFrameSize{ReadBe16(f + 3), ReadBe16(f + 1)};
        }
        return true;
    });
    if (!frame || lossless || !tables || frame->width == 0 || frame->height == 0) return std::nullopt;
    return frame;
}

}  // namespace lx
