// Saving images to files, one operation per format. Each returns non-zero on success and
// never leaves a half-written file under the target name (AtomicFile): on failure an
// older file of that name is still there, whole. The image stays with the caller.
#pragma once

#include "JpegWriter.h"
#include "PackedDib.h"

#include <filesystem>

namespace lx {

int SaveBmpFile(const std::filesystem::path& path, const PackedDib& dib);
int SaveGifFile(const std::filesystem::path& path, const PackedDib& dib);
int SaveTgaFile(const std::filesystem::path& path, const PackedDib& dib);
int SaveSunFile(const std::filesystem::path& path, const PackedDib& dib);
int SavePcxFile(const std::filesystem::path& path, const PackedDib& dib);
int SaveTiffFile(const std::filesystem::path& path, const PackedDib& dib);
int SavePngFile(const std::filesystem::path& path, const PackedDib& dib);
int SavePnmFile(const std::filesystem::path& path, const PackedDib& dib);
// `flags` is accepted for the callers that pass 1; files are always run-length encoded.
int SaveSgiFile(const std::filesystem::path& path, const PackedDib& dib, int flags = 1);

// JPEG with the caller's parameter record (quality, smoothing, progressive, optimised).
int SaveJpegFile(const std::filesystem::path& path, const PackedDib& dib, const JpegSaveRecord& record);

// FlashPix and JPEG 2000 are not written: these return 0 and touch no file.
int SaveFlashPixFile(const std::filesystem::path& path, const PackedDib& dib, int compression, int quality);
int SaveJpeg2000File(const std::filesystem::path& path, const PackedDib& dib, int ratio = 0);

// Saves by image type number (1 BMP, 2 JPEG with the default record, 3 GIF, 4 TIFF, 5 TGA, 6 PCX, 9 Sun raster, 10 PNG,
// 14 SGI, 17 PNM); 0 for any other type.
int SaveImageByType(const std::filesystem::path& path, const PackedDib& dib, int type);

}  // namespace lx
