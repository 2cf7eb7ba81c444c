#include "ImageLoadOrientation.h"

#include "ImageLoadSupport.h"
#include "mif.h"

#include <string_view>

namespace lx {
namespace {

// The orientation entry of the IFD0 of a TIFF structure that starts at `tiff`.
int OrientationInTiff(std::span<const uint8_t> tiff) {
    if (tiff.size() < 8) return 0;
    const bool little = tiff[0] == 'I' && tiff[1] == 'I';
    if (!little && !(tiff[0] == 'M' && tiff[1] == 'M')) return 0;
    ByteCursor in(tiff, 2);
    auto u16 = [&]() { return little ? in.le16() : in.be16(); };
    auto u32 = [&]() { return little ? in.le32() : in.be32(); };
    if (u16() != 42) return 0;
    if (!in.seek(u32())) return 0;
    const int entries = u16();
    for (int i = 0; i < entries && !in.failed(); ++i) {
        const uint16_t tag = u16(), type = u16();
        u32();  // count
        const uint16_t value = u16();
        u16();
        if (tag == 0x0112 && type == 3) return value >= 1 && value <= 8 ? value : 0;
    }
    return 0;
}

}  // namespace

int ReadExifOrientation(std::span<const uint8_t> file) {
    if (file.size() >= 4 && (file[0] == 'I' || file[0] == 'M')) return OrientationInTiff(file);
    if (file.size() < 4 || file[0] != 0xff || file[1] != 0xd8) return 0;
    // Walk the JPEG's marker segments up to the first scan looking for "Exif\0\0" in APP1.
    ByteCursor in(file, 2);
    while (!in.failed()) {
        if (in.u8() != 0xff) return 0;
        uint8_t marker = in.u8();
        while (marker == 0xff) marker = in.u8();
        if (marker == 0xda || marker == 0xd9) return 0;
        const size_t length = in.be16();
        if (length < 2 || in.failed()) return 0;
        const size_t start = in.pos();
        const uint8_t* body = in.take(length - 2);
        if (!body) return 0;
        if (marker == 0xe1 && length >= 8 && std::string_view(reinterpret_cast<const char*>(body), 6) ==
                                                 std::string_view("Exif\0\0", 6))
            return OrientationInTiff(file.subspan(start + 6, length - 8));
    }
    return 0;
}

bool OrientUpright(PackedDib& dib, int orientation) {
    if (orientation < 2 || orientation > 8) return true;
    mif image(dib);
    if (image.empty()) return false;
    bool ok = true;
    switch (orientation) {
    case 2: ok = image.mirror(0, 0, 0, 0); break;
    case 3: ok = image.rotate(2); break;
    case 4: ok = image.flip(0, 0, 0, 0); break;
    case 5: ok = image.rotate(0) && image.mirror(0, 0, 0, 0); break;
    case 6: ok = image.rotate(0); break;
    case 7: ok = image.rotate(0) && image.flip(0, 0, 0, 0); break;
    case 8: ok = image.rotate(1); break;
    }
    if (!ok) return false;
    PackedDib turned = image.createdib();
    if (turned.empty()) return false;
    dib = std::move(turned);
    return true;
}

}  // namespace lx
