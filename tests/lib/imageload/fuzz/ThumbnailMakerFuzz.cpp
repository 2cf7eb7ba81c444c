// The thumbnail maker over arbitrary file bytes: as a camera file (Exif fast path, then the
// codec library) or as a bitmap, chosen by the first byte.
#include <cstddef>
#include <cstdint>
#include <span>

#include "ThumbnailMaker.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const char* name = (data[0] & 1) ? "fuzz.tif" : "fuzz.bmp";
    const auto thumb = lx::MakeThumbnailDibFromBytes(std::span<const uint8_t>(data + 1, size - 1), name, 16);
    if (thumb && (thumb->width() > 16 || thumb->height() > 16 || thumb->bitCount() != 24)) __builtin_trap();
    return 0;
}
