// A hostile DIB and hostile arguments through every operation of the image class. The first
// 16 bytes choose the arguments, the rest is the packed DIB.
#include <cstring>

#include "PackedDib.h"
#include "mif.h"

namespace {

struct Arguments {
    const uint8_t* p;
    size_t left;
    int next(int lo, int hi) {  // a value in [lo, hi]
        const int span = hi - lo + 1;
        if (left == 0) return lo;
        --left;
        return lo + *p++ % span;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 16) return 0;
    auto dib = lx::PackedDib::FromBytes(data + 16, size - 16);
    // Small images keep each run fast; the size logic is what is under test, not throughput.
    if (!dib || static_cast<int64_t>(dib->width()) * dib->height() > 4096) return 0;
    Arguments a{data, 16};
    lx::mif image(*dib);
    const lx::mif layer(*dib);
    const lx::MifRect rect{a.next(-4, 20), a.next(-4, 20), a.next(-4, 40), a.next(-4, 40)};
    const int op = a.next(0, 15);
    const int w = a.next(-1, 40), h = a.next(-1, 40), m = a.next(-2, 20), x = a.next(-20, 20), y = a.next(-20, 20);
    switch (op) {
    case 0: image.crop(&rect); break;
    case 1: image.zoom(w, h, m, 0); break;
    case 2: image.zoom_linear(w, h); break;
    case 3: image.zoom_near(w, h); break;
    case 4: image.rotate(m % 4); break;
    case 5: image.flip(rect.left, rect.top, rect.right, rect.bottom); image.mirror(x, y, w, h); break;
    case 6: image.grayscale(); image.normalize(&rect); break;
    case 7: image.quantize(m * 13, m % 5, nullptr); break;
    case 8: image.blur_gauss_rle(&rect, m / 3.0); break;
    case 9: image.solidfill(&rect, 0x123456, m * 13, m & 1); image.solidfill(x, y, w, h, 0xabcdef, 255, 0); break;
    case 10: image.blt(x, y, w, h, &layer, rect.left, rect.top); break;
    case 11: image.addlayer(&layer, x, y, m, 200); break;
    case 12: image.settoalpha(); image.addlayer(&image, x, y, 0, 255); break;
    case 13: image.alloccmap(m * 17); break;
    case 14: image.setdepth(m * 3); break;
    default: image.blt(x, y, w, h, &image, rect.left, rect.top); break;
    }
    // Whatever happened, the image left behind must read back as a valid DIB.
    const lx::PackedDib out = image.createdib();
    if (!out.empty() && !lx::PackedDib::FromBytes(out.bytes().data(), out.bytes().size())) __builtin_trap();
    volatile int colours = image.countcolors();
    (void)colours;
    return 0;
}
