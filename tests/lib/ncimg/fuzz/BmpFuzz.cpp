// Bitmap files come from disk and from memory blocks: any bytes must give an image or
// nothing, never a crash or a read outside the data.
#include "BmpReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto dib = lx::ReadBmp({data, size});
    if (dib) {
        volatile uint32_t sink = dib->pixel(dib->width() - 1, dib->height() - 1);
        (void)sink;
    }
    return 0;
}
