#include "PsdReader.h"

#include "ImageLoadSupport.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace lx {
namespace {

enum Mode { kBitmap = 0, kGrey = 1, kIndexed = 2, kRgb = 3, kCmyk = 4 };

// PackBits: n < 128 copies n+1 bytes, n > 128 repeats the next byte 257-n times, 128 is a no-op.
bool UnpackBits(ByteCursor& in, size_t packedBytes, uint8_t* out, size_t outBytes) {
    const size_t end = in.pos() + packedBytes;
    if (packedBytes > in.remaining()) return false;
    size_t filled = 0;
    while (in.pos() < end && filled < outBytes) {
        const uint8_t n = in.u8();
        if (n < 128) {
            const size_t count = std::min<size_t>(n + 1u, outBytes - filled);
            const uint8_t* p = in.take(count);
            if (!p) return false;
            std::memcpy(out + filled, p, count);
            filled += count;
        } else if (n > 128) {
            const uint8_t v = in.u8();
            const size_t count = std::min<size_t>(257u - n, outBytes - filled);
            std::memset(out + filled, v, count);
            filled += count;
        }
    }
    in.seek(end);
    return !in.failed();
}

// Skips one section that starts with its 32-bit length; returns its start (after the length).
size_t SkipSection(ByteCursor& in) {
    const uint32_t length = in.be32();
    const size_t start = in.pos();
    in.skip(length);
    return start;
}

}  // namespace

std::optional<PackedDib> ReadPsd(std::span<const uint8_t> file) {
    ByteCursor in(file);
    if (in.be32() != 0x38425053 || in.be16() != 1) return std::nullopt;  // "8BPS", version 1
    in.skip(6);
    const int channels = in.be16();
    const uint32_t h = in.be32(), w = in.be32();
    const int depth = in.be16(), mode = in.be16();
    if (in.failed() || channels < 1 || channels > 56) return std::nullopt;
    // Bitmap mode is one bit per pixel by definition, the other modes 8 or 16 bits; a row
    // sized from any other pairing would not fit the image made for the mode.
    if (mode == kBitmap ? depth != 1 : !(depth == 8 || depth == 16)) return std::nullopt;
    int needed = 0;
    switch (mode) {
    case kBitmap: case kGrey: case kIndexed: needed = 1; break;
    case kRgb: needed = 3; break;
    case kCmyk: needed = 4; break;
    default: return std::nullopt;
    }
    if (channels < needed) return std::nullopt;
    const size_t colourData = SkipSection(in);
    const size_t colourDataLength = in.pos() - colourData;
    SkipSection(in);  // image resources
    SkipSection(in);  // layers and masks
    const int compression = in.be16();
    if (in.failed() || compression > 1) return std::nullopt;

    // Transparency is the channel right after the colour ones, when there is one.
    const bool alpha = (mode == kGrey || mode == kRgb) && channels > needed;
    const int used = needed + (alpha ? 1 : 0);
    if (!PlausibleSize(w, h, file.size())) return std::nullopt;
    const size_t rowBytes = (static_cast<size_t>(w) * depth + 7) / 8;
    const size_t planeSize = static_cast<size_t>(w) * h;

    // Compressed data starts with the byte count of every row of every channel.
    std::vector<uint16_t> rowLengths;
    if (compression == 1) {
        rowLengths.resize(static_cast<size_t>(channels) * h);
        for (auto& n : rowLengths) n = in.be16();
        if (in.failed()) return std::nullopt;
    }
    // Each plane holds one byte per pixel (the high byte of 16-bit samples); bitmap mode
    // keeps its packed bits.
    std::vector<uint8_t> planes(static_cast<size_t>(used) * (mode == kBitmap ? rowBytes * h : planeSize));
    std::vector<uint8_t> line(rowBytes);
    for (int c = 0; c < used; ++c) {
        for (uint32_t y = 0; y < h; ++y) {
            if (compression == 1) {
                if (!UnpackBits(in, rowLengths[static_cast<size_t>(c) * h + y], line.data(), rowBytes))
                    return std::nullopt;
            } else {
                const uint8_t* p = in.take(rowBytes);
                if (!p) return std::nullopt;
                std::memcpy(line.data(), p, rowBytes);
            }
            if (mode == kBitmap) {
                std::memcpy(planes.data() + y * rowBytes, line.data(), rowBytes);
                continue;
            }
            uint8_t* out = planes.data() + c * planeSize + static_cast<size_t>(y) * w;
            const size_t step = depth / 8;
            for (uint32_t x = 0; x < w; ++x) out[x] = line[x * step];
        }
    }

    const int outBits = mode == kBitmap ? 1 : (mode == kGrey || mode == kIndexed) && !alpha ? 8 : 32;
    PackedDib dib = PackedDib::Create(static_cast<int>(w), static_cast<int>(h), outBits);
    if (dib.empty()) return std::nullopt;
    auto plane = [&](int c, uint32_t x, uint32_t y) { return planes[c * planeSize + static_cast<size_t>(y) * w + x]; };
    if (mode == kBitmap) {
        dib.palette()[0] = Rgbq{255, 255, 255, 0};  // set bits are black
        dib.palette()[1] = Rgbq{0, 0, 0, 0};
        for (uint32_t y = 0; y < h; ++y) std::memcpy(dib.row(static_cast<int>(y)), planes.data() + y * rowBytes, rowBytes);
        return dib;
    }
    if (mode == kIndexed) {
        if (colourDataLength < 768) return std::nullopt;
        const uint8_t* p = file.data() + colourData;  // 256 reds, 256 greens, 256 blues
        auto pal = dib.palette();
        for (int i = 0; i < 256; ++i) pal[i] = Rgbq{p[512 + i], p[256 + i], p[i], 0};
    }
    for (uint32_t y = 0; y < h; ++y) {
        uint8_t* row = dib.row(static_cast<int>(y));
        for (uint32_t x = 0; x < w; ++x) {
            if (outBits == 8) {
                row[x] = plane(0, x, y);
                continue;
            }
            const uint8_t a = alpha ? plane(needed, x, y) : 255;
            if (mode == kGrey) {
                PutBgra(row, static_cast<int>(x), plane(0, x, y), plane(0, x, y), plane(0, x, y), a);
            } else if (mode == kRgb) {
                PutBgra(row, static_cast<int>(x), plane(0, x, y), plane(1, x, y), plane(2, x, y), a);
            } else {
                // CMYK samples are stored inverted (255 = no ink), so each colour is the
                // product of its own and the black plane.
                const unsigned k = plane(3, x, y);
                PutBgra(row, static_cast<int>(x), static_cast<uint8_t>(plane(0, x, y) * k / 255),
                        static_cast<uint8_t>(plane(1, x, y) * k / 255), static_cast<uint8_t>(plane(2, x, y) * k / 255), 255);
            }
        }
    }
    return DropOpaqueAlpha(std::move(dib));
}

}  // namespace lx
