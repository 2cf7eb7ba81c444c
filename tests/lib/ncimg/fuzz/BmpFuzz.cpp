// Bitmap files come from disk and from memory blocks: any bytes must give an image or
// nothing, never a crash or a read outside the data.
#include "BmpReader.h"
#include "ImageLoadFuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadBmp({data, size}));
    return 0;
}
