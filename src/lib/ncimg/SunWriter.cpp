#include "SunWriter.h"

#include "ImageSaveConvert.h"

#include <cstring>

namespace lx {

std::vector<uint8_t> EncodeSun(const PackedDib& source) {
    PackedDib dib = WritableForm(source);
    // One-bit Sun files are read as black (set) and white whatever their colour map says,
    // so only black-and-white images stay at one bit, without a map.
    const Rgbq black{0, 0, 0, 0}, white{255, 255, 255, 0};
    bool invert = false;
    if (dib.bitCount() == 1) {
        const auto pal = dib.palette();
        const bool whiteOnBlack = pal[0] == black && pal[1] == white, blackOnWhite = pal[0] == white && pal[1] == black;
        if (!whiteOnBlack && !blackOnWhite) dib = WidenToIndex8(dib);
        invert = whiteOnBlack;
    }
    if (dib.bitCount() == 4) dib = WidenToIndex8(dib);
    if (dib.bitCount() == 32) dib = ConvertDepth(dib, 24).value_or(PackedDib());
    if (dib.empty()) return {};
    const int w = dib.width(), h = dib.height(), depth = dib.bitCount();
    const size_t rowBytes = (static_cast<size_t>(w) * depth + 15) / 16 * 2;
    const auto palette = dib.palette();
    const uint32_t mapLength = depth == 1 ? 0 : static_cast<uint32_t>(palette.size() * 3);

    std::vector<uint8_t> out;
    auto be32 = [&](uint32_t v) {
        out.insert(out.end(), {static_cast<uint8_t>(v >> 24), static_cast<uint8_t>(v >> 16),
                               static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v)});
    };
    be32(0x59a66a95);
    be32(static_cast<uint32_t>(w));
    be32(static_cast<uint32_t>(h));
    be32(static_cast<uint32_t>(depth));
    be32(static_cast<uint32_t>(rowBytes * h));
    be32(1);  // standard: raw rows, BGR order
    be32(mapLength ? 1 : 0);
    be32(mapLength);
    if (mapLength) {
        for (const Rgbq& q : palette) out.push_back(q.r);
        for (const Rgbq& q : palette) out.push_back(q.g);
        for (const Rgbq& q : palette) out.push_back(q.b);
    }
    const size_t start = out.size();
    out.resize(start + rowBytes * h, 0);
    const size_t copy = depth == 24 ? static_cast<size_t>(w) * 3 : (static_cast<size_t>(w) * depth + 7) / 8;
    for (int y = 0; y < h; ++y) {
        uint8_t* d = out.data() + start + rowBytes * y;
        std::memcpy(d, dib.row(y), copy);
        if (invert)
            for (size_t i = 0; i < copy; ++i) d[i] = static_cast<uint8_t>(~d[i]);
    }
    return out;
}

}  // namespace lx
