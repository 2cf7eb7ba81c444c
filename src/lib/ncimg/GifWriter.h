// Encodes an image as a single-frame GIF89a file with LZW-compressed pixels. Palette
// images keep their colours; colour images are first reduced to at most 256 colours by the
// image class's quantize (their own colours when they have no more, else median cut with
// error diffusion). Transparency is not written: alpha is dropped.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lx {

// Empty when the image is empty or cannot be reduced.
std::vector<uint8_t> EncodeGif(const PackedDib& dib);

// The LZW code stream of GIF for `indices` (each below 2^minCodeSize), without the
// sub-block framing. Exposed for the tests of the code-size steps.
std::vector<uint8_t> GifLzwCompress(std::span<const uint8_t> indices, int minCodeSize);

}  // namespace lx
