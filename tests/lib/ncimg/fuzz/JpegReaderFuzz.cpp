// Our JPEG decoder over hostile bytes: markers, Huffman codes, restart resynchronisation and
// progressive refinement must stay inside the data and the coefficient store, at full size
// and at the smallest reduced size (which takes other transform and upsampling paths).
#include "ImageLoadFuzzSupport.h"
#include "JpegReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const uint8_t> bytes(data, size);
    volatile bool known = lx::ReadJpegInfo(bytes).has_value();
    (void)known;
    TouchImage(lx::ReadJpeg(bytes));
    TouchImage(lx::ReadJpeg(bytes, 8));
    return 0;
}
