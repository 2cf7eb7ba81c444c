// PackedDib: the image handle of the whole module, as portable bytes.
//
// Every image that passes between tools, the codecs and the image class is a packed
// device-independent bitmap: a 40-byte BITMAPINFOHEADER, then the colour table (or the
// three BI_BITFIELDS masks), then the pixel rows, bottom-up, each padded to 4 bytes.
// The portable core holds those bytes in a PackedDib, which owns them; on Windows they
// live in a fixed global memory block from the start, so that a DIB is handed over as an
// HGLOBAL, and an HGLOBAL taken in, without copying its pixels (see DibGlobal.h). Moving a
// PackedDib moves ownership; copying copies the bytes; they are never shared.
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

// One block of DIB bytes, zero-filled when made. Owned (freed with it) unless it was only
// lent for a passing look (PackedDib::Borrow); a copy is always owned.
class DibBytes {
public:
    using value_type = uint8_t;
    using iterator = uint8_t*;
    using const_iterator = const uint8_t*;

    DibBytes() = default;
    // Throws std::bad_alloc when memory runs out, as a vector would.
    explicit DibBytes(size_t size);
    DibBytes(const DibBytes& other);
    DibBytes(DibBytes&& other) noexcept;
    DibBytes& operator=(DibBytes other) noexcept;
    ~DibBytes();

    // Takes a block that AllocateDibBlock made, holding `size` meaningful bytes.
    static DibBytes Adopt(uint8_t* block, size_t size);
    // Looks at bytes that stay someone else's; they must outlive this object.
    static DibBytes Lend(uint8_t* data, size_t size);
    // Gives the block up (null when it was only lent or is empty): the caller frees it with
    // FreeDibBlock.
    uint8_t* release() noexcept;
    bool owned() const { return owned_; }

    uint8_t* data() { return data_; }
    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    uint8_t* begin() { return data_; }
    uint8_t* end() { return data_ + size_; }
    const uint8_t* begin() const { return data_; }
    const uint8_t* end() const { return data_ + size_; }
    uint8_t& operator[](size_t i) { return data_[i]; }
    uint8_t operator[](size_t i) const { return data_[i]; }
    operator std::vector<uint8_t>() const { return {begin(), end()}; }
    bool operator==(const DibBytes& other) const;

private:
    uint8_t* data_ = nullptr;
    size_t size_ = 0;
    bool owned_ = false;
};

// Where DIB blocks come from: `size` zero-filled bytes, or null when memory runs out. The
// portable build takes them from the C heap; on Windows each is a fixed global memory block,
// whose pointer is its HGLOBAL.
uint8_t* AllocateDibBlock(size_t size);
void FreeDibBlock(uint8_t* block);

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
    // Takes the bytes as they are when they already hold a DIB laid out as Create lays one out
    // (40-byte header, the colour table or masks alone, bottom-up rows); header fields that
    // only restate the layout (colours used, image size) are set right in place. Nullopt,
    // and the bytes left with the caller, otherwise.
    static std::optional<PackedDib> Adopt(DibBytes& bytes);
    // The same test without taking anything: a DIB that reads `data` in place, which must
    // outlive it and which it does not change (for a passing look, such as reducing it).
    static std::optional<PackedDib> Borrow(const uint8_t* data, size_t size);
    // Gives up the bytes; the DIB is empty afterwards.
    DibBytes release() noexcept;

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
    const DibBytes& bytes() const { return bytes_; }
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
    DibBytes bytes_;
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
