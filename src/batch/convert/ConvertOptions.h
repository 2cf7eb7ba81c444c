// ConvertOptions: the batch conversion's saved options, the 1,104-byte settings block
// "Converter" / "Status", laid out field by field in memory order exactly as it is stored.
//
// The output folder is kept as 16-bit characters so the record has the same size on every
// build (wchar_t is 4 bytes outside Windows); OutputFolder/SetOutputFolder convert.
// A stored block of any other size is ignored and the defaults apply.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace lx {

constexpr size_t kConvertFolderChars = 520;

enum ConvertResizeMode : int32_t {
    kResizeLongSide = 0,
    kResizeShortSide = 1,
    kResizePercent = 2,
};

enum ConvertJpegForm : int32_t {
    kJpegFormStandard = 0,
    kJpegFormOptimized = 1,
    kJpegFormProgressive = 2,
};

struct ConvertOptions {
    int32_t saveType;      // an ImageType of the format list
    int32_t resizeMode;    // ConvertResizeMode
    int32_t size;          // pixels for the side modes, percent for kResizePercent
    int32_t resize;        // non-zero: scale
    int32_t noEnlarge;     // non-zero: images smaller than the target side stay as they are
    int32_t deleteSource;  // non-zero: remove each source once its result is written
    char16_t outputFolder[kConvertFolderChars];
    int32_t jpegForm;       // ConvertJpegForm
    int32_t jpegQuality;    // 1..100
    int32_t jpegSmoothing;  // 1..100; 0 until the slider was first used
    int32_t fpxUseJpeg;
    int32_t fpxQuality;
    int32_t reserved0;
    int32_t reserved1;
    int32_t jp2Ratio;  // shown as "1/%d"
    int32_t reserved2[2];
};

static_assert(sizeof(ConvertOptions) == 1104, "the stored block is 1,104 bytes");
static_assert(offsetof(ConvertOptions, deleteSource) == 20);
static_assert(offsetof(ConvertOptions, outputFolder) == 24);
static_assert(offsetof(ConvertOptions, jpegForm) == 1064);
static_assert(offsetof(ConvertOptions, fpxQuality) == 1080);
static_assert(offsetof(ConvertOptions, jp2Ratio) == 1092);

// All zero, then JPEG, percent mode at 100 with scaling on, quality 94, FlashPix JPEG tiles
// at 94, JPEG 2000 at 1/8.
ConvertOptions DefaultConvertOptions();

// The options a stored block holds; the defaults when `size` is not the record's size.
ConvertOptions ConvertOptionsFromBlock(const void* data, size_t size);

std::wstring OutputFolder(const ConvertOptions& options);
// Longer folders are cut to fit the buffer with its terminator.
void SetOutputFolder(ConvertOptions& options, const std::wstring& folder);

}  // namespace lx
