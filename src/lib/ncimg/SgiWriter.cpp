#include "SgiWriter.h"

#include "ImageSaveConvert.h"

#include <algorithm>

namespace lx {
namespace {

void PutBe16(uint8_t* p, uint16_t v) { p[0] = static_cast<uint8_t>(v >> 8), p[1] = static_cast<uint8_t>(v); }
void PutBe32(uint8_t* p, uint32_t v) {
    p[0] = static_cast<uint8_t>(v >> 24), p[1] = static_cast<uint8_t>(v >> 16);
    p[2] = static_cast<uint8_t>(v >> 8), p[3] = static_cast<uint8_t>(v);
}

}  // namespace

void SgiEncodeRow(const uint8_t* s, size_t count, std::vector<uint8_t>& out) {
    size_t i = 0;
    while (i < count) {
        // A literal stretch runs until three equal samples start a repeat worth its counter.
        size_t start = i;
        while (i < count && i - start < 127 &&
               !(i + 2 < count && s[i] == s[i + 1] && s[i] == s[i + 2]))
            ++i;
        if (i > start) {
            out.push_back(static_cast<uint8_t>(0x80 | (i - start)));
            out.insert(out.end(), s + start, s + i);
            continue;
        }
        size_t n = 1;
        while (i + n < count && n < 127 && s[i + n] == s[i]) ++n;
        out.push_back(static_cast<uint8_t>(n));
        out.push_back(s[i]);
        i += n;
    }
    out.push_back(0);
}

std::vector<uint8_t> EncodeSgi(const PackedDib& source) {
    PackedDib dib = WritableForm(source);
    if (dib.empty() || dib.width() > 65535 || dib.height() > 65535) return {};
    const bool grey = HasGreyRamp(dib);
    if (dib.bitCount() <= 8 && !grey) dib = ConvertDepth(dib, 24).value_or(PackedDib());
    if (dib.empty()) return {};
    const int w = dib.width(), h = dib.height();
    const int channels = grey ? 1 : HasUsableAlpha(dib) ? 4 : 3;
    const int step = dib.bitCount() / 8;

    const size_t rows = static_cast<size_t>(h) * channels;
    std::vector<uint8_t> out(512 + rows * 8, 0);
    PutBe16(&out[0], 474);
    out[2] = 1;  // run-length encoded
    out[3] = 1;  // one byte per sample
    PutBe16(&out[4], channels == 1 ? 2 : 3);
    PutBe16(&out[6], static_cast<uint16_t>(w));
    PutBe16(&out[8], static_cast<uint16_t>(h));
    PutBe16(&out[10], static_cast<uint16_t>(channels));
    PutBe32(&out[16], 255);  // largest sample value
    std::vector<uint8_t> samples(w);
    // Channel byte positions in a BGR(A) pixel, in SGI order red, green, blue, alpha.
    static const int kSlot[4] = {2, 1, 0, 3};
    for (int c = 0; c < channels; ++c) {
        for (int line = 0; line < h; ++line) {  // SGI rows run bottom to top
            const uint8_t* s = dib.row(h - 1 - line);
            for (int x = 0; x < w; ++x) samples[x] = channels == 1 ? s[x] : s[x * step + kSlot[c]];
            const size_t at = out.size();
            SgiEncodeRow(samples.data(), samples.size(), out);
            const size_t index = static_cast<size_t>(c) * h + line;
            if (out.size() > UINT32_MAX) return {};
            PutBe32(&out[512 + index * 4], static_cast<uint32_t>(at));
            PutBe32(&out[512 + rows * 4 + index * 4], static_cast<uint32_t>(out.size() - at));
        }
    }
    return out;
}

}  // namespace lx
