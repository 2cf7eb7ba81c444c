// EmbeddedImage: choosing and copying out the thumbnail and preview images a file embeds.
//
// JPEG images are returned exactly as stored. An uncompressed RGB thumbnail (TIFF IFD1,
// NEF IFD0) becomes a complete BMP file image (file header, 24-bit bottom-up DIB), so
// that either kind can be written to disk as it is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ByteSource.h"
#include "ExifRecord.h"

namespace lx {

enum class EmbeddedChoice { Smallest, Largest };

struct EmbeddedImage {
    EmbeddedFormat format = EmbeddedFormat::Jpeg;
    std::string where;
    int width = 0;
    int height = 0;
    std::vector<uint8_t> bytes;  // a JPEG or BMP file image
};

// Bytes the image has once extracted: the JPEG as stored, or the BMP file made of it.
uint64_t ExtractedSize(const EmbeddedImageRef& image);

// The index of the smallest or largest image (by pixel count, else by extracted size;
// the first found wins a tie), or -1 when there is none. `jpegOnly` skips bitmaps.
int ChooseEmbeddedImage(const std::vector<EmbeddedImageRef>& images, EmbeddedChoice choice, bool jpegOnly = false);

// Copies one image out of the source; nullopt when its bytes cannot be read.
std::optional<EmbeddedImage> ExtractEmbeddedImage(ByteSource& source, const EmbeddedImageRef& image);

// A BMP file image of top-down packed RGB rows (width * 3 bytes each).
std::vector<uint8_t> RgbToBmpFile(const uint8_t* rgb, int width, int height);

}  // namespace lx
