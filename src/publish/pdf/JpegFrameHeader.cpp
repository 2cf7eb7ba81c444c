#include "JpegFrameHeader.h"

namespace lx {

namespace {

uint32_t BigEndian16(const uint8_t* p) { return (uint32_t(p[0]) << 8) | p[1]; }

bool IsAcceptedFrameMarker(uint8_t code) { return code >= 0xC0 && code <= 0xC3; }

}  // namespace

std::optional<JpegFrameHeader> FindJpegFrameHeader(const uint8_t* data, size_t size) {
    // The start-of-image marker in bytes 0-1 is taken on trust; the chain starts at byte 2.
    // Every segment, standalone markers included, is stepped over by its length field: a file
    // that does not follow that shape has no page.
    size_t marker = 2;
    while (marker + 4 < size) {
        if (data[marker] != 0xFF) return std::nullopt;
        if (IsAcceptedFrameMarker(data[marker + 1])) {
            // Length (2), precision (1), height (2), width (2), component count (1).
            const size_t fields = marker + 4;
            if (fields + 6 > size) return std::nullopt;
            JpegFrameHeader frame;
            frame.height = BigEndian16(data + fields + 1);
            frame.width = BigEndian16(data + fields + 3);
            frame.components = data[fields + 5];
            return frame;
        }
        marker += 2 + BigEndian16(data + marker + 2);
    }
    return std::nullopt;
}

}  // namespace lx
