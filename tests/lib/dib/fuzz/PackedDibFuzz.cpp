// Any bytes handed in as a packed DIB (clipboard, memory loads) are checked, never trusted.
#include "PackedDib.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto dib = lx::PackedDib::FromBytes(data, size);
    if (dib) {
        volatile uint32_t sink = 0;
        for (int y = 0; y < dib->height(); y += 7)
            for (int x = 0; x < dib->width(); x += 5) sink = sink + dib->pixel(x, y);
    }
    return 0;
}
