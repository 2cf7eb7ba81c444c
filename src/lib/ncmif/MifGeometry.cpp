// The operations that move pixels without changing them: crop, rotation, flips, nearest
// neighbour scaling and block copies. They work on raw pixel values, so every depth and
// format keeps its palette or masks.
#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "MifPixels.h"
#include "mif.h"

namespace lx {

using namespace mifpix;

namespace {

bool SameFormat(const PackedDib& a, const PackedDib& b) {
    if (a.bitCount() != b.bitCount() || a.compression() != b.compression()) return false;
    uint32_t am[3], bm[3];
    a.masks(am[0], am[1], am[2]);
    b.masks(bm[0], bm[1], bm[2]);
    return std::equal(am, am + 3, bm);
}

}  // namespace

bool mif::crop(const MifRect* rect) {
    MifRect r;
    if (!validaterect(rect, &r)) return false;
    PackedDib out = MakeLike(dib_, r.right - r.left, r.bottom - r.top);
    if (out.empty()) return false;
    for (int y = r.top; y < r.bottom; ++y) CopyPixels(dib_.row(y), r.left, out.row(y - r.top), 0, out.width(), depth());
    dib_ = std::move(out);
    return true;
}

bool mif::rotate(int code) {
    if (empty() || code < 0 || code > 2) return false;
    const int w = width(), h = height(), bits = depth();
    PackedDib out = code == 2 ? MakeLike(dib_, w, h) : MakeLike(dib_, h, w);
    if (out.empty()) return false;
    const PackedDib& src = dib_;
    const auto rotateRows = [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const uint8_t* row = src.row(y);
            for (int x = 0; x < w; ++x) {
                const uint32_t v = GetRaw(row, x, bits);
                // Clockwise, row y becomes column h-1-y and column x becomes row x.
                if (code == 0) SetRaw(out.row(x), h - 1 - y, bits, v);
                else if (code == 1) SetRaw(out.row(w - 1 - x), y, bits, v);
                else SetRaw(out.row(h - 1 - y), w - 1 - x, bits, v);
            }
        }
    };
    // Below 8 bits neighbouring output columns share bytes, so one thread writes them all.
    if (bits < 8 && code != 2) rotateRows(0, h);
    else ParallelRows(h, w, rotateRows);
    dib_ = std::move(out);
    return true;
}

bool mif::flip(int left, int top, int width, int height) {
    const MifRect wanted = RectFromSize(left, top, width, height);
    MifRect r;
    if (!validaterect(&wanted, &r)) return false;
    const int count = r.right - r.left;
    std::vector<uint8_t> keep(dib_.stride());
    for (int a = r.top, b = r.bottom - 1; a < b; ++a, --b) {
        CopyPixels(dib_.row(a), r.left, keep.data(), 0, count, depth());
        CopyPixels(dib_.row(b), r.left, dib_.row(a), r.left, count, depth());
        CopyPixels(keep.data(), 0, dib_.row(b), r.left, count, depth());
    }
    return true;
}

bool mif::mirror(int left, int top, int width, int height) {
    const MifRect wanted = RectFromSize(left, top, width, height);
    MifRect r;
    if (!validaterect(&wanted, &r)) return false;
    const int bits = depth();
    for (int y = r.top; y < r.bottom; ++y) {
        uint8_t* row = dib_.row(y);
        for (int a = r.left, b = r.right - 1; a < b; ++a, --b) {
            const uint32_t va = GetRaw(row, a, bits);
            SetRaw(row, a, bits, GetRaw(row, b, bits));
            SetRaw(row, b, bits, va);
        }
    }
    return true;
}

bool mif::zoom_near(int newWidth, int newHeight) {
    if (empty() || newWidth <= 0 || newHeight <= 0) return false;
    PackedDib out = MakeLike(dib_, newWidth, newHeight);
    if (out.empty()) return false;
    const int w = width(), h = height(), bits = depth();
    // The source pixel whose area holds the centre of the target pixel.
    std::vector<int> columns(static_cast<size_t>(newWidth));
    for (int x = 0; x < newWidth; ++x) columns[x] = static_cast<int>((2 * int64_t{x} + 1) * w / (2 * int64_t{newWidth}));
    for (int y = 0; y < newHeight; ++y) {
        const uint8_t* src = dib_.row(static_cast<int>((2 * int64_t{y} + 1) * h / (2 * int64_t{newHeight})));
        uint8_t* dst = out.row(y);
        for (int x = 0; x < newWidth; ++x) SetRaw(dst, x, bits, GetRaw(src, columns[x], bits));
    }
    dib_ = std::move(out);
    return true;
}

bool mif::blt(int x, int y, int w, int h, const mif* source, int srcX, int srcY) {
    if (empty() || source == nullptr || source->empty() || w <= 0 || h <= 0) return false;
    // Clip against the source, then the target, moving both corners together.
    int64_t sx = srcX, sy = srcY, dx = x, dy = y, cw = w, ch = h;
    const auto clipStart = [&](int64_t& a, int64_t& b, int64_t& len) {
        const int64_t cut = std::max<int64_t>({0, -a, -b});
        a += cut;
        b += cut;
        len -= cut;
    };
    clipStart(sx, dx, cw);
    clipStart(sy, dy, ch);
    cw = std::min({cw, source->width() - sx, width() - dx});
    ch = std::min({ch, source->height() - sy, height() - dy});
    if (cw <= 0 || ch <= 0) return false;

    // A copy of itself must read the pixels as they were before the copy began.
    std::optional<PackedDib> own;
    if (source == this) own = dib_;
    const PackedDib& src = own ? *own : source->dib_;
    const int bits = depth();
    if (SameFormat(src, dib_)) {
        for (int64_t i = 0; i < ch; ++i)
            CopyPixels(src.row(static_cast<int>(sy + i)), static_cast<int>(sx), dib_.row(static_cast<int>(dy + i)),
                       static_cast<int>(dx), static_cast<int>(cw), bits);
        return true;
    }
    NearestCache cache(dib_.palette());
    for (int64_t i = 0; i < ch; ++i)
        for (int64_t j = 0; j < cw; ++j) {
            uint32_t c = src.pixel(static_cast<int>(sx + j), static_cast<int>(sy + i));
            if (!(src.bitCount() == 32 && src.compression() == kBiRgb)) c |= 0xff000000u;
            WriteColour(dib_, static_cast<int>(dx + j), static_cast<int>(dy + i), c, &cache);
        }
    return true;
}

}  // namespace lx
