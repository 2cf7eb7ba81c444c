#include "ImageSave.h"

#include "AtomicFile.h"
#include "ImageFormats.h"

#include <vector>

namespace lx {
namespace {

int WriteEncoded(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    return !bytes.empty() && WriteFileAtomically(path, bytes) ? 1 : 0;
}

}  // namespace

int SaveImageByType(const std::filesystem::path& path, const PackedDib& dib, ImageType type) {
    const ImageFormat* format = FindImageFormat(type);
    return format && format->encode ? WriteEncoded(path, format->encode(dib)) : 0;
}

int SaveBmpFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImageBmp); }
int SaveGifFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImageGif); }
int SaveTgaFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImageTga); }
int SaveSunFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImageRas); }
int SavePcxFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImagePcx); }
int SaveTiffFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImageTiff); }
int SavePngFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImagePng); }
int SavePnmFile(const std::filesystem::path& path, const PackedDib& dib) { return SaveImageByType(path, dib, kImagePnm); }
int SaveSgiFile(const std::filesystem::path& path, const PackedDib& dib, int) { return SaveImageByType(path, dib, kImageSgi); }

int SaveJpegFile(const std::filesystem::path& path, const PackedDib& dib, const JpegSaveRecord& record) {
    return WriteEncoded(path, EncodeJpeg(dib, record));
}

int SaveFlashPixFile(const std::filesystem::path&, const PackedDib&, int, int) { return 0; }
int SaveJpeg2000File(const std::filesystem::path&, const PackedDib&, int) { return 0; }

}  // namespace lx
