// JPEG encoding of a packed DIB, the codec library's "save as JPEG" operation.
//
// Any DIB depth is accepted: palette, 16- and 32-bit pixels are converted on the fly.
// Images whose palette is all grey (8-bit grey images among them) become one-component
// JPEGs; everything else is YCbCr with 4:2:0 chroma. The file is JFIF, without restart
// markers: a baseline sequential frame with the example Huffman tables, a baseline
// frame with Huffman tables optimised for the image, or a progressive frame (the usual
// progression of spectral selection and successive approximation, each scan with its
// own optimised tables).
//
// The caller owns the returned bytes; an empty vector means the image could not be
// encoded (empty, or larger than JPEG's 65535 pixels a side).
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <vector>

namespace lx {

// The JPEG parameter record exactly as callers of the save operation lay it out.
struct JpegSaveRecord {
    int32_t quality = 75;        // 1..100, the usual quality scale of JPEG tools
    int32_t reserved0 = 0;
    int32_t smoothing = 0;       // 0 none .. 100 strongest input smoothing
    int32_t progressive = 0;     // non-zero: progressive frame
    int32_t optimizeHuffman = 0; // non-zero (and not progressive): optimised baseline
    int32_t reserved[3] = {};
};
static_assert(sizeof(JpegSaveRecord) == 32, "the save record is a fixed 32-byte block");

std::vector<uint8_t> EncodeJpeg(const PackedDib& dib, const JpegSaveRecord& record);

}  // namespace lx
