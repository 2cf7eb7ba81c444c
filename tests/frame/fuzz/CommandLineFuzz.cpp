// The viewer's command line comes from the host: bytes become 16-bit characters, and what
// is left after the options must be a tail of the line that fits a path buffer.
#include "CommandLine.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::wstring line;
    for (size_t i = 0; i + 1 < size; i += 2) line.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));
    const std::wstring rest = lx::SkipLeadingOptions(line);
    if (rest.size() >= lx::kPathChars || line.find(rest) == std::wstring::npos) std::abort();
    return 0;
}
