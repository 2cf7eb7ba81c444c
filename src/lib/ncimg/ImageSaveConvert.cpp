#include "ImageSaveConvert.h"

#include <cstring>

namespace lx {

std::optional<PackedDib> ConvertDepth(const PackedDib& dib, int bitCount) {
    if (dib.empty() || (bitCount != 24 && bitCount != 32)) return std::nullopt;
    PackedDib out = PackedDib::Create(dib.width(), dib.height(), bitCount);
    if (out.empty()) return std::nullopt;
    const bool keepAlpha = HasUsableAlpha(dib);
    const int w = dib.width(), h = dib.height();
    for (int y = 0; y < h; ++y) {
        uint8_t* d = out.row(y);
        for (int x = 0; x < w; ++x) {
            const uint32_t p = dib.pixel(x, y);
            uint8_t* q = d + static_cast<size_t>(x) * (bitCount / 8);
            q[0] = p & 0xff, q[1] = (p >> 8) & 0xff, q[2] = (p >> 16) & 0xff;
            if (bitCount == 32) q[3] = keepAlpha ? static_cast<uint8_t>(p >> 24) : 255;
        }
    }
    return out;
}

PackedDib CreateBlankImage(int width, int height, uint32_t fillColour) {
    PackedDib dib = PackedDib::Create(width, height, 24);
    if (dib.empty()) return dib;
    const uint8_t r = fillColour & 0xff, g = (fillColour >> 8) & 0xff, b = (fillColour >> 16) & 0xff;
    uint8_t* top = dib.row(0);
    for (int x = 0; x < width; ++x) top[x * 3] = b, top[x * 3 + 1] = g, top[x * 3 + 2] = r;
    for (int y = 1; y < height; ++y) std::memcpy(dib.row(y), top, dib.stride());
    return dib;
}

PackedDib WritableForm(const PackedDib& dib) {
    const int bpp = dib.bitCount();
    const bool plain = dib.compression() == kBiRgb &&
                       (bpp == 1 || bpp == 4 || bpp == 8 || bpp == 24 || bpp == 32);
    if (dib.empty() || plain) return dib;
    return ConvertDepth(dib, 24).value_or(PackedDib());
}

PackedDib WidenToIndex8(const PackedDib& dib) {
    if (dib.bitCount() == 8 || dib.bitCount() > 8 || dib.empty()) return dib;
    PackedDib out = PackedDib::Create(dib.width(), dib.height(), 8);
    const auto from = dib.palette();
    auto to = out.palette();
    for (size_t i = 0; i < to.size(); ++i) to[i] = i < from.size() ? from[i] : Rgbq{};
    const int bpp = dib.bitCount();
    for (int y = 0; y < dib.height(); ++y) {
        const uint8_t* s = dib.row(y);
        uint8_t* d = out.row(y);
        for (int x = 0; x < dib.width(); ++x)
            d[x] = bpp == 1 ? (s[x >> 3] >> (7 - (x & 7))) & 1 : (s[x >> 1] >> ((x & 1) ? 0 : 4)) & 15;
    }
    return out;
}

bool HasGreyRamp(const PackedDib& dib) {
    if (dib.bitCount() != 8 || dib.paletteSize() != 256) return false;
    const auto pal = dib.palette();
    for (int i = 0; i < 256; ++i)
        if (pal[i].r != i || pal[i].g != i || pal[i].b != i) return false;
    return true;
}

bool HasUsableAlpha(const PackedDib& dib) {
    if (dib.empty() || dib.bitCount() != 32 || dib.compression() != kBiRgb) return false;
    bool anySet = false, anyTranslucent = false;
    for (int y = 0; y < dib.height(); ++y) {
        const uint8_t* r = dib.row(y);
        for (int x = 0; x < dib.width(); ++x) {
            anySet |= r[x * 4 + 3] != 0;
            anyTranslucent |= r[x * 4 + 3] != 255;
        }
    }
    return anySet && anyTranslucent;
}

}  // namespace lx
