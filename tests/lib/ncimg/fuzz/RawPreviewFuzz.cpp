// The raw preview fallback over hostile bytes: the Exif walk that finds the embedded
// images, the copy of the largest, and the decoding and turning of a bitmap thumbnail.
#include "ImageLoadFuzzSupport.h"
#include "RawPreview.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lx::MemorySource source(std::span<const uint8_t>(data, size));
    if (const auto preview = lx::FindRawPreview(source)) TouchImage(lx::DecodeRawPreview(*preview));
    return 0;
}
