// What every reader's fuzz target does with a decoded image: read its corner pixels, so a
// header that disagrees with the pixel buffer shows up as an out-of-bounds read.
#pragma once

#include "PackedDib.h"

#include <optional>

inline void TouchImage(const std::optional<lx::PackedDib>& dib) {
    if (!dib) return;
    volatile uint32_t sink = dib->pixel(0, 0) ^ dib->pixel(dib->width() - 1, dib->height() - 1);
    (void)sink;
}
