#include "ToolBarTemplate.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto parsed = lx::ParseToolBarTemplate(data, size);
    if (parsed && parsed->ImageCount() > parsed->commands.size()) __builtin_trap();
    return 0;
}
