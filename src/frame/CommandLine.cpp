#include "CommandLine.h"

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

}  // namespace lx
