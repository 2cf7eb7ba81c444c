// Feeds arbitrary DIBs and settings to the JPEG encoder: the first four bytes choose
// quality, smoothing and form, the rest is a packed DIB. Whatever is accepted must encode
// to a complete file.
#include "JpegWriter.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    const auto dib = lx::PackedDib::FromBytes(data + 4, size - 4);
    // Keep each run small; size limits are tested separately.
    if (!dib || static_cast<int64_t>(dib->width()) * dib->height() > 1 << 16) return 0;
    lx::JpegSaveRecord record;
    record.quality = data[0] % 110 - 5;
    record.smoothing = data[1] % 110 - 5;
    record.progressive = data[2] & 1;
    record.optimizeHuffman = data[2] & 2;
    const std::vector<uint8_t> jpeg = lx::EncodeJpeg(*dib, record);
    if (jpeg.size() < 4 || jpeg[0] != 0xff || jpeg[1] != 0xd8 || jpeg[jpeg.size() - 2] != 0xff || jpeg.back() != 0xd9)
        std::abort();
    return 0;
}
