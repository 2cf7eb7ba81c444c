// Saving images to files, one operation per format. Each returns non-zero on success and
// never leaves a half-written file under the target name (AtomicFile): on failure an
// older file of that name is still there, whole. The image stays with the caller.
#pragma once

#include "ImageFormats.h"
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

// Saves by the format table's writer for the type (JPEG with the default record); 0 for a
// type this library does not write.
int SaveImageByType(const std::filesystem::path& path, const PackedDib& dib, ImageType type);

}  // namespace lx
