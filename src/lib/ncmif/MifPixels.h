// Pixel access shared by the image class's operations: raw pixel values at any depth, colours
// in and out of any format, new images shaped like an old one, and the conversion to the
// direct-colour forms (8-bit grey, 24 and 32 bits) that the filters work on.
// Internal to the image class; callers use mif.h.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "PackedDib.h"
#include "mif.h"

namespace lx::mifpix {

// The raw value of pixel x in a row: a palette index, or the 16/24/32-bit little-endian word.
inline uint32_t GetRaw(const uint8_t* row, int x, int bits) {
    switch (bits) {
    case 1: return (row[x >> 3] >> (7 - (x & 7))) & 1;
    case 4: return (row[x >> 1] >> ((x & 1) ? 0 : 4)) & 15;
    case 8: return row[x];
    case 16: return ReadLe16(row + x * 2);
    case 24: return row[x * 3] | (row[x * 3 + 1] << 8) | (static_cast<uint32_t>(row[x * 3 + 2]) << 16);
    default: return ReadLe32(row + x * 4);
    }
}

inline void SetRaw(uint8_t* row, int x, int bits, uint32_t v) {
    switch (bits) {
    case 1: {
        const uint8_t bit = static_cast<uint8_t>(0x80 >> (x & 7));
        row[x >> 3] = static_cast<uint8_t>((v & 1) ? (row[x >> 3] | bit) : (row[x >> 3] & ~bit));
        break;
    }
    case 4:
        if (x & 1) row[x >> 1] = static_cast<uint8_t>((row[x >> 1] & 0xf0) | (v & 15));
        else row[x >> 1] = static_cast<uint8_t>((row[x >> 1] & 0x0f) | ((v & 15) << 4));
        break;
    case 8: row[x] = static_cast<uint8_t>(v); break;
    case 16: WriteLe16(row + x * 2, static_cast<uint16_t>(v)); break;
    case 24:
        row[x * 3] = v & 0xff;
        row[x * 3 + 1] = (v >> 8) & 0xff;
        row[x * 3 + 2] = (v >> 16) & 0xff;
        break;
    default: WriteLe32(row + x * 4, v); break;
    }
}

// Copies `count` pixels from column sx of one row to column dx of another, same depth.
void CopyPixels(const uint8_t* src, int sx, uint8_t* dst, int dx, int count, int bits);

// A new zero-filled image of another size with the same depth, compression, colour table or
// masks and resolution as `like`. Empty when the size is impossible.
PackedDib MakeLike(const PackedDib& like, int width, int height);
// A new zero-filled BI_RGB palette image with exactly these table entries.
PackedDib MakeWithPalette(int width, int height, int bits, std::span<const Rgbq> table);

// True for the forms the filters work on: 24 or 32-bit BI_RGB, or 8-bit with the grey ramp.
bool IsDirect(const PackedDib& dib);
// Converts the image in place to a direct form, or to 24/32-bit BI_RGB; false (image
// unchanged) when memory runs out.
bool EnsureDirect(PackedDib& dib);
bool EnsureRgb(PackedDib& dib);
// The image in a direct form for reading: `dib` itself when it is one, otherwise a converted
// copy left in `holder`.
const PackedDib& DirectView(const PackedDib& dib, PackedDib& holder);
// A copy at 24 bits (alpha dropped), 32 bits (alpha kept from a 32-bit BI_RGB source,
// otherwise opaque) or 16 bits (5-5-5).
PackedDib ConvertDirect(const PackedDib& dib, int bits);

// Bytes per pixel of a direct image: 1, 3 or 4.
inline int Channels(const PackedDib& dib) { return dib.bitCount() / 8; }

// Grey level of a colour, 0.299 R + 0.587 G + 0.114 B, rounded.
inline uint8_t Luma(int r, int g, int b) { return static_cast<uint8_t>((r * 299 + g * 587 + b * 114 + 500) / 1000); }

// The index of the table entry nearest to a colour (squared RGB distance), remembered per
// 6-bit-per-channel cell. One per thread.
class NearestCache {
public:
    explicit NearestCache(std::span<const Rgbq> table);
    int find(int r, int g, int b);
    // The exact nearest entry, without the cell approximation.
    int findExact(int r, int g, int b) const;

private:
    std::span<const Rgbq> table_;
    std::vector<int16_t> cells_;
};

// Writes a colour 0xAARRGGBB into pixel (x, y) of any format; palette images take the nearest
// entry through `cache` (which must be built on the image's table).
void WriteColour(PackedDib& dib, int x, int y, uint32_t argb, NearestCache* cache);

// The rectangle of the members that take left, top, width and height: all zero means the
// whole image.
MifRect RectFromSize(int left, int top, int width, int height);

// Runs fn(begin, end) over [0, count) split between at most two threads; one thread when the
// work is small.
void ParallelRows(int count, int64_t workPerRow, const std::function<void(int, int)>& fn);

}  // namespace lx::mifpix
