#include "ConvertSave.h"

#include "ImageSave.h"
#include "ImageTypes.h"

namespace lx {

JpegSaveRecord ConvertJpegRecord(const ConvertOptions& options) {
    JpegSaveRecord record;
    record.quality = options.jpegQuality;
    record.reserved0 = 0;
    record.smoothing = options.jpegSmoothing;
    record.progressive = options.jpegForm == kJpegFormProgressive ? 1 : 0;
    record.optimizeHuffman = options.jpegForm == kJpegFormOptimized ? 1 : 0;
    return record;
}

int SaveConverted(const std::filesystem::path& destination, const PackedDib& dib, const ConvertOptions& options) {
    switch (options.saveType) {
    case kImageJpeg:
        return SaveJpegFile(destination, dib, ConvertJpegRecord(options));
    case kImageBmp:
    case kImageGif:
    case kImageTiff:
    case kImageTga:
    case kImagePcx:
    case kImageRas:
    case kImagePng:
    case kImagePnm:
        return SaveImageByType(destination, dib, options.saveType);
    case kImageFpx:
        return SaveFlashPixFile(destination, dib, options.fpxUseJpeg ? 2 : 0, options.fpxQuality);
    case kImageJpeg2000:
        return SaveJpeg2000File(destination, dib, options.jp2Ratio);
    default:
        return 0;
    }
}

}  // namespace lx
