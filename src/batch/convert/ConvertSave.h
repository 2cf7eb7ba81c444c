// Writing one converted image by the chosen save type, with the codec parameters the
// options hold. Types without a writer write nothing.
#pragma once

#include <filesystem>

#include "ConvertOptions.h"
#include "JpegWriter.h"
#include "PackedDib.h"

namespace lx {

// The JPEG parameter record for the options: quality, 0, smoothing, progressive (form 2),
// optimised baseline (form 1), zeros.
JpegSaveRecord ConvertJpegRecord(const ConvertOptions& options);

// Non-zero when the file was written. The image stays with the caller.
int SaveConverted(const std::filesystem::path& destination, const PackedDib& dib, const ConvertOptions& options);

}  // namespace lx
