#include "ImageTypes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cwchar>

// Bytes become a path of 16-bit characters in a buffer of the tools' size; the type lookup
// and every forced extension must stay inside it and keep it terminated.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    wchar_t path[lx::kPathChars];
    const size_t chars = std::min(size / 2, lx::kPathChars - 1);
    for (size_t i = 0; i < chars; ++i) path[i] = static_cast<wchar_t>(data[2 * i] | (data[2 * i + 1] << 8));
    path[chars] = L'\0';
    const lx::ImageType type = lx::ImageTypeFromPath(path);
    if (type < 0 || type > 39 || type == 12 || type == 22) __builtin_trap();
    const lx::ImageType target = size > 0 ? data[size - 1] % 30 : 2;
    if (lx::ForceSaveExtension(path, target)) {
        if (std::wcslen(path) >= lx::kPathChars) __builtin_trap();
    }
    return 0;
}
