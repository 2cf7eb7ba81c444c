#include "SunReader.h"

#include "ImageLoadSupport.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace lx {
namespace {

constexpr uint32_t kMagic = 0x59a66a95;
constexpr uint32_t kTypeRle = 2, kTypeRgb = 3;

// Byte runs: 0x80 n v repeats v n+1 times, 0x80 0 is a literal 0x80, anything else is itself.
bool DecodeRuns(ByteCursor& in, std::vector<uint8_t>& out) {
    size_t filled = 0;
    while (filled < out.size()) {
        const uint8_t b = in.u8();
        if (in.failed()) return false;
        if (b != 0x80) {
            out[filled++] = b;
            continue;
        }
        const uint8_t n = in.u8();
        if (n == 0) {
            out[filled++] = 0x80;
            continue;
        }
        const uint8_t v = in.u8();
        if (in.failed()) return false;
        for (int i = 0; i <= n && filled < out.size(); ++i) out[filled++] = v;
    }
    return true;
}

}  // namespace

std::optional<PackedDib> ReadSun(std::span<const uint8_t> file) {
    ByteCursor in(file);
    if (in.be32() != kMagic) return std::nullopt;
    const uint32_t w = in.be32(), h = in.be32(), depth = in.be32();
    in.be32();  // length of the pixel data: often zero, never needed
    const uint32_t type = in.be32(), mapType = in.be32(), mapLength = in.be32();
    if (in.failed() || type > kTypeRgb || mapType > 2) return std::nullopt;
    if (depth != 1 && depth != 8 && depth != 24 && depth != 32) return std::nullopt;
    const uint8_t* map = in.take(mapLength);
    if (!map) return std::nullopt;

    const bool indexed = depth <= 8;
    PackedDib dib = NewImage(w, h, indexed ? static_cast<int>(depth) : 32, file.size());
    if (dib.empty()) return std::nullopt;
    if (indexed) {
        auto pal = dib.palette();
        const uint32_t entries = mapType == 1 ? mapLength / 3 : 0;
        if (entries > 0) {
            for (uint32_t i = 0; i < entries && i < pal.size(); ++i)
                pal[i] = Rgbq{map[2 * entries + i], map[entries + i], map[i], 0};
        } else if (depth == 1) {
            // Without a map, set bits are black.
            pal[0] = Rgbq{255, 255, 255, 0};
            pal[1] = Rgbq{0, 0, 0, 0};
        }
    }

    const size_t rowBytes = (static_cast<size_t>(w) * depth + 15) / 16 * 2;  // rows pad to 16 bits
    const size_t total = rowBytes * h;
    std::vector<uint8_t> decoded;
    const uint8_t* pixels = nullptr;
    if (type == kTypeRle) {
        decoded.resize(total);
        if (!DecodeRuns(in, decoded)) return std::nullopt;
        pixels = decoded.data();
    } else {
        pixels = in.take(total);
        if (!pixels) return std::nullopt;
    }

    const bool rgbOrder = type == kTypeRgb;
    bool alpha = false;
    if (depth == 32)
        for (size_t i = 0; i < total && !alpha; i += 4) alpha = pixels[i] != 0;
    const int width = static_cast<int>(w);
    for (int y = 0; y < dib.height(); ++y) {
        const uint8_t* s = pixels + rowBytes * y;
        uint8_t* row = dib.row(y);
        if (indexed) {
            std::memcpy(row, s, std::min(rowBytes, dib.stride()));
            if (depth == 1 && w % 8) row[(w - 1) / 8] &= static_cast<uint8_t>(0xff << (8 - w % 8));
            continue;
        }
        const int step = static_cast<int>(depth / 8);
        for (int x = 0; x < width; ++x, s += step) {
            const uint8_t* c = depth == 32 ? s + 1 : s;  // 32-bit pixels lead with the spare byte
            const uint8_t a = depth == 32 && alpha ? s[0] : 255;
            if (rgbOrder) PutBgra(row, x, c[0], c[1], c[2], a);
            else PutBgra(row, x, c[2], c[1], c[0], a);
        }
    }
    if (indexed) return dib;
    return DropOpaqueAlpha(std::move(dib));
}

}  // namespace lx
