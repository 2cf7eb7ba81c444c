// Loading images into packed DIBs, the caller owning what comes back.
//
// LoadImageFile tells the format by content (ImageProbe) and reads it with the library's
// own readers (BMP, Targa, PCX, Sun raster, PSD, SGI, PNM, XPM, XBM; a file named ".tga"
// with a consistent header counts as Targa). Everything else goes to the system's codecs:
// on Windows, WIC (JPEG, PNG, GIF, TIFF, ICO and installed ones such as camera raw), whose
// JPEG and TIFF results are turned upright by their Exif orientation; elsewhere those
// formats do not load. A camera raw file that no codec decodes gives its largest embedded
// preview (RawPreview.h). nullopt when the file cannot be read or decoded.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace lx {

std::optional<PackedDib> LoadImageFile(const std::filesystem::path& path);

// The same over a whole file already in memory; `name` only helps where content cannot
// tell (Targa, TIFF-based raw kinds).
std::optional<PackedDib> LoadImageBytes(std::span<const uint8_t> file, const std::filesystem::path& name = {});

// A bitmap file image in memory (it starts with "BM").
std::optional<PackedDib> LoadBmpFromMemory(std::span<const uint8_t> block);

// JPEG data in memory (it starts with the start-of-image marker). Needs the system's
// decoder: nullopt where there is none.
std::optional<PackedDib> LoadJpegFromMemory(std::span<const uint8_t> block);

}  // namespace lx
