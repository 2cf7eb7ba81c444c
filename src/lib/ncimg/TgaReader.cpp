#include "TgaReader.h"

#include "ImageLoadSupport.h"

#include <cstring>

namespace lx {
namespace {

struct TgaHeader {
    uint8_t idLength, mapType, imageType;
    uint16_t mapFirst, mapLength;
    uint8_t mapEntryBits;
    uint16_t width, height;
    uint8_t pixelBits, descriptor;
};

TgaHeader ParseHeader(ByteCursor& in) {
    TgaHeader h;
    h.idLength = in.u8();
    h.mapType = in.u8();
    h.imageType = in.u8();
    h.mapFirst = in.le16();
    h.mapLength = in.le16();
    h.mapEntryBits = in.u8();
    in.skip(4);  // x and y origin: screen placement only
    h.width = in.le16();
    h.height = in.le16();
    h.pixelBits = in.u8();
    h.descriptor = in.u8();
    return h;
}

bool IsMapped(const TgaHeader& h) { return (h.imageType & 7) == 1; }
bool IsGrey(const TgaHeader& h) { return (h.imageType & 7) == 3; }
bool IsRle(const TgaHeader& h) { return h.imageType & 8; }

bool Consistent(const TgaHeader& h) {
    const int base = h.imageType & ~8;
    if (base < 1 || base > 3 || h.mapType > 1 || (h.descriptor & 0xc0) != 0) return false;
    if (h.width == 0 || h.height == 0) return false;
    if (h.mapType == 1 && h.mapEntryBits != 15 && h.mapEntryBits != 16 && h.mapEntryBits != 24 &&
        h.mapEntryBits != 32)
        return false;
    if (IsMapped(h)) return h.mapType == 1 && h.pixelBits == 8;
    if (IsGrey(h)) return h.pixelBits == 8;
    return h.pixelBits == 15 || h.pixelBits == 16 || h.pixelBits == 24 || h.pixelBits == 32;
}

// One pixel of 2, 3 or 4 bytes (or a colour-map entry) as 0xAARRGGBB.
uint32_t ColourFrom(const uint8_t* p, int bits) {
    if (bits == 15 || bits == 16) {
        const unsigned v = ReadLe16(p);
        const unsigned r = (v >> 10) & 31, g = (v >> 5) & 31, b = v & 31;
        return 0xff000000u | ((r * 255 / 31) << 16) | ((g * 255 / 31) << 8) | (b * 255 / 31);
    }
    const uint32_t a = bits == 32 ? p[3] : 255;
    return (a << 24) | (p[2] << 16) | (p[1] << 8) | p[0];
}

}  // namespace

bool LooksLikeTga(std::span<const uint8_t> head) {
    if (head.size() < 18) return false;
    ByteCursor in(head);
    return Consistent(ParseHeader(in));
}

bool HasTgaFooter(std::span<const uint8_t> tail) {
    static const char kSignature[] = "TRUEVISION-XFILE.";  // followed by its NUL
    return tail.size() >= 26 && std::memcmp(tail.data() + tail.size() - 18, kSignature, 18) == 0;
}

std::optional<PackedDib> ReadTga(std::span<const uint8_t> file) {
    ByteCursor in(file);
    const TgaHeader h = ParseHeader(in);
    if (in.failed() || !Consistent(h)) return std::nullopt;
    in.skip(h.idLength);

    const int mapBytes = (h.mapEntryBits + 7) / 8;
    uint32_t map[256] = {};
    if (h.mapType == 1) {
        for (int i = 0; i < h.mapLength; ++i) {
            const uint8_t* p = in.take(mapBytes);
            if (!p) return std::nullopt;
            const int slot = h.mapFirst + i;
            if (slot < 256) map[slot] = ColourFrom(p, h.mapEntryBits);
        }
    }
    const bool indexed = IsMapped(h) || IsGrey(h);
    // 32-bit pixels carry alpha only when the descriptor says they have attribute bits.
    const bool alpha = h.pixelBits == 32 && (h.descriptor & 15) != 0;
    PackedDib dib = NewImage(h.width, h.height, indexed ? 8 : 32, file.size());
    if (dib.empty()) return std::nullopt;
    if (IsMapped(h)) {
        auto pal = dib.palette();
        for (int i = 0; i < 256; ++i)
            pal[i] = Rgbq{static_cast<uint8_t>(map[i]), static_cast<uint8_t>(map[i] >> 8),
                          static_cast<uint8_t>(map[i] >> 16), 0};
    }

    const int w = h.width, ht = h.height;
    const bool topOrigin = h.descriptor & 0x20, rightOrigin = h.descriptor & 0x10;
    const int pixelBytes = (h.pixelBits + 7) / 8;
    const int64_t total = static_cast<int64_t>(w) * ht;
    auto store = [&](int64_t i, const uint8_t* p) {
        const int fileRow = static_cast<int>(i / w), fileCol = static_cast<int>(i % w);
        uint8_t* row = dib.row(topOrigin ? fileRow : ht - 1 - fileRow);
        const int x = rightOrigin ? w - 1 - fileCol : fileCol;
        if (indexed) {
            row[x] = p[0];
            return;
        }
        const uint32_t c = ColourFrom(p, h.pixelBits);
        PutBgra(row, x, c >> 16, c >> 8, c, alpha ? c >> 24 : 255);
    };

    int64_t i = 0;
    if (!IsRle(h)) {
        const uint8_t* p = in.take(static_cast<size_t>(total) * pixelBytes);
        if (!p) return std::nullopt;
        for (; i < total; ++i) store(i, p + i * pixelBytes);
    } else {
        // Packets may run across row ends; only the picture's end stops them.
        while (i < total) {
            const uint8_t packet = in.u8();
            const int count = (packet & 0x7f) + 1;
            if (packet & 0x80) {
                const uint8_t* p = in.take(pixelBytes);
                if (!p) break;
                for (int k = 0; k < count && i < total; ++k) store(i++, p);
            } else {
                const uint8_t* p = in.take(static_cast<size_t>(count) * pixelBytes);
                if (!p) break;
                for (int k = 0; k < count && i < total; ++k) store(i++, p + k * pixelBytes);
            }
        }
        if (i < total) return std::nullopt;
    }
    if (indexed) return dib;
    return DropOpaqueAlpha(std::move(dib));
}

}  // namespace lx
