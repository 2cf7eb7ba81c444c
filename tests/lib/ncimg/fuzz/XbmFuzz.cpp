// X bitmaps are C text: any bytes give an image or nothing.
#include "ImageLoadFuzzSupport.h"
#include "XbmReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadXbm({data, size}));
    return 0;
}
