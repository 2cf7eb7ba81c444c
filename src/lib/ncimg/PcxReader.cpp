#include "PcxReader.h"

#include "ImageLoadSupport.h"

#include <vector>

namespace lx {
namespace {

constexpr size_t kHeaderSize = 128;

// The 16-entry palette in the header; a header without one (all zero) means the default
// black and white of monochrome files.
void HeaderPalette(std::span<const uint8_t> file, PackedDib& dib, int entries) {
    const uint8_t* p = file.data() + 16;
    bool allZero = true;
    for (int i = 0; i < entries * 3; ++i) allZero &= p[i] == 0;
    auto pal = dib.palette();
    for (int i = 0; i < entries && i < static_cast<int>(pal.size()); ++i) {
        if (allZero && entries == 2) {
            const uint8_t v = i ? 255 : 0;
            pal[i] = Rgbq{v, v, v, 0};
        } else {
            pal[i] = Rgbq{p[i * 3 + 2], p[i * 3 + 1], p[i * 3], 0};
        }
    }
}

}  // namespace

std::optional<PackedDib> ReadPcx(std::span<const uint8_t> file) {
    if (file.size() < kHeaderSize || file[0] != 0x0a || file[2] > 1) return std::nullopt;
    ByteCursor in(file, 3);
    const int bits = in.u8();
    const int xMin = in.le16(), yMin = in.le16(), xMax = in.le16(), yMax = in.le16();
    const bool rle = file[2] == 1;
    const int planes = file[65];
    const size_t bytesPerLine = ReadLe16(file.data() + 66);
    const int64_t w = int64_t{xMax} - xMin + 1, h = int64_t{yMax} - yMin + 1;
    if (w <= 0 || h <= 0 || bytesPerLine * 8 < static_cast<size_t>(w) * bits) return std::nullopt;

    int outBits = 0;
    if (bits == 1 && planes >= 1 && planes <= 4) outBits = planes == 1 ? 1 : 4;
    else if (bits == 4 && planes == 1) outBits = 4;
    else if (bits == 8 && planes == 1) outBits = 8;
    else if (bits == 8 && (planes == 3 || planes == 4)) outBits = 32;
    else return std::nullopt;
    PackedDib dib = NewImage(w, h, outBits, file.size());
    if (dib.empty()) return std::nullopt;

    if (outBits == 1 || outBits == 4) {
        HeaderPalette(file, dib, outBits == 1 ? 2 : 16);
    } else if (outBits == 8) {
        // The 256-colour table follows a 0x0c marker at the very end. Version 5 files must
        // have it (a file without it was cut short); older ones are grey without it.
        if (file.size() >= kHeaderSize + 769 && file[file.size() - 769] == 0x0c) {
            const uint8_t* p = file.data() + file.size() - 768;
            auto pal = dib.palette();
            for (int i = 0; i < 256; ++i) pal[i] = Rgbq{p[i * 3 + 2], p[i * 3 + 1], p[i * 3], 0};
        } else if (file[1] >= 5) {
            return std::nullopt;
        }
    }

    const size_t lineBytes = bytesPerLine * planes;
    std::vector<uint8_t> line(lineBytes);
    in.seek(kHeaderSize);
    const int width = static_cast<int>(w);
    // A run may carry over into the next line: the count left over is kept between lines.
    int runLeft = 0;
    uint8_t runValue = 0;
    for (int y = 0; y < dib.height(); ++y) {
        for (size_t i = 0; i < lineBytes; ++i) {
            if (!rle) {
                line[i] = in.u8();
                continue;
            }
            if (runLeft == 0) {
                const uint8_t b = in.u8();
                if ((b & 0xc0) == 0xc0) runLeft = b & 0x3f, runValue = in.u8();
                else runLeft = 1, runValue = b;
                if (runLeft == 0) { --i; continue; }  // an empty run: nothing to place
            }
            line[i] = runValue;
            --runLeft;
        }
        if (in.failed()) return std::nullopt;
        uint8_t* row = dib.row(y);
        if (outBits == 32) {
            for (int x = 0; x < width; ++x)
                PutBgra(row, x, line[x], line[bytesPerLine + x], line[2 * bytesPerLine + x],
                        planes == 4 ? line[3 * bytesPerLine + x] : 255);
        } else if (bits == 1 && planes > 1) {
            for (int x = 0; x < width; ++x) {
                unsigned index = 0;
                for (int p = 0; p < planes; ++p)
                    index |= ((line[p * bytesPerLine + (x >> 3)] >> (7 - (x & 7))) & 1u) << p;
                PutIndex(row, 4, x, index);
            }
        } else {
            const size_t used = (static_cast<size_t>(width) * bits + 7) / 8;
            for (size_t i = 0; i < used; ++i) row[i] = line[i];
            // Bits past the width stay zero so the row padding is clean.
            if (const int spare = static_cast<int>(used * 8 - static_cast<size_t>(width) * bits); spare > 0)
                row[used - 1] &= static_cast<uint8_t>(0xff << spare);
        }
    }
    if (outBits == 32) return DropOpaqueAlpha(std::move(dib));
    return dib;
}

bool LooksLikePcx(std::span<const uint8_t> head) {
    if (head.size() < 128 || head[0] != 0x0a || head[2] > 1) return false;
    const uint8_t version = head[1], bits = head[3], planes = head[65];
    const bool versionOk = version == 0 || version == 2 || version == 3 || version == 4 || version == 5;
    const bool bitsOk = bits == 1 || bits == 2 || bits == 4 || bits == 8;
    return versionOk && bitsOk && planes >= 1 && planes <= 4;
}

}  // namespace lx
