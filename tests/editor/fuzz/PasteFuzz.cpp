// The paste as the editor runs it, on hostile input: the first 40 bytes are the stored
// "Paste" record, the rest the clipboard's packed DIB, laid over a small document by the
// anchor and offsets the record names, with its shadow, mode and opacity.
#include <cstdint>
#include <cstring>

#include "PackedDib.h"
#include "PasteBlend.h"
#include "PasteSettings.h"
#include "mif.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < sizeof(lx::PasteSettings)) return 0;
    const lx::PasteSettings settings = lx::PasteSettingsFromStored(data, sizeof(lx::PasteSettings));
    auto dib = lx::PackedDib::FromBytes(data + sizeof settings, size - sizeof settings);
    // Small pictures keep each run fast; the placement and clipping are under test.
    if (!dib || static_cast<int64_t>(dib->width()) * dib->height() > 4096) return 0;
    lx::mif layer;
    if (!layer.attachdib(std::move(*dib))) return 0;
    if (layer.depth() > 24 || layer.depth() == 16) layer.setdepth(24);
    lx::mif document(23, 17, 24);
    document.solidfill(nullptr, 0x336699, 255, 0);
    const lx::PastePoint at = lx::AnchorPosition(settings.anchor, document.width(), document.height(), layer.width(), layer.height());
    lx::BlendLayer(document, layer, at.x + settings.offsetX, at.y + settings.offsetY, settings);
    return 0;
}
