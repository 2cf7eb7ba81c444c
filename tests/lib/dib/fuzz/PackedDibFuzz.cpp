// Any bytes handed in as a packed DIB (clipboard, memory loads) are checked, never trusted.
#include "PackedDib.h"

// Read in place (Borrow, as the image view does with a block it is handed) or copied.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    for (const auto& dib : {lx::PackedDib::FromBytes(data, size), lx::PackedDib::Borrow(data, size)}) {
        if (!dib) continue;
        volatile uint32_t sink = 0;
        for (int y = 0; y < dib->height(); y += 7)
            for (int x = 0; x < dib->width(); x += 5) sink = sink + dib->pixel(x, y);
    }
    return 0;
}
