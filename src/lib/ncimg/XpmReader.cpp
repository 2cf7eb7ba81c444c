#include "XpmReader.h"

#include "ImageLoadSupport.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace lx {
namespace {

constexpr uint32_t kTransparent = 0xff000000u;  // outside the 24-bit colour range

struct NamedColour {
    const char* name;
    uint32_t rgb;
};

// The colours pixmaps in the wild use by name, with their X11 values.
constexpr NamedColour kNamedColours[] = {
    {"black", 0x000000}, {"white", 0xffffff}, {"red", 0xff0000}, {"green", 0x00ff00},
    {"blue", 0x0000ff}, {"yellow", 0xffff00}, {"cyan", 0x00ffff}, {"magenta", 0xff00ff},
    {"gray", 0xbebebe}, {"grey", 0xbebebe}, {"lightgray", 0xd3d3d3}, {"lightgrey", 0xd3d3d3},
    {"darkgray", 0xa9a9a9}, {"darkgrey", 0xa9a9a9}, {"dimgray", 0x696969}, {"dimgrey", 0x696969},
    {"orange", 0xffa500}, {"purple", 0xa020f0}, {"brown", 0xa52a2a}, {"pink", 0xffc0cb},
    {"navy", 0x000080}, {"navyblue", 0x000080}, {"maroon", 0xb03060}, {"gold", 0xffd700},
    {"darkred", 0x8b0000}, {"darkgreen", 0x006400}, {"darkblue", 0x00008b}, {"lightblue", 0xadd8e6},
    {"skyblue", 0x87ceeb}, {"violet", 0xee82ee}, {"orchid", 0xda70d6}, {"tan", 0xd2b48c},
    {"beige", 0xf5f5dc}, {"khaki", 0xf0e68c}, {"salmon", 0xfa8072}, {"coral", 0xff7f50},
    {"tomato", 0xff6347}, {"turquoise", 0x40e0d0}, {"forestgreen", 0x228b22}, {"steelblue", 0x4682b4},
    {"slategray", 0x708090}, {"slategrey", 0x708090}, {"wheat", 0xf5deb3}, {"ivory", 0xfffff0},
    {"gainsboro", 0xdcdcdc}, {"silver", 0xc0c0c0}, {"olive", 0x808000}, {"teal", 0x008080},
};

std::string Normalised(std::string_view name) {
    std::string out;
    for (char c : name)
        if (c != ' ' && c != '\t') out += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return out;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// "#rgb", "#rrggbb", "#rrrgggbbb" or "#rrrrggggbbbb": the top 8 bits of each channel.
std::optional<uint32_t> HexColour(std::string_view text) {
    const size_t digits = text.size() - 1;
    if (text.empty() || text[0] != '#' || digits % 3 != 0 || digits == 0 || digits > 12) return std::nullopt;
    const size_t per = digits / 3;
    uint32_t rgb = 0;
    for (int c = 0; c < 3; ++c) {
        uint32_t v = 0;
        for (size_t i = 0; i < per; ++i) {
            const int d = HexValue(text[1 + c * per + i]);
            if (d < 0) return std::nullopt;
            v = v << 4 | d;
        }
        const uint32_t eight = per == 1 ? v * 17 : v >> (4 * (per - 2));
        rgb = rgb << 8 | eight;
    }
    return rgb;
}

std::optional<uint32_t> ParseColour(std::string_view value) {
    if (auto hex = HexColour(value)) return hex;
    const std::string name = Normalised(value);
    if (name == "none") return kTransparent;
    return XColourByName(name);
}

// Every C string literal of the file in order, comments skipped.
std::vector<std::string_view> StringLiterals(std::string_view text) {
    std::vector<std::string_view> out;
    size_t p = 0;
    while (p < text.size()) {
        if (text.compare(p, 2, "/*") == 0) {
            const size_t end = text.find("*/", p + 2);
            p = end == std::string_view::npos ? text.size() : end + 2;
        } else if (text[p] == '"') {
            const size_t end = text.find('"', p + 1);
            if (end == std::string_view::npos) break;
            out.push_back(text.substr(p + 1, end - p - 1));
            p = end + 1;
        } else {
            ++p;
        }
    }
    return out;
}

std::vector<std::string_view> Words(std::string_view s) {
    std::vector<std::string_view> out;
    size_t p = 0;
    while (p < s.size()) {
        while (p < s.size() && (s[p] == ' ' || s[p] == '\t')) ++p;
        const size_t start = p;
        while (p < s.size() && s[p] != ' ' && s[p] != '\t') ++p;
        if (p > start) out.push_back(s.substr(start, p - start));
    }
    return out;
}

// The colour of one colour line after its pixel characters: "c" wins over the grey and
// mono keys; a value may be several words ("light grey").
std::optional<uint32_t> LineColour(std::string_view rest) {
    const std::vector<std::string_view> words = Words(rest);
    static const char* const kPreference[] = {"c", "g", "g4", "m"};
    for (const char* key : kPreference) {
        for (size_t i = 0; i < words.size(); ++i) {
            if (words[i] != key) continue;
            std::string value;
            for (size_t j = i + 1; j < words.size(); ++j) {
                const auto& wd = words[j];
                if (wd == "c" || wd == "g" || wd == "g4" || wd == "m" || wd == "s") break;
                if (!value.empty()) value += ' ';
                value.append(wd);
            }
            if (auto colour = ParseColour(value)) return colour;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<uint32_t> XColourByName(std::string_view raw) {
    const std::string name = Normalised(raw);
    for (const auto& entry : kNamedColours)
        if (name == entry.name) return entry.rgb;
    // "grayN" / "greyN": N percent of white.
    if ((name.rfind("gray", 0) == 0 || name.rfind("grey", 0) == 0) && name.size() > 4 && name.size() <= 7) {
        int n = 0;
        for (size_t i = 4; i < name.size(); ++i) {
            if (name[i] < '0' || name[i] > '9') return std::nullopt;
            n = n * 10 + (name[i] - '0');
        }
        if (n > 100) return std::nullopt;
        const uint32_t v = static_cast<uint32_t>((n * 255 + 50) / 100);
        return v << 16 | v << 8 | v;
    }
    return std::nullopt;
}

bool LooksLikeXpm(std::span<const uint8_t> head) {
    const std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
    return text.substr(0, 256).find("/* XPM */") != std::string_view::npos;
}

std::optional<PackedDib> ReadXpm(std::span<const uint8_t> file) {
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    const std::vector<std::string_view> strings = StringLiterals(text);
    if (strings.empty()) return std::nullopt;
    const std::vector<std::string_view> values = Words(strings[0]);
    if (values.size() < 4) return std::nullopt;
    int64_t v[4];
    for (int i = 0; i < 4; ++i) {
        v[i] = 0;
        if (values[i].empty() || values[i].size() > 9) return std::nullopt;
        for (char c : values[i]) {
            if (c < '0' || c > '9') return std::nullopt;
            v[i] = v[i] * 10 + (c - '0');
        }
    }
    const int64_t w = v[0], h = v[1], colours = v[2], cpp = v[3];
    if (cpp < 1 || cpp > 8 || colours < 1 || static_cast<size_t>(colours) + h + 1 > strings.size() + 0 ||
        !PlausibleSize(w, h, file.size()))
        return std::nullopt;

    std::unordered_map<std::string_view, int> indexOf;
    std::vector<uint32_t> table;
    bool transparent = false;
    for (int64_t i = 0; i < colours; ++i) {
        const std::string_view line = strings[1 + i];
        if (line.size() < static_cast<size_t>(cpp)) return std::nullopt;
        const auto colour = LineColour(line.substr(cpp));
        if (!colour) return std::nullopt;
        transparent |= *colour == kTransparent;
        indexOf.emplace(line.substr(0, cpp), static_cast<int>(table.size()));
        table.push_back(*colour);
    }
    const bool palette = !transparent && table.size() <= 256;
    PackedDib dib = NewImage(w, h, palette ? 8 : 32, file.size());
    if (dib.empty()) return std::nullopt;
    if (palette) {
        auto pal = dib.palette();
        for (size_t i = 0; i < table.size(); ++i)
            pal[i] = Rgbq{static_cast<uint8_t>(table[i]), static_cast<uint8_t>(table[i] >> 8),
                          static_cast<uint8_t>(table[i] >> 16), 0};
    }
    const int width = static_cast<int>(w);
    for (int y = 0; y < dib.height(); ++y) {
        const std::string_view line = strings[1 + colours + y];
        if (line.size() < static_cast<size_t>(width) * cpp) return std::nullopt;
        uint8_t* row = dib.row(y);
        for (int x = 0; x < width; ++x) {
            const auto found = indexOf.find(line.substr(static_cast<size_t>(x) * cpp, cpp));
            if (found == indexOf.end()) return std::nullopt;
            if (palette) {
                row[x] = static_cast<uint8_t>(found->second);
                continue;
            }
            const uint32_t c = table[found->second];
            if (c == kTransparent) PutBgra(row, x, 0, 0, 0, 0);
            else PutBgra(row, x, c >> 16, c >> 8, c, 255);
        }
    }
    if (palette) return dib;
    return DropOpaqueAlpha(std::move(dib));
}

}  // namespace lx
