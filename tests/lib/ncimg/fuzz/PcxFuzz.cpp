// PCX files from disk: any bytes give an image or nothing.
#include "ImageLoadFuzzSupport.h"
#include "PcxReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadPcx({data, size}));
    return 0;
}
