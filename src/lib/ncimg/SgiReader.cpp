#include "SgiReader.h"

#include "ImageLoadSupport.h"

#include <algorithm>
#include <vector>

namespace lx {
namespace {

constexpr size_t kHeaderSize = 512;

// One run-length row: a counter byte (or 16-bit word) whose high bit means "copy the next
// n values", else "repeat the next value n times"; a zero counter ends the row.
bool DecodeRleRow(ByteCursor& in, int bytesPerSample, std::vector<uint16_t>& out) {
    size_t filled = 0;
    auto next = [&]() -> uint16_t { return bytesPerSample == 2 ? in.be16() : in.u8(); };
    for (;;) {
        const uint16_t code = next();
        if (in.failed()) return false;
        const size_t count = code & 0x7f;
        if (count == 0) break;
        if (count > out.size() - filled) return false;
        if (code & 0x80) {
            for (size_t i = 0; i < count; ++i) out[filled++] = next();
        } else {
            const uint16_t v = next();
            for (size_t i = 0; i < count; ++i) out[filled++] = v;
        }
    }
    return !in.failed();
}

}  // namespace

std::optional<PackedDib> ReadSgi(std::span<const uint8_t> file) {
    ByteCursor in(file);
    if (in.be16() != 474) return std::nullopt;
    const int storage = in.u8(), bytesPerSample = in.u8();
    const int dimension = in.be16();
    const int w = in.be16();
    const int h = dimension == 1 ? 1 : in.be16();
    if (dimension == 1) in.be16();
    int channels = in.be16();
    if (in.failed() || file.size() < kHeaderSize || storage > 1 || (bytesPerSample != 1 && bytesPerSample != 2) ||
        dimension < 1 || dimension > 3)
        return std::nullopt;
    if (dimension < 3) channels = 1;
    if (channels < 1) return std::nullopt;
    const int used = channels > 4 ? 4 : channels;
    const bool colour = used >= 3, alpha = used == 2 || used == 4;
    PackedDib dib = NewImage(w, h, alpha ? 32 : (colour ? 24 : 8), file.size());
    if (dib.empty()) return std::nullopt;

    const size_t tableAt = kHeaderSize;  // row start offsets, then row lengths (unused)
    std::vector<uint16_t> samples(static_cast<size_t>(w));
    const int pixelBytes = dib.bitCount() / 8;
    for (int c = 0; c < used; ++c) {
        for (int line = 0; line < h; ++line) {  // line 0 is the bottom row
            const size_t rowIndex = static_cast<size_t>(c) * h + line;
            if (storage == 0) {
                ByteCursor at(file, kHeaderSize + rowIndex * w * bytesPerSample);
                for (int x = 0; x < w; ++x) samples[x] = bytesPerSample == 2 ? at.be16() : at.u8();
                if (at.failed()) return std::nullopt;
            } else {
                ByteCursor table(file, tableAt + rowIndex * 4);
                ByteCursor at(file, table.be32());
                if (table.failed() || at.failed()) return std::nullopt;
                std::fill(samples.begin(), samples.end(), 0);
                if (!DecodeRleRow(at, bytesPerSample, samples)) return std::nullopt;
            }
            uint8_t* row = dib.row(h - 1 - line);
            // Channel order red, green, blue, alpha goes to byte 2, 1, 0, 3 of BGRA.
            int slot = c;
            if (colour && c < 3) slot = 2 - c;
            else if (!colour && c == 0) slot = 0;
            else slot = 3;
            for (int x = 0; x < w; ++x) {
                const uint8_t v = bytesPerSample == 2 ? ScaleSample(samples[x], 65535) : static_cast<uint8_t>(samples[x]);
                if (!colour && alpha && c == 0) {
                    row[x * 4] = row[x * 4 + 1] = row[x * 4 + 2] = v;
                } else {
                    row[x * pixelBytes + slot] = v;
                }
            }
        }
    }
    if (alpha) return DropOpaqueAlpha(std::move(dib));
    return dib;
}

bool LooksLikeSgi(std::span<const uint8_t> head) {
    return head.size() >= 4 && head[0] == 0x01 && head[1] == 0xda && head[2] <= 1 && (head[3] == 1 || head[3] == 2);
}

}  // namespace lx
