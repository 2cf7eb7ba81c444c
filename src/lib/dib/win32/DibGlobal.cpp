#include "DibGlobal.h"

#include <cstring>

namespace lx {

HGLOBAL DibToGlobal(const PackedDib& dib) {
    if (dib.empty()) return nullptr;
    const auto& bytes = dib.bytes();
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    if (!block) return nullptr;
    void* p = GlobalLock(block);
    if (!p) {
        GlobalFree(block);
        return nullptr;
    }
    std::memcpy(p, bytes.data(), bytes.size());
    GlobalUnlock(block);
    return block;
}

std::optional<PackedDib> DibFromGlobal(HGLOBAL block) {
    if (!block) return std::nullopt;
    const SIZE_T size = GlobalSize(block);
    const void* p = GlobalLock(block);
    if (!p) return std::nullopt;
    auto dib = PackedDib::FromBytes(static_cast<const uint8_t*>(p), size);
    GlobalUnlock(block);
    return dib;
}

}  // namespace lx
