#include "PathNames.h"

namespace lx {

bool IsPathSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

size_t FileNameStart(const std::wstring& path) {
    size_t start = path.size();
    while (start > 0 && !IsPathSeparator(path[start - 1])) --start;
    return start;
}

std::wstring FileNameOf(const std::wstring& path) { return path.substr(FileNameStart(path)); }

namespace {

size_t ExtensionStart(const std::wstring& path) {
    const size_t nameStart = FileNameStart(path);
    const size_t dot = path.rfind(L'.');
    return dot == std::wstring::npos || dot < nameStart ? path.size() : dot;
}

}  // namespace

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, FileNameStart(path)); }

std::wstring ExtensionOf(const std::wstring& path) { return path.substr(ExtensionStart(path)); }

std::wstring WithoutExtension(const std::wstring& path) { return path.substr(0, ExtensionStart(path)); }

}  // namespace lx
