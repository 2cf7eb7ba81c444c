#include "MifPixels.h"

#include <algorithm>
#include <cstring>

#include "ParallelParts.h"

namespace lx::mifpix {

void CopyPixels(const uint8_t* src, int sx, uint8_t* dst, int dx, int count, int bits) {
    if (count <= 0) return;
    if (bits >= 8) {
        const int bytes = bits / 8;
        std::memmove(dst + static_cast<size_t>(dx) * bytes, src + static_cast<size_t>(sx) * bytes,
                     static_cast<size_t>(count) * bytes);
        return;
    }
    for (int i = 0; i < count; ++i) SetRaw(dst, dx + i, bits, GetRaw(src, sx + i, bits));
}

namespace {

// A zero image of another size behind the 40-byte header and colour table of a model image;
// the header keeps the model's depth, compression and resolution.
PackedDib FromParts(std::span<const uint8_t> header, std::span<const uint8_t> table, int width, int height) {
    if (width <= 0 || height <= 0 || static_cast<int64_t>(width) * height > kMaxPixels) return {};
    const int bits = ReadLe16(header.data() + 14);
    const size_t imageBytes = DibStride(width, bits) * static_cast<size_t>(height);
    std::vector<uint8_t> bytes(kDibHeaderSize + table.size() + imageBytes, 0);
    std::copy(header.begin(), header.begin() + kDibHeaderSize, bytes.begin());
    if (!table.empty()) std::memcpy(bytes.data() + kDibHeaderSize, table.data(), table.size());
    WriteLe32(bytes.data() + 4, static_cast<uint32_t>(width));
    WriteLe32(bytes.data() + 8, static_cast<uint32_t>(height));
    WriteLe32(bytes.data() + 20, static_cast<uint32_t>(imageBytes));
    WriteLe32(bytes.data() + 32, bits <= 8 ? static_cast<uint32_t>(table.size() / 4) : 0);
    auto dib = PackedDib::FromBytes(bytes.data(), bytes.size());
    return dib ? std::move(*dib) : PackedDib{};
}

}  // namespace

PackedDib MakeLike(const PackedDib& like, int width, int height) {
    const uint8_t* bytes = like.bytes().data();
    return FromParts({bytes, kDibHeaderSize}, {bytes + kDibHeaderSize, like.bitsOffset() - kDibHeaderSize}, width, height);
}

PackedDib MakeWithPalette(int width, int height, int bits, std::span<const Rgbq> table) {
    const PackedDib model = PackedDib::Create(1, 1, bits);
    const auto entries = std::as_bytes(table);
    return FromParts({model.bytes().data(), kDibHeaderSize},
                     {reinterpret_cast<const uint8_t*>(entries.data()), entries.size()}, width, height);
}

bool IsDirect(const PackedDib& dib) {
    if (dib.compression() != kBiRgb) return false;
    return dib.bitCount() == 24 || dib.bitCount() == 32 || dib.hasGreyRamp();
}

PackedDib ConvertDirect(const PackedDib& dib, int bits) {
    PackedDib out = PackedDib::Create(dib.width(), dib.height(), bits);
    if (out.empty()) return out;
    const bool keepAlpha = dib.bitCount() == 32 && dib.compression() == kBiRgb;
    for (int y = 0; y < dib.height(); ++y) {
        uint8_t* row = out.row(y);
        for (int x = 0; x < dib.width(); ++x) {
            uint32_t c = dib.pixel(x, y);
            if (bits == 16) {
                const uint32_t r = (c >> 16) & 0xff, g = (c >> 8) & 0xff, b = c & 0xff;
                SetRaw(row, x, 16, ((r * 31 + 127) / 255) << 10 | ((g * 31 + 127) / 255) << 5 | (b * 31 + 127) / 255);
                continue;
            }
            if (bits == 32 && !keepAlpha) c |= 0xff000000u;
            SetRaw(row, x, bits, bits == 32 ? c : (c & 0xffffff));
        }
    }
    return out;
}

bool EnsureDirect(PackedDib& dib) {
    if (IsDirect(dib)) return true;
    PackedDib converted = ConvertDirect(dib, dib.bitCount() == 32 ? 32 : 24);
    if (converted.empty()) return false;
    dib = std::move(converted);
    return true;
}

bool EnsureRgb(PackedDib& dib) {
    if (dib.compression() == kBiRgb && (dib.bitCount() == 24 || dib.bitCount() == 32)) return true;
    PackedDib converted = ConvertDirect(dib, dib.bitCount() == 32 ? 32 : 24);
    if (converted.empty()) return false;
    dib = std::move(converted);
    return true;
}

const PackedDib& DirectView(const PackedDib& dib, PackedDib& holder) {
    if (IsDirect(dib)) return dib;
    holder = ConvertDirect(dib, dib.bitCount() == 32 ? 32 : 24);
    return holder;
}

NearestCache::NearestCache(std::span<const Rgbq> table) : table_(table), cells_(table.empty() ? 0 : 1 << 18, -1) {}

int NearestCache::findExact(int r, int g, int b) const {
    int best = 0;
    int bestDistance = INT32_MAX;
    for (size_t i = 0; i < table_.size(); ++i) {
        const int dr = table_[i].r - r, dg = table_[i].g - g, db = table_[i].b - b;
        const int d = dr * dr + dg * dg + db * db;
        if (d < bestDistance) {
            bestDistance = d;
            best = static_cast<int>(i);
        }
    }
    return best;
}

int NearestCache::find(int r, int g, int b) {
    if (table_.empty()) return 0;
    const int cell = ((r >> 2) << 12) | ((g >> 2) << 6) | (b >> 2);
    int16_t& slot = cells_[cell];
    if (slot < 0) slot = static_cast<int16_t>(findExact((r & ~3) + 2, (g & ~3) + 2, (b & ~3) + 2));
    return slot;
}

void WriteColour(PackedDib& dib, int x, int y, uint32_t argb, NearestCache* cache) {
    const int r = (argb >> 16) & 0xff, g = (argb >> 8) & 0xff, b = argb & 0xff;
    uint8_t* row = dib.row(y);
    const int bits = dib.bitCount();
    if (bits <= 8) {
        SetRaw(row, x, bits, static_cast<uint32_t>(cache->find(r, g, b)));
        return;
    }
    if (bits == 24 || (bits == 32 && dib.compression() == kBiRgb)) {
        SetRaw(row, x, bits, bits == 32 ? argb : (argb & 0xffffff));
        return;
    }
    uint32_t masks[3];
    dib.masks(masks[0], masks[1], masks[2]);
    const int channel[3] = {r, g, b};
    uint32_t v = 0;
    for (int i = 0; i < 3; ++i) {
        if (masks[i] == 0) continue;
        int shift = 0;
        while (!((masks[i] >> shift) & 1)) ++shift;
        const uint32_t top = masks[i] >> shift;
        v |= ((static_cast<uint32_t>(channel[i]) * top + 127) / 255 << shift) & masks[i];
    }
    SetRaw(row, x, bits, v);
}

MifRect RectFromSize(int left, int top, int width, int height) {
    if (left == 0 && top == 0 && width == 0 && height == 0) return {0, 0, INT32_MAX, INT32_MAX};
    const auto clampedAdd = [](int a, int b) {
        return static_cast<int32_t>(std::clamp<int64_t>(int64_t{a} + b, INT32_MIN, INT32_MAX));
    };
    return {left, top, clampedAdd(left, width), clampedAdd(top, height)};
}

void ParallelRows(int count, int64_t workPerRow, const std::function<void(int, int)>& fn) {
    // Below about a million units of work a second thread costs more than it saves. Whether
    // the rows are split depends on the work alone, never on the machine, so that a result
    // that depends on the split (the bands of error diffusion) is the same everywhere.
    const bool small = count < 2 || static_cast<int64_t>(count) * workPerRow < 1'000'000;
    ForEachPart(count, small ? 1 : 2, [&](int begin, int end, int) { fn(begin, end); });
}

}  // namespace lx::mifpix
