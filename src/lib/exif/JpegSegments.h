// JpegSegments: the few things the Exif reader needs from a JPEG stream's markers: where
// its Exif APP1 segment lies, and the pixel size of an embedded JPEG (which also tells a
// displayable baseline or progressive image from a lossless raw one).
//
// Both walk the marker segments from the start-of-image marker to the start of scan,
// reading four bytes per segment; the walk stops after kMaxSegments so a file of empty
// segments cannot keep it busy.
#pragma once

#include <cstdint>
#include <optional>

#include "ByteSource.h"

namespace lx {

struct ExifSegment {
    uint64_t tiffBase = 0;  // first byte of the TIFF header, after "Exif\0\0"
    uint64_t limit = 0;     // end of the segment
};

struct JpegFrameSize {
    int width = 0;
    int height = 0;
};

constexpr int kMaxSegments = 256;

// Whether the source holds FF D8 at `offset`.
bool StartsJpeg(ByteSource& source, uint64_t offset);

// The Exif APP1 segment of the JPEG stream at [start, end); nullopt when there is none.
std::optional<ExifSegment> FindExifSegment(ByteSource& source, uint64_t start, uint64_t end);

// The frame size of a displayable JPEG at [start, end): quantisation tables and a
// baseline, extended or progressive frame header before the scan. Lossless frames (the
// raw data of CR2 and DNG files) and streams that rely on tables stored elsewhere give
// nullopt.
std::optional<JpegFrameSize> ProbeJpegFrame(ByteSource& source, uint64_t start, uint64_t end);

}  // namespace lx
