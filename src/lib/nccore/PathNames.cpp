#include "PathNames.h"

namespace lx {

bool IsPathSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

size_t FileNameStart(const std::wstring& path) {
    size_t start = path.size();
    while (start > 0 && !IsPathSeparator(path[start - 1])) --start;
    return start;
}

std::wstring FileNameOf(const std::wstring& path) { return path.substr(FileNameStart(path)); }

}  // namespace lx
