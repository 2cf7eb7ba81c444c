// Pieces every image reader shares: a bounds-checked cursor over the file's bytes, the
// size check that keeps a hostile header from asking for more memory than its data could
// ever fill, and the last step that drops an alpha channel nobody used.
//
// Readers never index the input directly; they read through ByteCursor, which yields
// zeros and remembers the failure once the data runs out, so one check at the end of a
// row is enough.
#pragma once

#include "PackedDib.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace lx {

class ByteCursor {
public:
    explicit ByteCursor(std::span<const uint8_t> data, size_t pos = 0) : data_(data), pos_(pos) {
        if (pos_ > data_.size()) failed_ = true, pos_ = data_.size();
    }

    bool failed() const { return failed_; }
    size_t pos() const { return pos_; }
    size_t size() const { return data_.size(); }
    size_t remaining() const { return data_.size() - pos_; }
    bool atEnd() const { return pos_ >= data_.size(); }

    uint8_t u8() {
        if (pos_ >= data_.size()) { failed_ = true; return 0; }
        return data_[pos_++];
    }
    uint16_t le16() { const uint8_t* p = take(2); return p ? ReadLe16(p) : 0; }
    uint32_t le32() { const uint8_t* p = take(4); return p ? ReadLe32(p) : 0; }
    uint16_t be16() { const uint8_t* p = take(2); return p ? static_cast<uint16_t>(p[0] << 8 | p[1]) : 0; }
    uint32_t be32() {
        const uint8_t* p = take(4);
        return p ? (static_cast<uint32_t>(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3]) : 0;
    }
    // n bytes in place, or null (and failed) when fewer remain.
    const uint8_t* take(size_t n) {
        if (n > remaining()) { failed_ = true; pos_ = data_.size(); return nullptr; }
        const uint8_t* p = data_.data() + pos_;
        pos_ += n;
        return p;
    }
    bool skip(size_t n) { return take(n) != nullptr; }
    bool seek(size_t pos) {
        if (pos > data_.size()) { failed_ = true; pos_ = data_.size(); return false; }
        pos_ = pos;
        return true;
    }

private:
    std::span<const uint8_t> data_;
    size_t pos_ = 0;
    bool failed_ = false;
};

// Whether a picture of width x height may be decoded from `inputBytes` of data. Besides
// kMaxPixels, a compressed stream cannot describe more than about a thousand pixels per
// byte, so a tiny file claiming a huge canvas is refused before anything is allocated.
bool PlausibleSize(int64_t width, int64_t height, size_t inputBytes);

// The same check for a codec whose best compression is known: `encodedBytes` of it can
// stand for at most `mostPixelsPerByte` pixels each.
bool PlausibleForCompression(int64_t width, int64_t height, uint64_t encodedBytes, uint64_t mostPixelsPerByte);

// Every 8 x 8 block of a full-resolution JPEG component takes at least one Huffman-coded
// bit (two in a baseline file): 12 megapixels need 23 KB or more, and cjpeg makes 70 KB of
// a blank 12-megapixel sky even progressive with optimised tables.
constexpr uint64_t kJpegMostPixelsPerByte = 64 * 8;

// A new image of the given depth, or an empty one when the size is not plausible.
PackedDib NewImage(int64_t width, int64_t height, int bitCount, size_t inputBytes);

// Readers decode colour with alpha into a 32-bit BGRA image; when every pixel turned out
// opaque the caller gets a 24-bit image instead, so alpha means real transparency.
PackedDib DropOpaqueAlpha(PackedDib&& bgra);

// Stores one BGRA pixel into a 32-bit image row.
inline void PutBgra(uint8_t* row, int x, uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
    uint8_t* p = row + static_cast<size_t>(x) * 4;
    p[0] = b, p[1] = g, p[2] = r, p[3] = a;
}

// Stores an index into a 1-, 4- or 8-bit row (the row starts zeroed).
inline void PutIndex(uint8_t* row, int bitCount, int x, unsigned index) {
    switch (bitCount) {
    case 1: row[x >> 3] |= static_cast<uint8_t>((index & 1) << (7 - (x & 7))); break;
    case 4: row[x >> 1] |= static_cast<uint8_t>((index & 15) << ((x & 1) ? 0 : 4)); break;
    default: row[x] = static_cast<uint8_t>(index); break;
    }
}

// Scales a sample of `maxValue` to 0..255 with rounding.
inline uint8_t ScaleSample(uint32_t value, uint32_t maxValue) {
    if (maxValue == 255) return static_cast<uint8_t>(value);
    if (value >= maxValue) return 255;
    return static_cast<uint8_t>((value * 255u + maxValue / 2) / maxValue);
}

}  // namespace lx
