// X pixmaps are C text: any bytes give an image or nothing.
#include "ImageLoadFuzzSupport.h"
#include "XpmReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadXpm({data, size}));
    return 0;
}
