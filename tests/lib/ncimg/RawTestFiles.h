// Camera-raw-like files for the preview tests: a little-endian TIFF structure whose IFD0
// holds 16-bit colour-filter-array sensor data (which no general decoder shows) and the
// orientation, and whose SubIFDs hold a JPEG preview and an uncompressed RGB thumbnail,
// the way NEF and DNG files lay them out.
#pragma once

#include "../exif/ExifTestSupport.h"
#include "PackedDib.h"

namespace lxtest {

// What goes into one raw-like file. An empty JPEG or an empty thumbnail is left out.
struct RawParts {
    std::vector<uint8_t> jpeg;
    lx::PackedDib thumbnail;  // 24-bit
    int orientation = 0;      // 0: no orientation tag
};

inline std::vector<uint8_t> MakeRawLikeFile(const RawParts& parts) {
    TiffBuilder t;
    const int ifd0 = t.addIfd();
    std::vector<int> subIfds;
    if (!parts.jpeg.empty()) {
        const int sub = t.addIfd(), jpeg = t.addBlob(parts.jpeg);
        t.addLong(sub, 0xFE, 1);
        t.addShort(sub, 0x103, 6);
        t.addBlobOffset(sub, 0x201, jpeg);
        t.addBlobLength(sub, 0x202, jpeg);
        subIfds.push_back(sub);
    }
    if (const lx::PackedDib& thumb = parts.thumbnail; !thumb.empty()) {
        Bytes rgb;
        for (int y = 0; y < thumb.height(); ++y)
            for (int x = 0; x < thumb.width(); ++x) {
                const uint8_t* p = thumb.row(y) + x * 3;
                rgb.insert(rgb.end(), {p[2], p[1], p[0]});
            }
        const int sub = t.addIfd(), pixels = t.addBlob(rgb);
        t.addLong(sub, 0xFE, 1);
        t.addLong(sub, 0x100, static_cast<uint32_t>(thumb.width()));
        t.addLong(sub, 0x101, static_cast<uint32_t>(thumb.height()));
        t.addShorts(sub, 0x102, {8, 8, 8});
        t.addShort(sub, 0x103, 1);
        t.addShort(sub, 0x106, 2);
        t.addBlobOffset(sub, 0x111, pixels);
        t.addShort(sub, 0x115, 3);
        t.addBlobLength(sub, 0x117, pixels);
        t.addShort(sub, 0x11C, 1);
        subIfds.push_back(sub);
    }
    // The sensor data: 8 x 6 samples of 16 bits behind a colour filter array.
    const int sensor = t.addBlob(Bytes(8 * 6 * 2, 0x5a));
    t.addLong(ifd0, 0xFE, 0);
    t.addLong(ifd0, 0x100, 8);
    t.addLong(ifd0, 0x101, 6);
    t.addShort(ifd0, 0x102, 16);
    t.addShort(ifd0, 0x103, 1);
    t.addShort(ifd0, 0x106, 32803);
    t.addBlobOffset(ifd0, 0x111, sensor);
    if (parts.orientation != 0) t.addShort(ifd0, 0x112, static_cast<uint16_t>(parts.orientation));
    t.addShort(ifd0, 0x115, 1);
    t.addBlobLength(ifd0, 0x117, sensor);
    if (!subIfds.empty()) t.addIfdPointers(ifd0, 0x14A, subIfds);
    t.addShorts(ifd0, 0x828D, {2, 2});
    t.addShorts(ifd0, 0x828E, {0x0100, 0x0201});
    return t.build();
}

}  // namespace lxtest
