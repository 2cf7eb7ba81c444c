#include "GifWriter.h"

#include "ImageSaveConvert.h"
#include "mif.h"

#include <algorithm>
#include <cstring>

namespace lx {
namespace {

class BitPacker {
public:
    explicit BitPacker(std::vector<uint8_t>& out) : out_(out) {}
    void put(unsigned code, int width) {
        buffer_ |= static_cast<uint32_t>(code) << bits_;
        bits_ += width;
        while (bits_ >= 8) {
            out_.push_back(static_cast<uint8_t>(buffer_));
            buffer_ >>= 8;
            bits_ -= 8;
        }
    }
    void flush() {
        if (bits_ > 0) out_.push_back(static_cast<uint8_t>(buffer_));
        buffer_ = 0, bits_ = 0;
    }

private:
    std::vector<uint8_t>& out_;
    uint32_t buffer_ = 0;
    int bits_ = 0;
};

constexpr int kMaxCode = 4095;

}  // namespace

std::vector<uint8_t> GifLzwCompress(std::span<const uint8_t> indices, int minCodeSize) {
    std::vector<uint8_t> out;
    BitPacker packer(out);
    const unsigned clear = 1u << minCodeSize, end = clear + 1;
    // Open-addressed table of (prefix code, next index) -> code; 8192 slots for 4096 codes.
    constexpr size_t kSlots = 8192;
    std::vector<uint32_t> keys(kSlots), codes(kSlots);
    std::vector<uint8_t> used(kSlots, 0);
    unsigned next = end + 1;
    int width = minCodeSize + 1;
    auto reset = [&]() {
        std::fill(used.begin(), used.end(), 0);
        next = end + 1;
        width = minCodeSize + 1;
    };
    packer.put(clear, width);
    if (indices.empty()) {
        packer.put(end, width);
        packer.flush();
        return out;
    }
    unsigned prefix = indices[0];
    for (size_t i = 1; i < indices.size(); ++i) {
        const uint8_t c = indices[i];
        const uint32_t key = (prefix << 8) | c;
        size_t slot = (key * 2654435761u) >> 19 & (kSlots - 1);
        while (used[slot] && keys[slot] != key) slot = (slot + 1) & (kSlots - 1);
        if (used[slot]) {
            prefix = codes[slot];
            continue;
        }
        packer.put(prefix, width);
        if (next <= kMaxCode) {
            used[slot] = 1, keys[slot] = key, codes[slot] = next;
            // The decoder widens its codes one code later than the encoder adds one.
            if (next == (1u << width) && width < 12) ++width;
            ++next;
        } else {
            packer.put(clear, width);
            reset();
        }
        prefix = c;
    }
    packer.put(prefix, width);
    packer.put(end, width);
    packer.flush();
    return out;
}

std::vector<uint8_t> EncodeGif(const PackedDib& source) {
    PackedDib dib = WritableForm(source);
    if (dib.empty()) return {};
    if (dib.bitCount() > 8) {
        mif image(dib);
        if (image.empty() || !image.quantize(256, kQuantizeDiffusion, nullptr)) return {};
        dib = image.createdib();
        if (dib.empty() || dib.bitCount() > 8) return {};
    }
    dib = WidenToIndex8(dib);
    const int w = dib.width(), h = dib.height();
    if (w > 65535 || h > 65535) return {};
    const auto palette = dib.palette();
    // The colour table holds 2^n entries; every index used must lie inside it.
    int tableBits = 1;
    while ((1 << tableBits) < static_cast<int>(palette.size()) && tableBits < 8) ++tableBits;
    std::vector<uint8_t> indices(static_cast<size_t>(w) * h);
    for (int y = 0; y < h; ++y) std::memcpy(indices.data() + static_cast<size_t>(y) * w, dib.row(y), w);
    for (uint8_t& i : indices)
        if (i >= (1 << tableBits)) i = 0;

    std::vector<uint8_t> out = {'G', 'I', 'F', '8', '9', 'a'};
    auto le16 = [&](unsigned v) { out.push_back(v & 0xff), out.push_back(static_cast<uint8_t>(v >> 8)); };
    le16(w), le16(h);
    out.push_back(static_cast<uint8_t>(0x80 | ((tableBits - 1) << 4) | (tableBits - 1)));
    out.push_back(0), out.push_back(0);
    for (int i = 0; i < (1 << tableBits); ++i) {
        const Rgbq q = i < static_cast<int>(palette.size()) ? palette[i] : Rgbq{};
        out.insert(out.end(), {q.r, q.g, q.b});
    }
    out.push_back(0x2c);
    le16(0), le16(0), le16(w), le16(h);
    out.push_back(0);
    const int minCodeSize = tableBits < 2 ? 2 : tableBits;
    out.push_back(static_cast<uint8_t>(minCodeSize));
    const std::vector<uint8_t> codes = GifLzwCompress(indices, minCodeSize);
    for (size_t at = 0; at < codes.size(); at += 255) {
        const size_t n = std::min<size_t>(255, codes.size() - at);
        out.push_back(static_cast<uint8_t>(n));
        out.insert(out.end(), codes.begin() + at, codes.begin() + at + n);
    }
    out.push_back(0);
    out.push_back(0x3b);
    return out;
}

}  // namespace lx
