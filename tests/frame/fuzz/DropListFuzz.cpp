// Registry "drop" values are written by another program: any bytes must be read safely, and
// every name read must lie inside the block.
#include <cstdlib>

#include "DropList.h"

namespace {

std::wstring Latin1(const std::string& name) { return std::wstring(name.begin(), name.end()); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    size_t characters = 0;
    for (const std::wstring& name : lx::DropListNames(data, size, &Latin1)) {
        if (name.empty()) std::abort();
        characters += name.size() + 1;
    }
    if (characters > size) std::abort();
    return 0;
}
