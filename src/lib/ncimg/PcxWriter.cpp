#include "PcxWriter.h"

#include "ImageSaveConvert.h"

#include <algorithm>
#include <cstring>

namespace lx {
namespace {

// Runs of up to 63 equal bytes become a count byte (0xc0 | n) and the value; a single byte
// below 0xc0 stands for itself. Runs stop at the end of each plane line, as readers expect.
void EncodeLine(const uint8_t* line, size_t size, std::vector<uint8_t>& out) {
    size_t i = 0;
    while (i < size) {
        const uint8_t v = line[i];
        size_t n = 1;
        while (i + n < size && n < 63 && line[i + n] == v) ++n;
        if (n > 1 || v >= 0xc0) out.push_back(static_cast<uint8_t>(0xc0 | n));
        out.push_back(v);
        i += n;
    }
}

}  // namespace

std::vector<uint8_t> EncodePcx(const PackedDib& source) {
    PackedDib dib = WritableForm(source);
    // Readers take one-bit files as black and white whatever the header's palette says,
    // so other two-colour images are stored with the 256-colour table instead.
    const bool blackAndWhite = dib.bitCount() == 1 && dib.palette()[0] == Rgbq{0, 0, 0, 0} &&
                               dib.palette()[1] == Rgbq{255, 255, 255, 0};
    if (dib.bitCount() == 4 || (dib.bitCount() == 1 && !blackAndWhite)) dib = WidenToIndex8(dib);
    if (dib.bitCount() == 32) dib = ConvertDepth(dib, 24).value_or(PackedDib());
    if (dib.empty() || dib.width() > 65535 || dib.height() > 65535) return {};
    const int w = dib.width(), h = dib.height(), bits = dib.bitCount();
    const int planes = bits == 24 ? 3 : 1;
    const int planeBits = bits == 24 ? 8 : bits;
    size_t bytesPerLine = (static_cast<size_t>(w) * planeBits + 7) / 8;
    bytesPerLine += bytesPerLine & 1;  // lines hold an even number of bytes

    std::vector<uint8_t> out(128, 0);
    out[0] = 0x0a, out[1] = 5, out[2] = 1;
    out[3] = static_cast<uint8_t>(planeBits);
    WriteLe16(&out[8], static_cast<uint16_t>(w - 1));
    WriteLe16(&out[10], static_cast<uint16_t>(h - 1));
    WriteLe16(&out[12], 72);
    WriteLe16(&out[14], 72);
    if (bits == 1) std::fill(out.begin() + 19, out.begin() + 22, 255);  // entry 1 white
    out[65] = static_cast<uint8_t>(planes);
    WriteLe16(&out[66], static_cast<uint16_t>(bytesPerLine));
    WriteLe16(&out[68], bits == 8 && dib.hasGreyPalette() ? 2 : 1);

    std::vector<uint8_t> line(bytesPerLine * planes);
    for (int y = 0; y < h; ++y) {
        std::fill(line.begin(), line.end(), 0);
        const uint8_t* s = dib.row(y);
        if (bits == 24) {
            for (int x = 0; x < w; ++x) {
                line[x] = s[x * 3 + 2];
                line[bytesPerLine + x] = s[x * 3 + 1];
                line[2 * bytesPerLine + x] = s[x * 3];
            }
        } else {
            std::memcpy(line.data(), s, (static_cast<size_t>(w) * bits + 7) / 8);
        }
        for (int p = 0; p < planes; ++p) EncodeLine(line.data() + p * bytesPerLine, bytesPerLine, out);
    }
    if (bits == 8) {
        out.push_back(0x0c);
        const auto pal = dib.palette();
        for (int i = 0; i < 256; ++i) {
            const Rgbq q = i < static_cast<int>(pal.size()) ? pal[i] : Rgbq{};
            out.insert(out.end(), {q.r, q.g, q.b});
        }
    }
    return out;
}

}  // namespace lx
