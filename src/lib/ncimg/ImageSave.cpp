#include "ImageSave.h"

#include "AtomicFile.h"
#include "BmpWriter.h"
#include "GifWriter.h"
#include "JpegWriter.h"
#include "PcxWriter.h"
#include "PngWriter.h"
#include "PnmWriter.h"
#include "SgiWriter.h"
#include "SunWriter.h"
#include "TgaWriter.h"
#include "TiffWriter.h"

#include <vector>

namespace lx {
namespace {

int WriteEncoded(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    return !bytes.empty() && WriteFileAtomically(path, bytes) ? 1 : 0;
}

}  // namespace

int SaveBmpFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodeBmp(dib)); }
int SaveGifFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodeGif(dib)); }
int SaveTgaFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodeTga(dib)); }
int SaveSunFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodeSun(dib)); }
int SavePcxFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodePcx(dib)); }
int SaveTiffFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodeTiff(dib)); }
int SavePngFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodePng(dib)); }
int SavePnmFile(const std::filesystem::path& path, const PackedDib& dib) { return WriteEncoded(path, EncodePnm(dib)); }
int SaveSgiFile(const std::filesystem::path& path, const PackedDib& dib, int) { return WriteEncoded(path, EncodeSgi(dib)); }

int SaveJpegFile(const std::filesystem::path& path, const PackedDib& dib, const JpegSaveRecord& record) {
    return WriteEncoded(path, EncodeJpeg(dib, record));
}

int SaveFlashPixFile(const std::filesystem::path&, const PackedDib&, int, int) { return 0; }
int SaveJpeg2000File(const std::filesystem::path&, const PackedDib&, int) { return 0; }

int SaveImageByType(const std::filesystem::path& path, const PackedDib& dib, int type) {
    switch (type) {
    case 1: return SaveBmpFile(path, dib);
    case 2: return SaveJpegFile(path, dib, JpegSaveRecord{});
    case 3: return SaveGifFile(path, dib);
    case 4: return SaveTiffFile(path, dib);
    case 5: return SaveTgaFile(path, dib);
    case 6: return SavePcxFile(path, dib);
    case 9: return SaveSunFile(path, dib);
    case 10: return SavePngFile(path, dib);
    case 14: return SaveSgiFile(path, dib);
    case 17: return SavePnmFile(path, dib);
    default: return 0;
    }
}

}  // namespace lx
