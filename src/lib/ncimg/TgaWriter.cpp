#include "TgaWriter.h"

#include "ImageSaveConvert.h"

namespace lx {

std::vector<uint8_t> EncodeTga(const PackedDib& source) {
    PackedDib dib = WidenToIndex8(WritableForm(source));
    if (dib.empty() || dib.width() > 65535 || dib.height() > 65535) return {};
    const int w = dib.width(), h = dib.height();
    const bool indexed = dib.bitCount() == 8;
    const bool grey = HasGreyRamp(dib);
    const bool alpha = HasUsableAlpha(dib);
    const int pixelBytes = indexed ? 1 : alpha ? 4 : 3;
    const int entries = indexed && !grey ? dib.paletteSize() : 0;

    std::vector<uint8_t> out(18, 0);
    out[1] = entries ? 1 : 0;
    out[2] = entries ? 1 : grey ? 3 : 2;
    WriteLe16(&out[5], static_cast<uint16_t>(entries));
    out[7] = entries ? 24 : 0;
    WriteLe16(&out[12], static_cast<uint16_t>(w));
    WriteLe16(&out[14], static_cast<uint16_t>(h));
    out[16] = static_cast<uint8_t>(pixelBytes * 8);
    out[17] = alpha ? 8 : 0;  // bottom-left origin, like the DIB's own row order
    for (int i = 0; i < entries; ++i) {
        const Rgbq q = dib.palette()[i];
        out.insert(out.end(), {q.b, q.g, q.r});
    }
    const size_t rowBytes = static_cast<size_t>(w) * pixelBytes;
    out.reserve(out.size() + rowBytes * h);
    const int sourceStep = dib.bitCount() / 8;
    for (int y = h - 1; y >= 0; --y) {
        const uint8_t* s = dib.row(y);
        if (sourceStep == pixelBytes) {
            out.insert(out.end(), s, s + rowBytes);
            continue;
        }
        for (int x = 0; x < w; ++x) out.insert(out.end(), s + x * sourceStep, s + x * sourceStep + pixelBytes);
    }
    return out;
}

}  // namespace lx
