#include "DropList.h"

namespace lx {
namespace {

uint32_t Le32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}

}  // namespace

std::vector<std::wstring> DropListNames(const uint8_t* block, size_t size, NarrowToWide widen) {
    if (block == nullptr || size < kDropFilesHeaderBytes) return {};
    const size_t first = Le32(block);
    const bool wide = Le32(block + 16) != 0;
    if (first < kDropFilesHeaderBytes || first > size) return {};
    const size_t unit = wide ? 2 : 1;
    std::vector<std::wstring> names;
    // Name by name; an empty name closes the list.
    for (size_t at = first;;) {
        std::wstring wideName;
        std::string narrowName;
        for (;; at += unit) {
            if (at + unit > size) return {};  // a name or the list runs past the block
            const unsigned code = wide ? block[at] | (block[at + 1] << 8) : block[at];
            if (code == 0) break;
            if (wide) wideName.push_back(static_cast<wchar_t>(code));
            else narrowName.push_back(static_cast<char>(code));
        }
        at += unit;
        if (wideName.empty() && narrowName.empty()) return names;
        names.push_back(wide ? std::move(wideName) : widen(narrowName));
    }
}

}  // namespace lx
