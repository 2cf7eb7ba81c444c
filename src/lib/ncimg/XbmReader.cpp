#include "XbmReader.h"

#include "ImageLoadSupport.h"

#include <string_view>

namespace lx {
namespace {

std::string_view AsText(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The number after the first "#define <name><suffix>", or -1.
int64_t DefinedValue(std::string_view text, std::string_view suffix) {
    size_t at = 0;
    while ((at = text.find("#define", at)) != std::string_view::npos) {
        at += 7;
        size_t p = at;
        while (p < text.size() && (text[p] == ' ' || text[p] == '\t')) ++p;
        const size_t nameStart = p;
        while (p < text.size() && text[p] > ' ') ++p;
        const std::string_view name = text.substr(nameStart, p - nameStart);
        if (name.size() < suffix.size() || name.substr(name.size() - suffix.size()) != suffix) continue;
        while (p < text.size() && (text[p] == ' ' || text[p] == '\t')) ++p;
        int64_t v = 0;
        int digits = 0;
        for (; p < text.size() && text[p] >= '0' && text[p] <= '9' && v < INT32_MAX; ++p, ++digits)
            v = v * 10 + (text[p] - '0');
        return digits ? v : -1;
    }
    return -1;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

bool LooksLikeXbm(std::span<const uint8_t> head) {
    const std::string_view text = AsText(head);
    size_t p = 0;
    while (p < text.size() && (text[p] == ' ' || text[p] == '\t' || text[p] == '\r' || text[p] == '\n')) ++p;
    if (text.substr(p, 7) != "#define") return false;
    const size_t eol = text.find('\n', p);
    const std::string_view line = text.substr(p, eol == std::string_view::npos ? text.size() - p : eol - p);
    return line.find("_width") != std::string_view::npos;
}

std::optional<PackedDib> ReadXbm(std::span<const uint8_t> file) {
    const std::string_view text = AsText(file);
    const int64_t w = DefinedValue(text, "_width"), h = DefinedValue(text, "_height");
    const size_t open = text.find('{');
    if (w <= 0 || h <= 0 || open == std::string_view::npos) return std::nullopt;
    // X10 files declare "short" data and hold 16-bit words.
    const size_t declStart = text.rfind('\n', open);
    const std::string_view decl = text.substr(declStart == std::string_view::npos ? 0 : declStart, open);
    const bool words = decl.find("short") != std::string_view::npos;
    PackedDib dib = NewImage(w, h, 1, file.size());
    if (dib.empty()) return std::nullopt;
    dib.palette()[0] = Rgbq{255, 255, 255, 0};
    dib.palette()[1] = Rgbq{0, 0, 0, 0};

    const int width = static_cast<int>(w), unitBits = words ? 16 : 8;
    const int unitsPerRow = (width + unitBits - 1) / unitBits;
    size_t p = open + 1;
    for (int y = 0; y < dib.height(); ++y) {
        uint8_t* row = dib.row(y);
        for (int u = 0; u < unitsPerRow; ++u) {
            // Next "0x" literal; X bitmaps always write their data in hex.
            for (;;) {
                p = text.find_first_of("xX", p);
                if (p == std::string_view::npos) return std::nullopt;
                if (p > open && text[p - 1] == '0') break;
                ++p;
            }
            ++p;
            uint32_t v = 0;
            int digits = 0;
            for (int d; p < text.size() && (d = HexDigit(text[p])) >= 0 && digits < 8; ++p, ++digits) v = v << 4 | d;
            if (digits == 0) return std::nullopt;
            // Bit 0 of each unit is the leftmost pixel.
            for (int b = 0; b < unitBits; ++b) {
                const int x = u * unitBits + b;
                if (x < width && ((v >> b) & 1)) PutIndex(row, 1, x, 1);
            }
        }
    }
    return dib;
}

}  // namespace lx
