// PackedDib: the image handle of the whole module, as portable bytes.
//
// Every image that passes between tools, the codecs and the image class is a packed
// device-independent bitmap: a 40-byte BITMAPINFOHEADER, then the colour table (or the
// three BI_BITFIELDS masks), then the pixel rows, bottom-up, each padded to 4 bytes.
// On Windows those bytes live in a global memory block (see DibGlobal.h); the portable
// core holds the very same bytes in a PackedDib, which owns them. Moving a PackedDib
// moves ownership; it is never shared.
//
// Depths 1, 4, 8 (palette), 16 (5-5-5 or BI_BITFIELDS), 24 and 32 (BGRA) are accepted.
// Header fields are little-endian as in the file format; accessors read them portably.
// kMaxPixels caps what any decoder may allocate, so a hostile header cannot ask for
// gigabytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lx {

constexpr uint32_t kBiRgb = 0;
constexpr uint32_t kBiRle8 = 1;
constexpr uint32_t kBiRle4 = 2;
constexpr uint32_t kBiBitfields = 3;
constexpr size_t kDibHeaderSize = 40;
constexpr int64_t kMaxPixels = 400'000'000;  // 400 MP: larger than any camera, far below memory

// Field-for-field BITMAPINFOHEADER, kept as plain values; read/written explicitly.
struct DibHeader {
    uint32_t size = 40;
    int32_t width = 0;
    int32_t height = 0;  // positive: bottom-up rows
    uint16_t planes = 1;
    uint16_t bitCount = 0;
    uint32_t compression = kBiRgb;
    uint32_t sizeImage = 0;
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    uint32_t clrUsed = 0;
    uint32_t clrImportant = 0;
};

struct Rgbq {
    uint8_t b = 0, g = 0, r = 0, reserved = 0;
    bool operator==(const Rgbq&) const = default;
};

// Bytes per row of a DIB, padded to 4.
constexpr size_t DibStride(int width, int bitCount) {
    return ((static_cast<size_t>(width) * static_cast<size_t>(bitCount) + 31) / 32) * 4;
}

class PackedDib {
public:
    PackedDib() = default;

    // A new zero-filled bottom-up BI_RGB image. Depths 1, 4 and 8 get a palette of
    // 2^depth grey entries. Returns an empty PackedDib when the size is out of range.
    static PackedDib Create(int width, int height, int bitCount);

    // Takes a copy of packed DIB bytes after checking that the header, the colour table
    // and the pixel rows all lie within `size` (top-down images are turned bottom-up,
    // BI_RLE4/8 are refused). Returns nullopt for anything malformed.
    static std::optional<PackedDib> FromBytes(const uint8_t* data, size_t size);

    bool empty() const { return bytes_.empty(); }
    int width() const { return header_.width; }
    int height() const { return header_.height; }
    int bitCount() const { return header_.bitCount; }
    uint32_t compression() const { return header_.compression; }
    size_t stride() const { return DibStride(header_.width, header_.bitCount); }
    const DibHeader& header() const { return header_; }

    // Number of colour-table entries (palette depths) or 0.
    int paletteSize() const;
    std::span<Rgbq> palette();
    std::span<const Rgbq> palette() const;
    // The three BI_BITFIELDS masks (red, green, blue), or the implied 5-5-5 / 8-8-8 ones.
    void masks(uint32_t& red, uint32_t& green, uint32_t& blue) const;

    // Row y counted from the top of the picture (the DIB stores it bottom-up).
    uint8_t* row(int y) { return bits() + static_cast<size_t>(header_.height - 1 - y) * stride(); }
    const uint8_t* row(int y) const { return bits() + static_cast<size_t>(header_.height - 1 - y) * stride(); }
    uint8_t* bits() { return bytes_.data() + bitsOffset_; }
    const uint8_t* bits() const { return bytes_.data() + bitsOffset_; }

    // The whole packed DIB: header, colour table, pixels.
    const std::vector<uint8_t>& bytes() const { return bytes_; }
    size_t bitsOffset() const { return bitsOffset_; }

    // Pixel at (x, y) from the top, as 0xAARRGGBB (alpha 255 unless the image is 32-bit).
    uint32_t pixel(int x, int y) const;
    // Grey palette test: every entry has r == g == b.
    bool hasGreyPalette() const;
    // Grey ramp test: 8 bits with 256 entries, entry i = (i, i, i), so that every pixel value
    // is its own grey level.
    bool hasGreyRamp() const;

private:
    void writeHeader();
    DibHeader header_;
    size_t bitsOffset_ = 0;
    std::vector<uint8_t> bytes_;
};

// Little-endian helpers used by the DIB and by every codec.
inline uint16_t ReadLe16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
inline uint32_t ReadLe32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
           (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
}
inline void WriteLe16(uint8_t* p, uint16_t v) { p[0] = v & 0xff; p[1] = v >> 8; }
inline void WriteLe32(uint8_t* p, uint32_t v) {
    p[0] = v & 0xff; p[1] = (v >> 8) & 0xff; p[2] = (v >> 16) & 0xff; p[3] = v >> 24;
}

}  // namespace lx
