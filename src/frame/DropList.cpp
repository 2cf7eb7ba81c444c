#include "DropList.h"

namespace lx {
namespace {

uint32_t Le32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}

}  // namespace

bool IsWellFormedDropList(const uint8_t* block, size_t size) {
    if (block == nullptr || size < kDropFilesHeaderBytes) return false;
    const size_t names = Le32(block);
    const bool wide = Le32(block + 16) != 0;
    if (names < kDropFilesHeaderBytes || names > size) return false;
    const size_t unit = wide ? 2 : 1;
    // Walk name by name; an empty name closes the list.
    size_t at = names;
    while (at + unit <= size) {
        size_t length = 0;
        while (at + unit <= size && (block[at] != 0 || (wide && block[at + 1] != 0))) {
            at += unit;
            ++length;
        }
        if (at + unit > size) return false;  // name runs past the block
        at += unit;
        if (length == 0) return true;
    }
    return false;
}

}  // namespace lx
