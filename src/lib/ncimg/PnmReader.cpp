#include "PnmReader.h"

#include "ImageLoadSupport.h"

#include <cstring>

namespace lx {
namespace {

bool IsSpace(uint8_t c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }

// Header and text-sample tokens: unsigned decimal numbers between blanks and "#" comments.
// Returns false at the end of data or on anything that is not a number.
bool ReadNumber(ByteCursor& in, uint32_t& value) {
    for (;;) {
        if (in.atEnd()) return false;
        const uint8_t c = in.u8();
        if (c == '#') {
            while (!in.atEnd() && in.u8() != '\n') {}
        } else if (!IsSpace(c)) {
            in.seek(in.pos() - 1);
            break;
        }
    }
    uint64_t v = 0;
    int digits = 0;
    while (!in.atEnd()) {
        const uint8_t c = in.u8();
        if (c < '0' || c > '9') {
            in.seek(in.pos() - 1);
            break;
        }
        v = v * 10 + (c - '0');
        if (v > 0xffffffffu) return false;
        ++digits;
    }
    value = static_cast<uint32_t>(v);
    return digits > 0;
}

// P1 allows bits without blanks between them ("0110"), so they are read one character at a time.
bool ReadTextBit(ByteCursor& in, uint32_t& bit) {
    while (!in.atEnd()) {
        const uint8_t c = in.u8();
        if (c == '0' || c == '1') { bit = c - '0'; return true; }
        if (c == '#') { while (!in.atEnd() && in.u8() != '\n') {} continue; }
        if (!IsSpace(c)) return false;
    }
    return false;
}

}  // namespace

std::optional<PackedDib> ReadPnm(std::span<const uint8_t> file) {
    if (file.size() < 3 || file[0] != 'P' || file[1] < '1' || file[1] > '6') return std::nullopt;
    const int kind = file[1] - '0';
    const bool text = kind <= 3;
    const bool bitmap = kind == 1 || kind == 4;
    const int channels = (kind == 3 || kind == 6) ? 3 : 1;
    ByteCursor in(file, 2);
    uint32_t w = 0, h = 0, maxValue = 1;
    if (!ReadNumber(in, w) || !ReadNumber(in, h)) return std::nullopt;
    if (!bitmap && (!ReadNumber(in, maxValue) || maxValue == 0 || maxValue > 65535)) return std::nullopt;
    // Exactly one blank separates the header from binary samples.
    if (!text && (in.atEnd() || !IsSpace(in.u8()))) return std::nullopt;

    PackedDib dib = NewImage(w, h, bitmap ? 1 : (channels == 3 ? 24 : 8), file.size());
    if (dib.empty()) return std::nullopt;
    if (bitmap) {
        dib.palette()[0] = Rgbq{255, 255, 255, 0};
        dib.palette()[1] = Rgbq{0, 0, 0, 0};
    }
    const int width = static_cast<int>(w);
    const size_t sampleBytes = maxValue > 255 ? 2 : 1;
    for (int y = 0; y < dib.height(); ++y) {
        uint8_t* row = dib.row(y);
        if (kind == 4) {
            const size_t bytes = (w + 7) / 8;
            const uint8_t* p = in.take(bytes);
            if (!p) return std::nullopt;
            std::memcpy(row, p, bytes);
            if (w % 8) row[bytes - 1] &= static_cast<uint8_t>(0xff << (8 - w % 8));
            continue;
        }
        if (kind == 1) {
            for (int x = 0; x < width; ++x) {
                uint32_t bit = 0;
                if (!ReadTextBit(in, bit)) return std::nullopt;
                PutIndex(row, 1, x, bit);
            }
            continue;
        }
        const size_t samples = static_cast<size_t>(width) * channels;
        const uint8_t* p = text ? nullptr : in.take(samples * sampleBytes);
        if (!text && !p) return std::nullopt;
        for (size_t i = 0; i < samples; ++i) {
            uint32_t v = 0;
            if (text) {
                if (!ReadNumber(in, v)) return std::nullopt;
            } else {
                v = sampleBytes == 2 ? (p[i * 2] << 8 | p[i * 2 + 1]) : p[i];
            }
            const uint8_t s = ScaleSample(v, maxValue);
            // Pixel maps hold red, green, blue; the DIB wants blue first.
            row[channels == 3 ? (i / 3) * 3 + (2 - i % 3) : i] = s;
        }
    }
    return dib;
}

bool LooksLikePnm(std::span<const uint8_t> head) {
    return head.size() >= 3 && head[0] == 'P' && head[1] >= '1' && head[1] <= '6' &&
           (head[2] == ' ' || head[2] == '\n' || head[2] == '\r' || head[2] == '\t');
}

}  // namespace lx
