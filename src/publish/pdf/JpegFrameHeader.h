// Finds the frame header of a JPEG file held in memory: the picture's size and its number of
// colour components, which is all a PDF page needs to wrap the file unchanged.
//
// The scan is deliberately narrow: it walks the segment chain from byte 2 and accepts only the
// baseline, extended sequential, progressive and lossless frame headers (0xC0-0xC3). So an
// arithmetic-coded file, or one whose chain breaks before its frame header, yields nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace lx {

struct JpegFrameHeader {
    uint32_t width = 0;
    uint32_t height = 0;
    int components = 0;
};

// Never reads outside [data, data + size).
std::optional<JpegFrameHeader> FindJpegFrameHeader(const uint8_t* data, size_t size);

}  // namespace lx
