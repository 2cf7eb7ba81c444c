#include "BmpReader.h"

#include "ImageLoadSupport.h"

#include <cstring>

namespace lx {
namespace {

constexpr uint32_t kBiAlphaBitfields = 6;

struct BmpInfo {
    int64_t width = 0, height = 0;
    bool topDown = false;
    int bitCount = 0;
    uint32_t compression = kBiRgb;
    uint32_t colours = 0;
    uint32_t masks[4] = {0, 0, 0, 0};  // red, green, blue, alpha
    size_t paletteAt = 0;
    size_t paletteEntrySize = 4;
};

// Shift and width of a contiguous channel mask; a zero mask reads as zero.
struct Channel {
    int shift = 0;
    uint32_t max = 0;
    explicit Channel(uint32_t mask) {
        if (mask == 0) return;
        while (!((mask >> shift) & 1)) ++shift;
        max = mask >> shift;
        // Gaps inside the mask are tolerated by reading only its low contiguous run.
        uint32_t run = 0;
        while (run < 32 && ((max >> run) & 1)) ++run;
        max = run >= 32 ? 0xffffffffu : (1u << run) - 1;
    }
    uint8_t read(uint32_t v) const {
        if (max == 0) return 0;
        const uint64_t c = (v >> shift) & max;
        return static_cast<uint8_t>((c * 255 + max / 2) / max);
    }
};

bool ParseInfo(ByteCursor& in, BmpInfo& info) {
    const uint32_t headerSize = in.le32();
    if (headerSize == 12) {  // OS/2 core header: 16-bit sizes, 3-byte palette entries
        info.width = in.le16();
        info.height = in.le16();
        in.le16();
        info.bitCount = in.le16();
        info.paletteEntrySize = 3;
        info.paletteAt = 14 + 12;
        return !in.failed();
    }
    if (headerSize < 16 || headerSize > 4096) return false;
    const size_t start = in.pos() - 4;
    info.width = static_cast<int32_t>(in.le32());
    const int32_t h = static_cast<int32_t>(in.le32());
    if (h == INT32_MIN) return false;
    info.topDown = h < 0;
    info.height = h < 0 ? -static_cast<int64_t>(h) : h;
    in.le16();
    info.bitCount = in.le16();
    if (headerSize >= 20) info.compression = in.le32();
    if (headerSize >= 36) {
        in.skip(12);
        info.colours = in.le32();
    }
    size_t after = start + headerSize;
    if (info.compression == kBiBitfields || info.compression == kBiAlphaBitfields) {
        // Masks live inside a V2+ header, else right after the 40-byte one.
        const size_t count = info.compression == kBiAlphaBitfields ? 4 : 3;
        const size_t at = headerSize >= 52 ? start + 40 : after;
        in.seek(at);
        for (size_t i = 0; i < count; ++i) info.masks[i] = in.le32();
        if (headerSize >= 56) {
            in.seek(start + 52);
            info.masks[3] = in.le32();
        }
        if (headerSize < 52) after += count * 4;
    } else if (headerSize >= 56 && info.bitCount == 32 && info.compression == kBiRgb) {
        // A V3+ header's alpha mask counts for plain 32-bit data too.
        in.seek(start + 52);
        info.masks[3] = in.le32();
    }
    info.paletteAt = after;
    return !in.failed();
}

bool ReadPalette(std::span<const uint8_t> file, const BmpInfo& info, PackedDib& dib) {
    const uint32_t full = 1u << info.bitCount;
    const uint32_t n = (info.colours == 0 || info.colours > full) ? full : info.colours;
    ByteCursor in(file, info.paletteAt);
    auto pal = dib.palette();
    for (uint32_t i = 0; i < pal.size(); ++i) pal[i] = Rgbq{0, 0, 0, 0};
    for (uint32_t i = 0; i < n; ++i) {
        const uint8_t* p = in.take(info.paletteEntrySize);
        if (!p) return i >= 2;  // some writers cut the table short; two entries still make sense
        pal[i] = Rgbq{p[0], p[1], p[2], 0};
    }
    return true;
}

// Run-length data for 4 and 8 bits: counted runs, absolute runs and the escapes for end
// of line, end of picture and skips. Pixels outside the picture are dropped.
bool DecodeRle(ByteCursor& in, PackedDib& dib, bool fourBit) {
    const int w = dib.width(), h = dib.height();
    int x = 0, line = 0;  // line counts from the bottom, as the file stores it
    auto put = [&](unsigned index) {
        if (x < w && line < h) PutIndex(dib.row(h - 1 - line), fourBit ? 4 : 8, x, index);
        ++x;
    };
    while (!in.failed() && line < h) {
        const uint8_t count = in.u8();
        const uint8_t value = in.u8();
        if (in.failed()) break;
        if (count > 0) {
            for (int i = 0; i < count && x < w; ++i) put(fourBit ? ((i & 1) ? value & 15 : value >> 4) : value);
            continue;
        }
        if (value == 0) {
            x = 0, ++line;
        } else if (value == 1) {
            return true;
        } else if (value == 2) {
            x += in.u8();
            line += in.u8();
        } else {
            const size_t bytes = fourBit ? (value + 1u) / 2 : value;
            const uint8_t* p = in.take(bytes + (bytes & 1));
            if (!p) break;
            for (int i = 0; i < value; ++i) put(fourBit ? ((i & 1) ? p[i / 2] & 15 : p[i / 2] >> 4) : p[i]);
        }
    }
    // A stream that stops before its end-of-picture code or its last line is truncated.
    return line >= h;
}

std::optional<PackedDib> ReadTrueColour(ByteCursor& in, const BmpInfo& info, size_t inputBytes) {
    const int w = static_cast<int>(info.width), h = static_cast<int>(info.height);
    const int bpp = info.bitCount;
    const size_t stride = DibStride(w, bpp);
    const uint8_t* bits = in.take(stride * static_cast<size_t>(h));
    if (!bits) return std::nullopt;
    auto srcRow = [&](int y) { return bits + stride * static_cast<size_t>(info.topDown ? y : h - 1 - y); };

    if (bpp == 24) {
        PackedDib dib = NewImage(w, h, 24, inputBytes);
        if (dib.empty()) return std::nullopt;
        for (int y = 0; y < h; ++y) std::memcpy(dib.row(y), srcRow(y), stride);
        return dib;
    }
    uint32_t masks[4];
    std::memcpy(masks, info.masks, sizeof masks);
    const bool fieldMasks = info.compression == kBiBitfields || info.compression == kBiAlphaBitfields;
    if (!fieldMasks) {
        masks[0] = bpp == 16 ? 0x7c00 : 0xff0000;
        masks[1] = bpp == 16 ? 0x03e0 : 0x00ff00;
        masks[2] = bpp == 16 ? 0x001f : 0x0000ff;
    }
    // Plain 32-bit files often leave the fourth byte zero: that is "no alpha", not
    // "transparent", so alpha counts only when some pixel has it set.
    bool useAlpha = false;
    if (masks[3] != 0) {
        for (int y = 0; y < h && !useAlpha; ++y)
            for (int x = 0; x < w && !useAlpha; ++x) {
                const uint32_t v = bpp == 16 ? ReadLe16(srcRow(y) + x * 2) : ReadLe32(srcRow(y) + x * 4);
                useAlpha = (v & masks[3]) != 0;
            }
    } else if (bpp == 32 && !fieldMasks) {
        masks[3] = 0xff000000u;
        for (int y = 0; y < h && !useAlpha; ++y)
            for (int x = 0; x < w && !useAlpha; ++x) useAlpha = srcRow(y)[x * 4 + 3] != 0;
    }
    const Channel r(masks[0]), g(masks[1]), b(masks[2]), a(masks[3]);
    PackedDib dib = NewImage(w, h, 32, inputBytes);
    if (dib.empty()) return std::nullopt;
    for (int y = 0; y < h; ++y) {
        const uint8_t* s = srcRow(y);
        uint8_t* d = dib.row(y);
        for (int x = 0; x < w; ++x) {
            const uint32_t v = bpp == 16 ? ReadLe16(s + x * 2) : ReadLe32(s + x * 4);
            PutBgra(d, x, r.read(v), g.read(v), b.read(v), useAlpha ? a.read(v) : 255);
        }
    }
    return DropOpaqueAlpha(std::move(dib));
}

}  // namespace

std::optional<PackedDib> ReadBmp(std::span<const uint8_t> file) {
    ByteCursor in(file);
    if (in.u8() != 'B' || in.u8() != 'M') return std::nullopt;
    in.skip(8);
    const uint32_t bitsOffset = in.le32();
    BmpInfo info;
    if (!ParseInfo(in, info)) return std::nullopt;
    const int bpp = info.bitCount;
    if (!PlausibleSize(info.width, info.height, file.size())) return std::nullopt;
    const bool rle = info.compression == kBiRle8 || info.compression == kBiRle4;
    if (rle && (info.topDown || bpp != (info.compression == kBiRle8 ? 8 : 4))) return std::nullopt;
    if (!rle && info.compression != kBiRgb && info.compression != kBiBitfields &&
        info.compression != kBiAlphaBitfields)
        return std::nullopt;

    // Pixel data normally starts at the offset the file header gives; a zero or
    // impossible offset falls back to right after the colour table.
    size_t dataAt = bitsOffset;
    if (bpp <= 8) {
        const uint32_t full = 1u << bpp;
        const uint32_t n = (info.colours == 0 || info.colours > full) ? full : info.colours;
        const size_t tableEnd = info.paletteAt + n * info.paletteEntrySize;
        if (dataAt < info.paletteAt || dataAt >= file.size()) dataAt = tableEnd;
    } else if (dataAt < info.paletteAt || dataAt >= file.size()) {
        dataAt = info.paletteAt;
    }
    ByteCursor data(file, dataAt);
    if (data.failed()) return std::nullopt;

    if (bpp == 1 || bpp == 4 || bpp == 8) {
        PackedDib dib = NewImage(info.width, info.height, bpp, file.size());
        if (dib.empty() || !ReadPalette(file, info, dib)) return std::nullopt;
        if (rle) {
            if (!DecodeRle(data, dib, bpp == 4)) return std::nullopt;
            return dib;
        }
        const size_t stride = dib.stride();
        const uint8_t* bits = data.take(stride * static_cast<size_t>(dib.height()));
        if (!bits) return std::nullopt;
        const int h = dib.height();
        for (int y = 0; y < h; ++y)
            std::memcpy(dib.row(y), bits + stride * static_cast<size_t>(info.topDown ? y : h - 1 - y), stride);
        return dib;
    }
    if (bpp == 16 || bpp == 24 || bpp == 32) return ReadTrueColour(data, info, file.size());
    return std::nullopt;
}

bool LooksLikeBmp(std::span<const uint8_t> head) {
    if (head.size() < 18 || head[0] != 'B' || head[1] != 'M') return false;
    switch (ReadLe32(head.data() + 14)) {
    case 12: case 16: case 40: case 52: case 56: case 64: case 108: case 124: return true;
    default: return false;
    }
}

}  // namespace lx
