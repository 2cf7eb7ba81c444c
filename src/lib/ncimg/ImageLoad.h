// Loading images into packed DIBs, the caller owning what comes back.
//
// LoadImageFile tells the format by content (ImageProbe) and reads it with the library's
// own readers (JPEG, BMP, Targa, PCX, Sun raster, PSD, SGI, PNM, XPM, XBM; a file named
// ".tga" with a consistent header counts as Targa). Everything else goes to the system's
// codecs: on Windows, WIC (PNG, GIF, TIFF, ICO, the JPEG kinds our decoder leaves alone
// such as arithmetic-coded or 12-bit ones, and installed codecs such as camera raw);
// elsewhere those formats do not load. JPEG and TIFF pictures are turned upright by their
// Exif orientation. A camera raw file that no codec decodes gives its largest embedded
// preview (RawPreview.h). nullopt when the file cannot be read or decoded.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> LoadImageFile(const std::filesystem::path& path);

// The upright size of a picture as its file holds it.
struct PictureSize {
    int width = 0, height = 0;
};

// The same for a picture wanted at wantWidth x wantHeight or less (a thumbnail, a screen):
// a JPEG is decoded at the smallest of 1/8, 1/4, 1/2 or full size that still covers that box
// on one side (as fitting the picture into it needs), every other format at full size. The
// caller reduces the rest of the way. `fullSize`, when given, receives the size the picture
// has at full scale, so size rules can be computed as if it had been decoded whole.
std::optional<PackedDib> LoadImageFileToCover(const std::filesystem::path& path, int wantWidth, int wantHeight,
                                              PictureSize* fullSize = nullptr);

// The same over a whole file already in memory; `name` only helps where content cannot
// tell (Targa, TIFF-based raw kinds).
std::optional<PackedDib> LoadImageBytes(std::span<const uint8_t> file, const std::filesystem::path& name = {});

// A bitmap file image in memory (it starts with "BM").
std::optional<PackedDib> LoadBmpFromMemory(std::span<const uint8_t> block);

// JPEG data in memory (it starts with the start-of-image marker), upright by its own Exif
// orientation. Kinds our decoder leaves alone need the system's decoder: nullopt where there
// is none.
std::optional<PackedDib> LoadJpegFromMemory(std::span<const uint8_t> block);

}  // namespace lx
