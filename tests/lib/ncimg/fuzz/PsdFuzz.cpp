// Photoshop files: sections, row tables and PackBits are all checked against the data.
#include "ImageLoadFuzzSupport.h"
#include "PsdReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadPsd({data, size}));
    return 0;
}
