// Portable any-maps, text or binary: any bytes give an image or nothing.
#include "ImageLoadFuzzSupport.h"
#include "PnmReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadPnm({data, size}));
    return 0;
}
