// Our own JPEG decoder: baseline and progressive Huffman-coded 8-bit files, with restart
// intervals, any sampling factors up to 4, grey, YCbCr, RGB, Adobe CMYK and YCCK, decoded at
// full size or at 1/2, 1/4 or 1/8 of it straight from the coefficients.
//
// Its output matches djpeg's default (accurate integer IDCT, triangle chroma upsampling)
// and `djpeg -scale 1/N`. Files it does not read (arithmetic-coded, lossless,
// hierarchical, 12-bit) are left to the system codec: ReadJpeg returns nullopt for them.
// A damaged or truncated file decodes what it can; blocks past the damage come out as
// djpeg shows them (mid grey, or the coefficients a progressive file had so far).
// Exif orientation is not applied here; the loader does that.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lx {

struct JpegInfo {
    int width = 0, height = 0, components = 0;
    bool progressive = false;
    bool decodable = false;  // false: arithmetic, lossless, hierarchical, 12-bit -> system codec
};

// The frame header of a JPEG file; nullopt when the data is not a JPEG at all.
std::optional<JpegInfo> ReadJpegInfo(std::span<const uint8_t> file);

// Decodes at 1/scaleDenom (1, 2, 4 or 8) of full size, sizes rounded up as `djpeg -scale 1/N`
// does, into a bottom-up 24-bit BGR PackedDib (one component: 8-bit with a grey palette).
// nullopt when the file is not one this decoder reads (the caller then uses the system
// codec), its size is implausible for its length, or no frame or scan could be started.
std::optional<PackedDib> ReadJpeg(std::span<const uint8_t> file, int scaleDenom = 1);

// The largest denominator in {1, 2, 4, 8} whose scaled size still covers wantWidth x
// wantHeight on at least one side (which is what fitting the picture into that box needs).
int JpegScaleToCover(int width, int height, int wantWidth, int wantHeight);

}  // namespace lx
