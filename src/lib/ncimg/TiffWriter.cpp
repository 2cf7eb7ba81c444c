#include "TiffWriter.h"

#include "ImageSaveConvert.h"

#include <algorithm>
#include <cstring>

namespace lx {
namespace {

enum FieldType : uint16_t { kShort = 3, kLong = 4, kRational = 5 };

struct Field {
    uint16_t tag;
    uint16_t type;
    std::vector<uint32_t> values;  // rationals as numerator, denominator pairs
};

size_t TypeSize(uint16_t type) { return type == kShort ? 2 : type == kLong ? 4 : 8; }

size_t ValueBytes(const Field& f) {
    return f.type == kRational ? f.values.size() / 2 * 8 : f.values.size() * TypeSize(f.type);
}

void PutValues(uint8_t* p, const Field& f) {
    for (size_t i = 0; i < f.values.size(); ++i) {
        if (f.type == kShort) WriteLe16(p + i * 2, static_cast<uint16_t>(f.values[i]));
        else WriteLe32(p + i * 4, f.values[i]);
    }
}

bool IsBlackAndWhite(const PackedDib& dib) {
    const auto pal = dib.palette();
    return dib.bitCount() == 1 && pal.size() == 2 && pal[0] == Rgbq{0, 0, 0, 0} && pal[1] == Rgbq{255, 255, 255, 0};
}

}  // namespace

std::vector<uint8_t> EncodeTiff(const PackedDib& source) {
    const PackedDib dib = WritableForm(source);
    if (dib.empty()) return {};
    const int w = dib.width(), h = dib.height(), bits = dib.bitCount();
    const bool palette = bits <= 8;
    const bool grey = HasGreyRamp(dib) || IsBlackAndWhite(dib);
    const bool alpha = HasUsableAlpha(dib);
    const int samples = palette ? 1 : alpha ? 4 : 3;
    const int sampleBits = palette ? bits : 8;
    const size_t rowBytes = palette ? (static_cast<size_t>(w) * bits + 7) / 8 : static_cast<size_t>(w) * samples;
    const uint32_t rowsPerStrip = static_cast<uint32_t>(std::max<size_t>(1, 65536 / std::max<size_t>(rowBytes, 1)));
    const uint32_t strips = (static_cast<uint32_t>(h) + rowsPerStrip - 1) / rowsPerStrip;

    std::vector<Field> fields = {
        {256, kLong, {static_cast<uint32_t>(w)}},
        {257, kLong, {static_cast<uint32_t>(h)}},
        {258, kShort, std::vector<uint32_t>(samples, sampleBits)},
        {259, kShort, {1}},
        {262, kShort, {grey ? 1u : palette ? 3u : 2u}},
        {273, kLong, std::vector<uint32_t>(strips, 0)},
        {277, kShort, {static_cast<uint32_t>(samples)}},
        {278, kLong, {rowsPerStrip}},
        {279, kLong, std::vector<uint32_t>(strips, 0)},
        {282, kRational, {72, 1}},
        {283, kRational, {72, 1}},
        {284, kShort, {1}},
        {296, kShort, {2}},
    };
    if (palette && !grey) {
        // Red, then green, then blue, each 2^bits entries scaled to 16 bits.
        const size_t n = size_t{1} << bits;
        std::vector<uint32_t> map(3 * n, 0);
        const auto pal = dib.palette();
        for (size_t i = 0; i < n && i < pal.size(); ++i) {
            map[i] = pal[i].r * 257u;
            map[n + i] = pal[i].g * 257u;
            map[2 * n + i] = pal[i].b * 257u;
        }
        fields.push_back({320, kShort, std::move(map)});
    }
    if (alpha) fields.push_back({338, kShort, {2}});

    // Layout: header, IFD, values too long for their entries, then the strips.
    const size_t ifdAt = 8;
    size_t extraAt = ifdAt + 2 + fields.size() * 12 + 4;
    size_t extraBytes = 0;
    for (const Field& f : fields)
        if (ValueBytes(f) > 4) extraBytes += (ValueBytes(f) + 1) & ~size_t{1};
    size_t stripAt = extraAt + extraBytes;
    for (uint32_t s = 0; s < strips; ++s) {
        const uint32_t rows = std::min<uint32_t>(rowsPerStrip, static_cast<uint32_t>(h) - s * rowsPerStrip);
        fields[5].values[s] = static_cast<uint32_t>(stripAt);
        fields[8].values[s] = static_cast<uint32_t>(rows * rowBytes);
        stripAt += rows * rowBytes;
    }
    if (stripAt > UINT32_MAX) return {};

    std::vector<uint8_t> out(stripAt, 0);
    out[0] = 'I', out[1] = 'I';
    WriteLe16(&out[2], 42);
    WriteLe32(&out[4], static_cast<uint32_t>(ifdAt));
    WriteLe16(&out[ifdAt], static_cast<uint16_t>(fields.size()));
    for (size_t i = 0; i < fields.size(); ++i) {
        const Field& f = fields[i];
        uint8_t* e = &out[ifdAt + 2 + i * 12];
        WriteLe16(e, f.tag);
        WriteLe16(e + 2, f.type);
        WriteLe32(e + 4, static_cast<uint32_t>(f.type == kRational ? f.values.size() / 2 : f.values.size()));
        if (ValueBytes(f) <= 4) {
            PutValues(e + 8, f);
            continue;
        }
        WriteLe32(e + 8, static_cast<uint32_t>(extraAt));
        PutValues(&out[extraAt], f);
        extraAt += (ValueBytes(f) + 1) & ~size_t{1};
    }
    uint8_t* pixels = &out[fields[5].values[0]];
    for (int y = 0; y < h; ++y, pixels += rowBytes) {
        const uint8_t* s = dib.row(y);
        if (palette) {
            std::memcpy(pixels, s, rowBytes);
            continue;
        }
        const int step = bits / 8;
        for (int x = 0; x < w; ++x) {
            uint8_t* d = pixels + static_cast<size_t>(x) * samples;
            d[0] = s[x * step + 2], d[1] = s[x * step + 1], d[2] = s[x * step];
            if (alpha) d[3] = s[x * step + 3];
        }
    }
    return out;
}

}  // namespace lx
