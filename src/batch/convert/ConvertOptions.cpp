#include "ConvertOptions.h"

#include <algorithm>
#include <cstring>

namespace lx {

ConvertOptions DefaultConvertOptions() {
    ConvertOptions options;
    std::memset(&options, 0, sizeof options);
    options.saveType = 2;
    options.resizeMode = kResizePercent;
    options.size = 100;
    options.resize = 1;
    options.jpegQuality = 94;
    options.fpxUseJpeg = 1;
    options.fpxQuality = 94;
    options.jp2Ratio = 8;
    return options;
}

ConvertOptions ConvertOptionsFromBlock(const void* data, size_t size) {
    ConvertOptions options = DefaultConvertOptions();
    if (data != nullptr && size == sizeof options) {
        std::memcpy(&options, data, sizeof options);
        // A hand-edited block may lack the terminator; the folder must still end in the buffer.
        options.outputFolder[kConvertFolderChars - 1] = 0;
    }
    return options;
}

std::wstring OutputFolder(const ConvertOptions& options) {
    std::wstring folder;
    for (size_t i = 0; i < kConvertFolderChars && options.outputFolder[i] != 0; ++i)
        folder.push_back(static_cast<wchar_t>(options.outputFolder[i]));
    return folder;
}

void SetOutputFolder(ConvertOptions& options, const std::wstring& folder) {
    std::memset(options.outputFolder, 0, sizeof options.outputFolder);
    const size_t count = std::min(folder.size(), kConvertFolderChars - 1);
    // Characters beyond 16 bits (Linux wide strings) have no place in the stored record.
    for (size_t i = 0; i < count; ++i) options.outputFolder[i] = static_cast<char16_t>(folder[i]);
}

}  // namespace lx
