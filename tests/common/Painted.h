// A 24-bit picture painted pixel by pixel, for tests that need particular colours in
// particular places.
#pragma once

#include <cstdint>
#include <functional>

#include "PackedDib.h"

namespace lxtest {

// Pixel (x, y) from the top is rgb(x, y), given as 0x00RRGGBB.
inline lx::PackedDib Painted(int width, int height, const std::function<uint32_t(int, int)>& rgb) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint32_t c = rgb(x, y);
            uint8_t* p = dib.row(y) + 3 * x;
            p[0] = c & 0xff, p[1] = (c >> 8) & 0xff, p[2] = (c >> 16) & 0xff;
        }
    return dib;
}

}  // namespace lxtest
