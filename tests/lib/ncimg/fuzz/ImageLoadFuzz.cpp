// The loader's whole path over bytes: the probe, the choice of reader, and the Exif
// orientation walk that photographs go through.
#include "ImageLoad.h"
#include "ImageLoadFuzzSupport.h"
#include "ImageLoadOrientation.h"
#include "ImageProbe.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const uint8_t> bytes(data, size);
    TouchImage(lx::LoadImageBytes(bytes, "fuzz.tga"));
    volatile int sink = lx::ReadExifOrientation(bytes) + lx::ProbeImageBytes(bytes, bytes, "fuzz.nef");
    (void)sink;
    return 0;
}
