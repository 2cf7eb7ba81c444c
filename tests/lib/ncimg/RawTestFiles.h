// Camera-raw-like files for the preview tests: a little-endian TIFF structure whose IFD0
// holds 16-bit colour-filter-array sensor data (which no general decoder shows) and the
// orientation, and whose SubIFDs hold a JPEG preview and an uncompressed RGB thumbnail,
// the way NEF and DNG files lay them out.
#pragma once

#include "PackedDib.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace lxtest {

class TiffBuilder {
public:
    struct Entry {
        uint16_t tag;
        uint16_t type;  // 3 SHORT, 4 LONG
        std::vector<uint32_t> values;
    };

    TiffBuilder() : out_{'I', 'I', 42, 0, 0, 0, 0, 0} {}

    // Appends bytes (at an even offset) and returns where they start.
    uint32_t blob(const std::vector<uint8_t>& bytes) {
        if (out_.size() & 1) out_.push_back(0);
        const uint32_t at = static_cast<uint32_t>(out_.size());
        out_.insert(out_.end(), bytes.begin(), bytes.end());
        return at;
    }

    // Appends one IFD with its out-of-line values and returns its offset.
    uint32_t ifd(std::vector<Entry> entries) {
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
        std::vector<uint32_t> fields;
        for (const Entry& e : entries) {
            const size_t size = e.type == 3 ? 2 : 4;
            std::vector<uint8_t> bytes;
            for (uint32_t v : e.values)
                for (size_t i = 0; i < size; ++i) bytes.push_back(static_cast<uint8_t>(v >> (8 * i)));
            if (bytes.size() > 4) {
                fields.push_back(blob(bytes));
            } else {
                bytes.resize(4);
                fields.push_back(static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16 | bytes[3] << 24));
            }
        }
        std::vector<uint8_t> table;
        put(table, static_cast<uint32_t>(entries.size()), 2);
        for (size_t i = 0; i < entries.size(); ++i) {
            put(table, entries[i].tag, 2);
            put(table, entries[i].type, 2);
            put(table, static_cast<uint32_t>(entries[i].values.size()), 4);
            put(table, fields[i], 4);
        }
        put(table, 0, 4);
        return blob(table);
    }

    std::vector<uint8_t> finish(uint32_t firstIfd) {
        for (int i = 0; i < 4; ++i) out_[4 + i] = static_cast<uint8_t>(firstIfd >> (8 * i));
        return out_;
    }

private:
    static void put(std::vector<uint8_t>& to, uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) to.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
    std::vector<uint8_t> out_;
};

// What goes into one raw-like file. An empty JPEG or an empty thumbnail is left out.
struct RawParts {
    std::vector<uint8_t> jpeg;
    lx::PackedDib thumbnail;  // 24-bit
    int orientation = 0;      // 0: no orientation tag
};

inline std::vector<uint8_t> MakeRawLikeFile(const RawParts& parts) {
    TiffBuilder tiff;
    std::vector<uint32_t> subIfds;
    if (!parts.jpeg.empty()) {
        const uint32_t at = tiff.blob(parts.jpeg);
        subIfds.push_back(tiff.ifd({{0xFE, 4, {1}}, {0x103, 3, {6}}, {0x201, 4, {at}},
                                    {0x202, 4, {static_cast<uint32_t>(parts.jpeg.size())}}}));
    }
    if (!parts.thumbnail.empty()) {
        const lx::PackedDib& t = parts.thumbnail;
        std::vector<uint8_t> rgb;
        for (int y = 0; y < t.height(); ++y)
            for (int x = 0; x < t.width(); ++x) {
                const uint8_t* p = t.row(y) + x * 3;
                rgb.insert(rgb.end(), {p[2], p[1], p[0]});
            }
        const uint32_t at = tiff.blob(rgb);
        subIfds.push_back(tiff.ifd({{0xFE, 4, {1}}, {0x100, 4, {static_cast<uint32_t>(t.width())}},
                                    {0x101, 4, {static_cast<uint32_t>(t.height())}}, {0x102, 3, {8, 8, 8}},
                                    {0x103, 3, {1}}, {0x106, 3, {2}}, {0x111, 4, {at}}, {0x115, 3, {3}},
                                    {0x117, 4, {static_cast<uint32_t>(rgb.size())}}, {0x11C, 3, {1}}}));
    }
    // The sensor data: 8 x 6 samples of 16 bits behind a colour filter array.
    const uint32_t sensor = tiff.blob(std::vector<uint8_t>(8 * 6 * 2, 0x5a));
    std::vector<TiffBuilder::Entry> ifd0 = {
        {0xFE, 4, {0}},       {0x100, 4, {8}},         {0x101, 4, {6}},  {0x102, 3, {16}},
        {0x103, 3, {1}},      {0x106, 3, {32803}},     {0x111, 4, {sensor}}, {0x115, 3, {1}},
        {0x117, 4, {8 * 6 * 2}}, {0x828D, 3, {2, 2}}, {0x828E, 3, {0x0100, 0x0201}},
    };
    if (parts.orientation != 0) ifd0.push_back({0x112, 3, {static_cast<uint32_t>(parts.orientation)}});
    if (!subIfds.empty()) ifd0.push_back({0x14A, 4, subIfds});
    return tiff.finish(tiff.ifd(ifd0));
}

}  // namespace lxtest
