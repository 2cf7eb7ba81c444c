// The image class's Windows members: global memory blocks, DIB sections and GDI palettes.
#include <windows.h>

#include <cstring>
#include <vector>

#include "DibGlobal.h"
#include "mif.h"

namespace lx {

mif::mif(void* global) {
    if (auto dib = DibFromGlobal(static_cast<HGLOBAL>(global))) dib_ = std::move(*dib);
}

bool mif::attachdib(void* global) {
    auto dib = DibFromGlobal(static_cast<HGLOBAL>(global));
    if (!dib || !attachdib(std::move(*dib))) return false;
    GlobalFree(static_cast<HGLOBAL>(global));
    return true;
}

void* mif::createglobaldib() const { return DibToGlobal(dib_); }

HBITMAP__* mif::createbitmap(HPALETTE__** palette) const {
    if (palette) *palette = nullptr;
    if (empty()) return nullptr;
    // The DIB's header and colour table are a BITMAPINFO as they stand.
    const auto* info = reinterpret_cast<const BITMAPINFO*>(dib_.bytes().data());
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap || !bits) {
        if (bitmap) DeleteObject(bitmap);
        return nullptr;
    }
    std::memcpy(bits, dib_.bits(), dib_.stride() * static_cast<size_t>(height()));
    GdiFlush();
    const auto table = dib_.palette();
    if (palette && !table.empty()) {
        std::vector<uint8_t> block(sizeof(LOGPALETTE) + table.size() * sizeof(PALETTEENTRY));
        auto* log = reinterpret_cast<LOGPALETTE*>(block.data());
        log->palVersion = 0x300;
        log->palNumEntries = static_cast<WORD>(table.size());
        PALETTEENTRY* entries = log->palPalEntry;
        for (size_t i = 0; i < table.size(); ++i) entries[i] = PALETTEENTRY{table[i].r, table[i].g, table[i].b, 0};
        *palette = CreatePalette(log);
    }
    return bitmap;
}

bool mif::replace_palette(HPALETTE__* palette) {
    if (!palette || empty() || depth() > 8) return false;
    const UINT wanted = 1u << depth();
    std::vector<PALETTEENTRY> entries(wanted);
    const UINT got = GetPaletteEntries(palette, 0, wanted, entries.data());
    if (got == 0) return false;
    std::vector<Rgbq> table(got);
    for (UINT i = 0; i < got; ++i) table[i] = Rgbq{entries[i].peBlue, entries[i].peGreen, entries[i].peRed, 0};
    return replace_palette(std::span<const Rgbq>(table));
}

}  // namespace lx
