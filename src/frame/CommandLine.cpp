#include "CommandLine.h"

#include <algorithm>

namespace lx {

std::wstring SkipLeadingOptions(std::wstring_view commandLine) {
    size_t at = 0;
    auto isBlank = [&](size_t i) { return commandLine[i] == L' ' || commandLine[i] == L'\t'; };
    while (at < commandLine.size() && (commandLine[at] == L'/' || commandLine[at] == L'-')) {
        while (at < commandLine.size() && !isBlank(at)) ++at;
        if (at == commandLine.size()) return {};
        while (at < commandLine.size() && isBlank(at)) ++at;
    }
    std::wstring rest(commandLine.substr(at));
    if (rest.size() > kPathChars - 1) rest.resize(kPathChars - 1);
    return rest;
}

bool IsRequestKeyName(std::wstring_view name) {
    if (name.empty() || name.size() > kMaxRequestKeyChars) return false;
    size_t start = 0;
    while (true) {
        const size_t end = std::min(name.find(L'\\', start), name.size());
        const std::wstring_view part = name.substr(start, end - start);
        if (part == L"." || part == L"..") return false;
        bool blank = true;
        for (wchar_t c : part) {
            if (c < 0x20 || c == 0x7f) return false;
            if (c != L' ' && c != 0x3000) blank = false;  // ASCII and ideographic space
        }
        if (blank) return false;  // also an empty part: a leading, trailing or doubled backslash
        if (end == name.size()) return true;
        start = end + 1;
    }
}

}  // namespace lx
