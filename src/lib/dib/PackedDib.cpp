#include "PackedDib.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

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

// Where the parts of a packed DIB lie, once its header has been checked against its size.
struct Layout {
    DibHeader header;  // as PackedDib keeps it: 40 bytes, bottom-up, the table's true count
    bool topDown = false;
    size_t tableOffset = 0;
    size_t entries = 0;     // table entries that follow the header in the bytes
    size_t outEntries = 0;  // table entries PackedDib keeps: the palette, or three masks
    size_t stride = 0;
    size_t imageBytes = 0;

    size_t bitsOffset() const { return kDibHeaderSize + outEntries * 4; }
    // Laid out as Create lays a DIB out, so the bytes can be kept as they are.
    bool inPlace() const { return tableOffset == kDibHeaderSize && !topDown && entries == outEntries; }
};

std::optional<Layout> ParseLayout(const uint8_t* data, size_t size) {
    if (data == nullptr || size < kDibHeaderSize) return std::nullopt;
    const DibHeader h = ParseHeader(data);
    if (h.size < kDibHeaderSize || h.size > size || h.width <= 0 || h.height == 0 || h.height == INT32_MIN ||
        !IsSupportedDepth(h.bitCount))
        return std::nullopt;
    if (h.compression != kBiRgb && !(h.compression == kBiBitfields && (h.bitCount == 16 || h.bitCount == 32)))
        return std::nullopt;
    Layout l;
    l.topDown = h.height < 0;
    const int height = l.topDown ? -h.height : h.height;
    if (static_cast<int64_t>(h.width) * height > kMaxPixels) return std::nullopt;
    // BI_BITFIELDS masks sit after a 40-byte header, or inside a larger (V4/V5) one.
    l.tableOffset = h.size;
    l.entries = TableEntries(h);
    if (h.compression == kBiBitfields && h.size >= 52) l.entries -= 3;  // masks are in the header
    l.stride = DibStride(h.width, h.bitCount);
    l.imageBytes = l.stride * static_cast<size_t>(height);
    if (l.tableOffset + l.entries * 4 > size || size - l.tableOffset - l.entries * 4 < l.imageBytes)
        return std::nullopt;
    l.outEntries = h.bitCount <= 8 ? l.entries : (h.compression == kBiBitfields ? 3 : 0);
    l.header = h;
    l.header.size = 40;
    l.header.height = height;
    l.header.sizeImage = static_cast<uint32_t>(l.imageBytes);
    l.header.clrUsed = h.bitCount <= 8 ? static_cast<uint32_t>(l.entries) : 0;
    return l;
}

}  // namespace

DibBytes::DibBytes(size_t size) {
    if (size == 0) return;
    data_ = AllocateDibBlock(size);
    if (!data_) throw std::bad_alloc();
    size_ = size;
    owned_ = true;
}

DibBytes::DibBytes(const DibBytes& other) : DibBytes(other.size_) {
    if (size_) std::memcpy(data_, other.data_, size_);
}

DibBytes::DibBytes(DibBytes&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)),
      owned_(std::exchange(other.owned_, false)) {}

DibBytes& DibBytes::operator=(DibBytes other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(owned_, other.owned_);
    return *this;
}

DibBytes::~DibBytes() {
    if (owned_) FreeDibBlock(data_);
}

DibBytes DibBytes::Adopt(uint8_t* block, size_t size) {
    DibBytes bytes;
    bytes.data_ = block;
    bytes.size_ = block ? size : 0;
    bytes.owned_ = block != nullptr;
    return bytes;
}

DibBytes DibBytes::Lend(uint8_t* data, size_t size) {
    DibBytes bytes;
    bytes.data_ = data;
    bytes.size_ = data ? size : 0;
    return bytes;
}

uint8_t* DibBytes::release() noexcept {
    uint8_t* block = owned_ ? data_ : nullptr;
    data_ = nullptr;
    size_ = 0;
    owned_ = false;
    return block;
}

bool DibBytes::operator==(const DibBytes& other) const {
    return size_ == other.size_ && (size_ == 0 || std::memcmp(data_, other.data_, size_) == 0);
}

#ifndef _WIN32
uint8_t* AllocateDibBlock(size_t size) { return static_cast<uint8_t*>(std::calloc(size, 1)); }
void FreeDibBlock(uint8_t* block) { std::free(block); }
#endif

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
    dib.bytes_ = DibBytes(dib.bitsOffset_ + dib.header_.sizeImage);
    dib.writeHeader();
    for (size_t i = 0; i < entries; ++i) {
        const uint8_t v = static_cast<uint8_t>(entries == 1 ? 0 : i * 255 / (entries - 1));
        dib.palette()[i] = Rgbq{v, v, v, 0};
    }
    return dib;
}

std::optional<PackedDib> PackedDib::FromBytes(const uint8_t* data, size_t size) {
    const std::optional<Layout> l = ParseLayout(data, size);
    if (!l) return std::nullopt;
    const DibHeader& h = l->header;
    PackedDib dib;
    dib.header_ = h;
    dib.bitsOffset_ = l->bitsOffset();
    dib.bytes_ = DibBytes(dib.bitsOffset_ + l->imageBytes);
    dib.writeHeader();
    if (h.bitCount <= 8) {
        std::memcpy(dib.bytes_.data() + kDibHeaderSize, data + l->tableOffset, l->entries * 4);
    } else if (h.compression == kBiBitfields) {
        const uint8_t* masks = l->tableOffset >= 52 ? data + 40 : data + l->tableOffset;
        std::memcpy(dib.bytes_.data() + kDibHeaderSize, masks, 12);
    }
    const uint8_t* src = data + l->tableOffset + l->entries * 4;
    if (!l->topDown) {
        std::memcpy(dib.bits(), src, l->imageBytes);
    } else {
        for (int y = 0; y < h.height; ++y)
            std::memcpy(dib.row(y), src + static_cast<size_t>(y) * l->stride, l->stride);
    }
    return dib;
}

std::optional<PackedDib> PackedDib::Adopt(DibBytes& bytes) {
    const std::optional<Layout> l = ParseLayout(bytes.data(), bytes.size());
    if (!l || !l->inPlace()) return std::nullopt;
    PackedDib dib;
    dib.header_ = l->header;
    dib.bitsOffset_ = l->bitsOffset();
    const size_t used = dib.bitsOffset_ + l->imageBytes;
    if (bytes.owned()) {
        dib.bytes_ = DibBytes::Adopt(bytes.release(), used);
        dib.writeHeader();
    } else {
        dib.bytes_ = DibBytes::Lend(bytes.data(), used);
        bytes = DibBytes();
    }
    return dib;
}

std::optional<PackedDib> PackedDib::Borrow(const uint8_t* data, size_t size) {
    const std::optional<Layout> l = ParseLayout(data, size);
    if (!l || !l->inPlace()) return std::nullopt;
    PackedDib dib;
    dib.header_ = l->header;
    dib.bitsOffset_ = l->bitsOffset();
    // Nothing writes through the lent bytes: the header is kept as parsed, not rewritten.
    dib.bytes_ = DibBytes::Lend(const_cast<uint8_t*>(data), dib.bitsOffset_ + l->imageBytes);
    return dib;
}

DibBytes PackedDib::release() noexcept {
    header_ = DibHeader{};
    bitsOffset_ = 0;
    return std::move(bytes_);
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
