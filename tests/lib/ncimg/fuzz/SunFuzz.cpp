// Sun raster files, raw or run-length encoded: any bytes give an image or nothing.
#include "ImageLoadFuzzSupport.h"
#include "SunReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadSun({data, size}));
    return 0;
}
