#include "ImageLoadSupport.h"

#include <algorithm>
#include <cstring>

namespace lx {

bool PlausibleSize(int64_t width, int64_t height, size_t inputBytes) {
    if (width <= 0 || height <= 0 || width > INT32_MAX || height > INT32_MAX) return false;
    const int64_t pixels = width * height;
    if (pixels > kMaxPixels) return false;
    // 1024 pixels per input byte is beyond every run-length scheme we read, so only
    // hostile headers hit this; small canvases always pass.
    constexpr int64_t kAlwaysAllowed = int64_t{1} << 22;
    // Compared unsigned: a decoder that knows no input size passes SIZE_MAX.
    return pixels <= kAlwaysAllowed || static_cast<uint64_t>(pixels / 1024) <= static_cast<uint64_t>(inputBytes);
}

bool PlausibleForCompression(int64_t width, int64_t height, uint64_t encodedBytes, uint64_t mostPixelsPerByte) {
    // PlausibleSize allows 1024 pixels per byte; the encoded size is scaled so that the
    // codec's own limit applies instead.
    const uint64_t perByte = mostPixelsPerByte ? mostPixelsPerByte : 1;
    const uint64_t scaled = encodedBytes > SIZE_MAX / perByte ? SIZE_MAX : encodedBytes * perByte / 1024;
    return PlausibleSize(width, height, static_cast<size_t>(scaled));
}

PackedDib NewImage(int64_t width, int64_t height, int bitCount, size_t inputBytes) {
    if (!PlausibleSize(width, height, inputBytes)) return {};
    return PackedDib::Create(static_cast<int>(width), static_cast<int>(height), bitCount);
}

PackedDib DropOpaqueAlpha(PackedDib&& bgra) {
    if (bgra.empty() || bgra.bitCount() != 32) return std::move(bgra);
    const int w = bgra.width(), h = bgra.height();
    for (int y = 0; y < h; ++y) {
        const uint8_t* r = bgra.row(y);
        for (int x = 0; x < w; ++x)
            if (r[x * 4 + 3] != 255) return std::move(bgra);
    }
    PackedDib rgb = PackedDib::Create(w, h, 24);
    for (int y = 0; y < h; ++y) {
        const uint8_t* s = bgra.row(y);
        uint8_t* d = rgb.row(y);
        for (int x = 0; x < w; ++x, s += 4, d += 3) std::memcpy(d, s, 3);
    }
    return rgb;
}

}  // namespace lx
