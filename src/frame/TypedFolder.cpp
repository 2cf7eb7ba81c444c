#include "TypedFolder.h"

#include "PathNames.h"

namespace lx {

namespace {

bool IsLetter(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }

bool IsUnc(const std::wstring& path) {
    return path.size() > 2 && IsPathSeparator(path[0]) && IsPathSeparator(path[1]) && !IsPathSeparator(path[2]);
}

// Where the `count`-th component after the leading "\\" ends.
size_t ComponentEnd(const std::wstring& path, int count) {
    size_t at = 2;
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            if (at >= path.size()) return path.size();
            ++at;  // the separator
        }
        while (at < path.size() && !IsPathSeparator(path[at])) ++at;
    }
    return at;
}

}  // namespace

bool IsDriveAlone(const std::wstring& text) {
    return (text.size() == 1 && IsLetter(text[0])) || (text.size() == 2 && IsLetter(text[0]) && text[1] == L':');
}

std::wstring UncRootOf(const std::wstring& path) {
    if (!IsUnc(path)) return {};
    return path.substr(0, ComponentEnd(path, 2));
}

bool IsUncServerAlone(const std::wstring& path) {
    if (!IsUnc(path)) return false;
    const size_t serverEnd = ComponentEnd(path, 1);
    return serverEnd == path.size() || (serverEnd + 1 == path.size() && IsPathSeparator(path[serverEnd]));
}

}  // namespace lx
