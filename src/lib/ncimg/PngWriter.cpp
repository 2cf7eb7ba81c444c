#include "PngWriter.h"

#include "ImageSaveConvert.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace lx {
namespace {

void PutBe32(std::vector<uint8_t>& out, uint32_t v) {
    const uint8_t b[4] = {static_cast<uint8_t>(v >> 24), static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8),
                          static_cast<uint8_t>(v)};
    out.insert(out.end(), b, b + 4);
}

void PutChunk(std::vector<uint8_t>& out, std::string_view type, const uint8_t* data, size_t size) {
    PutBe32(out, static_cast<uint32_t>(size));
    const size_t typeAt = out.size();
    out.insert(out.end(), type.begin(), type.end());
    if (size) out.insert(out.end(), data, data + size);
    const uLong crc = crc32(0, out.data() + typeAt, static_cast<uInt>(size + 4));
    PutBe32(out, static_cast<uint32_t>(crc));
}

uint8_t Paeth(int a, int b, int c) {
    const int p = a + b - c, pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
    return static_cast<uint8_t>(pa <= pb && pa <= pc ? a : pb <= pc ? b : c);
}

// Writes the filtered form of `row` (with `prior` the unfiltered row above, or zeros)
// into out[1..] and the filter type into out[0]. Palette rows stay unfiltered, as
// filtering rarely helps indices.
void FilterRow(const uint8_t* row, const uint8_t* prior, size_t bytes, int bpp, bool palette, uint8_t* out,
               uint8_t* scratch) {
    if (palette) {
        out[0] = 0;
        std::memcpy(out + 1, row, bytes);
        return;
    }
    uint64_t best = UINT64_MAX;
    for (int type = 0; type < 5; ++type) {
        uint64_t sum = 0;
        for (size_t i = 0; i < bytes; ++i) {
            const int a = i >= static_cast<size_t>(bpp) ? row[i - bpp] : 0;
            const int b = prior[i];
            const int c = i >= static_cast<size_t>(bpp) ? prior[i - bpp] : 0;
            uint8_t v = row[i];
            switch (type) {
            case 1: v = static_cast<uint8_t>(v - a); break;
            case 2: v = static_cast<uint8_t>(v - b); break;
            case 3: v = static_cast<uint8_t>(v - ((a + b) >> 1)); break;
            case 4: v = static_cast<uint8_t>(v - Paeth(a, b, c)); break;
            }
            scratch[i] = v;
            sum += v < 128 ? v : 256 - v;
        }
        if (sum < best) {
            best = sum;
            out[0] = static_cast<uint8_t>(type);
            std::memcpy(out + 1, scratch, bytes);
        }
    }
}

}  // namespace

std::vector<uint8_t> EncodePng(const PackedDib& source) {
    const PackedDib dib = WritableForm(source);
    if (dib.empty()) return {};
    const int w = dib.width(), h = dib.height(), bits = dib.bitCount();
    const bool palette = bits <= 8;
    const bool alpha = bits == 32 && HasUsableAlpha(dib);
    const int channels = palette ? 1 : alpha ? 4 : 3;
    const size_t rowBytes = palette ? (static_cast<size_t>(w) * bits + 7) / 8 : static_cast<size_t>(w) * channels;

    // Rows in PNG order: top first, RGB(A) rather than BGR(A).
    std::vector<uint8_t> raw((rowBytes + 1) * h);
    std::vector<uint8_t> current(rowBytes), prior(rowBytes, 0), scratch(rowBytes);
    for (int y = 0; y < h; ++y) {
        const uint8_t* s = dib.row(y);
        if (palette) {
            std::memcpy(current.data(), s, rowBytes);
        } else {
            const int step = bits / 8;
            for (int x = 0; x < w; ++x) {
                uint8_t* d = current.data() + static_cast<size_t>(x) * channels;
                d[0] = s[x * step + 2], d[1] = s[x * step + 1], d[2] = s[x * step];
                if (alpha) d[3] = s[x * step + 3];
            }
        }
        FilterRow(current.data(), prior.data(), rowBytes, channels, palette, raw.data() + (rowBytes + 1) * y,
                  scratch.data());
        current.swap(prior);
    }
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    std::vector<uint8_t> packed(packedSize);
    if (compress2(packed.data(), &packedSize, raw.data(), static_cast<uLong>(raw.size()), 6) != Z_OK) return {};

    std::vector<uint8_t> out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    uint8_t ihdr[13];
    const uint32_t header[2] = {static_cast<uint32_t>(w), static_cast<uint32_t>(h)};
    for (int i = 0; i < 2; ++i)
        for (int k = 0; k < 4; ++k) ihdr[i * 4 + k] = static_cast<uint8_t>(header[i] >> (24 - 8 * k));
    ihdr[8] = static_cast<uint8_t>(palette ? bits : 8);
    ihdr[9] = palette ? 3 : alpha ? 6 : 2;
    ihdr[10] = ihdr[11] = ihdr[12] = 0;
    PutChunk(out, "IHDR", ihdr, sizeof ihdr);
    if (palette) {
        std::vector<uint8_t> plte;
        for (const Rgbq& q : dib.palette()) plte.insert(plte.end(), {q.r, q.g, q.b});
        PutChunk(out, "PLTE", plte.data(), plte.size());
    }
    // IDAT chunks of at most 1 MiB keep every length far from the format's 2^31 limit.
    constexpr size_t kChunk = size_t{1} << 20;
    for (size_t at = 0; at < packedSize; at += kChunk)
        PutChunk(out, "IDAT", packed.data() + at, std::min<size_t>(kChunk, packedSize - at));
    PutChunk(out, "IEND", nullptr, 0);
    return out;
}

}  // namespace lx
