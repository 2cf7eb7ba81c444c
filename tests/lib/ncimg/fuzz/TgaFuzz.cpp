// Targa files have no signature, so any bytes named .tga reach this reader.
#include "ImageLoadFuzzSupport.h"
#include "TgaReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TouchImage(lx::ReadTga({data, size}));
    return 0;
}
