#include "PackedDib.h"

#include <algorithm>
#include <cstring>

namespace lx {
namespace {

DibHeader ParseHeader(const uint8_t* p) {
    DibHeader h;
    h.size = ReadLe32(p);
    h.width = static_cast<int32_t>(ReadLe32(p + 4));
    h.height = static_cast<int32_t>(ReadLe32(p + 8));
    h.planes = ReadLe16(p + 12);
    h.bitCount = ReadLe16(p + 14);
    h.compression = ReadLe32(p + 16);
    h.sizeImage = ReadLe32(p + 20);
    h.xPelsPerMeter = static_cast<int32_t>(ReadLe32(p + 24));
    h.yPelsPerMeter = static_cast<int32_t>(ReadLe32(p + 28));
    h.clrUsed = ReadLe32(p + 32);
    h.clrImportant = ReadLe32(p + 36);
    return h;
}

bool IsSupportedDepth(int bitCount) {
    return bitCount == 1 || bitCount == 4 || bitCount == 8 || bitCount == 16 || bitCount == 24 ||
           bitCount == 32;
}

// Entries of the colour table that follow the header: palette entries for depths up to 8,
// three masks for BI_BITFIELDS, and any (ignored) table a true-colour DIB may carry.
size_t TableEntries(const DibHeader& h) {
    if (h.bitCount <= 8) {
        const uint32_t full = 1u << h.bitCount;
        return (h.clrUsed == 0 || h.clrUsed > full) ? full : h.clrUsed;
    }
    size_t n = h.compression == kBiBitfields ? 3 : 0;
    return n + std::min<uint32_t>(h.clrUsed, 256);
}

}  // namespace

PackedDib PackedDib::Create(int width, int height, int bitCount) {
    PackedDib dib;
    if (width <= 0 || height <= 0 || !IsSupportedDepth(bitCount) ||
        static_cast<int64_t>(width) * height > kMaxPixels)
        return dib;
    dib.header_.width = width;
    dib.header_.height = height;
    dib.header_.bitCount = static_cast<uint16_t>(bitCount);
    const size_t entries = bitCount <= 8 ? (1u << bitCount) : 0;
    dib.header_.clrUsed = static_cast<uint32_t>(entries);
    dib.header_.sizeImage = static_cast<uint32_t>(DibStride(width, bitCount) * height);
    dib.bitsOffset_ = kDibHeaderSize + entries * 4;
    dib.bytes_.assign(dib.bitsOffset_ + dib.header_.sizeImage, 0);
    dib.writeHeader();
    for (size_t i = 0; i < entries; ++i) {
        const uint8_t v = static_cast<uint8_t>(entries == 1 ? 0 : i * 255 / (entries - 1));
        dib.palette()[i] = Rgbq{v, v, v, 0};
    }
    return dib;
}

std::optional<PackedDib> PackedDib::FromBytes(const uint8_t* data, size_t size) {
    if (data == nullptr || size < kDibHeaderSize) return std::nullopt;
    DibHeader h = ParseHeader(data);
    if (h.size < kDibHeaderSize || h.size > size || h.width <= 0 || h.height == 0 ||
        h.height == INT32_MIN || !IsSupportedDepth(h.bitCount))
        return std::nullopt;
    if (h.compression != kBiRgb && !(h.compression == kBiBitfields && (h.bitCount == 16 || h.bitCount == 32)))
        return std::nullopt;
    const bool topDown = h.height < 0;
    const int height = topDown ? -h.height : h.height;
    if (static_cast<int64_t>(h.width) * height > kMaxPixels) return std::nullopt;
    // BI_BITFIELDS masks sit after a 40-byte header, or inside a larger (V4/V5) one.
    const size_t tableOffset = h.size;
    size_t entries = TableEntries(h);
    if (h.compression == kBiBitfields && h.size >= 52) entries -= 3;  // masks are in the header
    const size_t stride = DibStride(h.width, h.bitCount);
    const size_t imageBytes = stride * static_cast<size_t>(height);
    if (tableOffset + entries * 4 > size || size - tableOffset - entries * 4 < imageBytes)
        return std::nullopt;

    PackedDib dib;
    dib.header_ = h;
    dib.header_.size = 40;
    dib.header_.height = height;
    dib.header_.sizeImage = static_cast<uint32_t>(imageBytes);
    if (h.bitCount <= 8) dib.header_.clrUsed = static_cast<uint32_t>(entries);
    const size_t outEntries = h.bitCount <= 8 ? entries : (h.compression == kBiBitfields ? 3 : 0);
    if (h.bitCount > 8) dib.header_.clrUsed = 0;
    dib.bitsOffset_ = kDibHeaderSize + outEntries * 4;
    dib.bytes_.assign(dib.bitsOffset_ + imageBytes, 0);
    dib.writeHeader();
    if (h.bitCount <= 8) {
        std::memcpy(dib.bytes_.data() + kDibHeaderSize, data + tableOffset, entries * 4);
    } else if (h.compression == kBiBitfields) {
        const uint8_t* masks = h.size >= 52 ? data + 40 : data + tableOffset;
        std::memcpy(dib.bytes_.data() + kDibHeaderSize, masks, 12);
    }
    const uint8_t* src = data + tableOffset + entries * 4;
    if (!topDown) {
        std::memcpy(dib.bits(), src, imageBytes);
    } else {
        for (int y = 0; y < height; ++y) std::memcpy(dib.row(y), src + static_cast<size_t>(y) * stride, stride);
    }
    return dib;
}

void PackedDib::writeHeader() {
    uint8_t* p = bytes_.data();
    WriteLe32(p, header_.size);
    WriteLe32(p + 4, static_cast<uint32_t>(header_.width));
    WriteLe32(p + 8, static_cast<uint32_t>(header_.height));
    WriteLe16(p + 12, header_.planes);
    WriteLe16(p + 14, header_.bitCount);
    WriteLe32(p + 16, header_.compression);
    WriteLe32(p + 20, header_.sizeImage);
    WriteLe32(p + 24, static_cast<uint32_t>(header_.xPelsPerMeter));
    WriteLe32(p + 28, static_cast<uint32_t>(header_.yPelsPerMeter));
    WriteLe32(p + 32, header_.clrUsed);
    WriteLe32(p + 36, header_.clrImportant);
}

int PackedDib::paletteSize() const {
    return header_.bitCount <= 8 && !bytes_.empty() ? static_cast<int>(header_.clrUsed) : 0;
}

std::span<Rgbq> PackedDib::palette() {
    return {reinterpret_cast<Rgbq*>(bytes_.data() + kDibHeaderSize), static_cast<size_t>(paletteSize())};
}

std::span<const Rgbq> PackedDib::palette() const {
    return {reinterpret_cast<const Rgbq*>(bytes_.data() + kDibHeaderSize), static_cast<size_t>(paletteSize())};
}

void PackedDib::masks(uint32_t& red, uint32_t& green, uint32_t& blue) const {
    if (header_.compression == kBiBitfields) {
        red = ReadLe32(bytes_.data() + 40);
        green = ReadLe32(bytes_.data() + 44);
        blue = ReadLe32(bytes_.data() + 48);
    } else if (header_.bitCount == 16) {
        red = 0x7c00; green = 0x03e0; blue = 0x001f;
    } else {
        red = 0xff0000; green = 0x00ff00; blue = 0x0000ff;
    }
}

namespace {
// Scales a masked channel value to 0..255.
uint32_t Channel(uint32_t v, uint32_t mask) {
    if (mask == 0) return 0;
    int shift = 0;
    while (!((mask >> shift) & 1)) ++shift;
    const uint32_t m = mask >> shift;
    return ((v & mask) >> shift) * 255 / m;
}
}  // namespace

uint32_t PackedDib::pixel(int x, int y) const {
    const uint8_t* r = row(y);
    auto fromPalette = [&](unsigned index) -> uint32_t {
        if (index >= static_cast<unsigned>(paletteSize())) return 0xff000000;
        const Rgbq q = palette()[index];
        return 0xff000000u | (q.r << 16) | (q.g << 8) | q.b;
    };
    switch (header_.bitCount) {
    case 1: return fromPalette((r[x >> 3] >> (7 - (x & 7))) & 1);
    case 4: return fromPalette((r[x >> 1] >> ((x & 1) ? 0 : 4)) & 15);
    case 8: return fromPalette(r[x]);
    case 16:
    case 32:
        if (header_.bitCount == 32 && header_.compression == kBiRgb) return ReadLe32(r + x * 4);
        {
            uint32_t rm, gm, bm;
            masks(rm, gm, bm);
            const uint32_t v = header_.bitCount == 16 ? ReadLe16(r + x * 2) : ReadLe32(r + x * 4);
            return 0xff000000u | (Channel(v, rm) << 16) | (Channel(v, gm) << 8) | Channel(v, bm);
        }
    case 24: return 0xff000000u | (r[x * 3 + 2] << 16) | (r[x * 3 + 1] << 8) | r[x * 3];
    }
    return 0;
}

bool PackedDib::hasGreyPalette() const {
    const auto pal = palette();
    return !pal.empty() && std::all_of(pal.begin(), pal.end(), [](Rgbq q) { return q.r == q.g && q.g == q.b; });
}

bool PackedDib::hasGreyRamp() const {
    if (header_.bitCount != 8 || paletteSize() != 256) return false;
    const auto pal = palette();
    for (int i = 0; i < 256; ++i)
        if (pal[i].r != i || pal[i].g != i || pal[i].b != i) return false;
    return true;
}

}  // namespace lx
