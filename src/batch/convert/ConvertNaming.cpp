#include "ConvertNaming.h"

#include <cwctype>
#include <cwchar>
#include <filesystem>
#include <map>
#include <system_error>
#include <vector>

#include "PathNames.h"

namespace lx {

namespace {

// The separator the folder already uses, so a folder typed with "\\" keeps it on any build.
wchar_t SeparatorFor(const std::wstring& folder) {
    for (size_t i = folder.size(); i > 0; --i)
        if (IsPathSeparator(folder[i - 1])) return folder[i - 1];
    return static_cast<wchar_t>(std::filesystem::path::preferred_separator);
}

// One spelling for every way of naming a file: absolute, normalised and case-folded, since
// Windows file names ignore case.
std::wstring SameFileKey(const std::wstring& path) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(std::filesystem::path(path), error);
    if (error) absolute = std::filesystem::path(path);
    std::wstring key = absolute.lexically_normal().wstring();
    for (wchar_t& c : key) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return key;
}

}  // namespace

std::wstring ConvertDestination(const std::wstring& folder, const std::wstring& source, ImageType saveType) {
    std::wstring joined = folder;
    if (!joined.empty() && !IsPathSeparator(joined.back())) joined.push_back(SeparatorFor(joined));
    joined += FileNameOf(source);
    if (joined.size() >= kPathChars) return joined;  // no room to rename within the path buffer
    std::vector<wchar_t> buffer(kPathChars, 0);
    std::wmemcpy(buffer.data(), joined.c_str(), joined.size());
    ForceSaveExtension(buffer.data(), saveType);
    return buffer.data();
}

std::vector<std::wstring> PlanDestinations(const std::wstring& folder, const std::vector<std::wstring>& sources,
                                           ImageType saveType) {
    std::map<std::wstring, size_t> owners;
    for (size_t i = 0; i < sources.size(); ++i) owners.emplace(SameFileKey(sources[i]), i);
    std::vector<std::wstring> plan(sources.size());
    for (size_t i = 0; i < sources.size(); ++i) {
        std::wstring destination = ConvertDestination(folder, sources[i], saveType);
        const auto owner = owners.emplace(SameFileKey(destination), i).first;
        if (owner->second == i) plan[i] = std::move(destination);
    }
    return plan;
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

std::wstring SetAsideOriginal(const std::wstring& name) {
    // ".~" and two digits, after at least one character of the original name.
    const size_t size = name.size();
    auto digit = [](wchar_t c) { return c >= L'0' && c <= L'9'; };
    if (size < 5 || name.compare(size - 4, 2, L".~") != 0 || !digit(name[size - 2]) || !digit(name[size - 1]))
        return {};
    return name.substr(0, size - 4);
}

}  // namespace lx
