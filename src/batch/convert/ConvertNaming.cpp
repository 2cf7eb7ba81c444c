#include "ConvertNaming.h"

#include <cwchar>
#include <filesystem>
#include <vector>

namespace lx {

namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

// The last component of a path, by either separator, so that Windows names split the same
// way on every build.
std::wstring FileNameOf(const std::wstring& path) {
    size_t start = path.size();
    while (start > 0 && !IsSeparator(path[start - 1])) --start;
    return path.substr(start);
}

// The separator the folder already uses, so a folder typed with "\\" keeps it on any build.
wchar_t SeparatorFor(const std::wstring& folder) {
    for (size_t i = folder.size(); i > 0; --i)
        if (IsSeparator(folder[i - 1])) return folder[i - 1];
    return static_cast<wchar_t>(std::filesystem::path::preferred_separator);
}

}  // namespace

std::wstring ConvertDestination(const std::wstring& folder, const std::wstring& source, ImageType saveType) {
    std::wstring joined = folder;
    if (!joined.empty() && !IsSeparator(joined.back())) joined.push_back(SeparatorFor(joined));
    joined += FileNameOf(source);
    if (joined.size() >= kPathChars) return joined;  // no room to rename within the path buffer
    std::vector<wchar_t> buffer(kPathChars, 0);
    std::wmemcpy(buffer.data(), joined.c_str(), joined.size());
    ForceSaveExtension(buffer.data(), saveType);
    return buffer.data();
}

std::wstring SetAsideName(const std::wstring& source, int number) {
    wchar_t suffix[16];
    std::swprintf(suffix, 16, L".~%02d", number);
    return source + suffix;
}

std::wstring FindSetAsideName(const std::wstring& source, const std::function<bool(const std::wstring&)>& exists) {
    for (int number = 0; number < kLastSetAsideNumber; ++number) {
        std::wstring name = SetAsideName(source, number);
        if (!exists(name)) return name;
    }
    return SetAsideName(source, kLastSetAsideNumber);
}

}  // namespace lx
