#include "PnmWriter.h"

#include <string>

namespace lx {

std::vector<uint8_t> EncodePnm(const PackedDib& dib) {
    if (dib.empty()) return {};
    const int w = dib.width(), h = dib.height();
    const bool grey = dib.bitCount() <= 8 && dib.hasGreyPalette();
    const std::string header = std::string(grey ? "P5" : "P6") + "\n" + std::to_string(w) + " " +
                               std::to_string(h) + "\n255\n";
    std::vector<uint8_t> out(header.begin(), header.end());
    out.reserve(out.size() + static_cast<size_t>(w) * h * (grey ? 1 : 3));
    for (int y = 0; y < h; ++y) {
        if (dib.bitCount() == 24) {
            const uint8_t* s = dib.row(y);
            for (int x = 0; x < w; ++x, s += 3) out.insert(out.end(), {s[2], s[1], s[0]});
            continue;
        }
        for (int x = 0; x < w; ++x) {
            const uint32_t p = dib.pixel(x, y);
            if (grey) out.push_back(static_cast<uint8_t>(p));
            else out.insert(out.end(), {static_cast<uint8_t>(p >> 16), static_cast<uint8_t>(p >> 8), static_cast<uint8_t>(p)});
        }
    }
    return out;
}

}  // namespace lx
