#include "DibGlobal.h"

#include <cstring>

namespace lx {

// A fixed block's handle is its address, so a DIB's bytes are at once an HGLOBAL.
uint8_t* AllocateDibBlock(size_t size) { return static_cast<uint8_t*>(GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, size)); }

void FreeDibBlock(uint8_t* block) {
    if (block) GlobalFree(block);
}

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

HGLOBAL ReleaseToGlobal(PackedDib&& dib) {
    if (!dib.bytes().owned()) {
        HGLOBAL copy = DibToGlobal(dib);
        dib = PackedDib();
        return copy;
    }
    return static_cast<HGLOBAL>(dib.release().release());
}

std::optional<PackedDib> AdoptGlobal(HGLOBAL block) {
    if (!block) return std::nullopt;
    // A fixed block locks to its own handle; a movable one must be copied out.
    if (GlobalLock(block) == block) {
        GlobalUnlock(block);
        DibBytes bytes = DibBytes::Adopt(static_cast<uint8_t*>(block), GlobalSize(block));
        if (auto dib = PackedDib::Adopt(bytes)) return dib;
        block = static_cast<HGLOBAL>(bytes.release());
    }
    std::optional<PackedDib> dib = DibFromGlobal(block);
    GlobalFree(block);
    return dib;
}

}  // namespace lx
