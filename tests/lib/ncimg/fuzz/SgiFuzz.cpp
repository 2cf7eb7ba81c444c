// SGI files point into themselves through their row tables: every offset is checked.
#include "ImageLoadFuzzSupport.h"
#include "SgiReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadSgi({data, size}));
    return 0;
}
