// Lifetime, rectangles, palettes and depth changes of the image class.
#include "mif.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "MifPixels.h"

namespace lx {

using namespace mifpix;

mif::mif(const PackedDib& dib) : dib_(dib) {}

mif::mif(int width, int height, int depth) : dib_(PackedDib::Create(width, height, depth)) {}

void mif::destroy() { dib_ = PackedDib{}; }

bool mif::attachdib(PackedDib&& dib) {
    if (dib.empty()) return false;
    dib_ = std::move(dib);
    return true;
}

PackedDib mif::createdib() const { return dib_; }

PackedDib mif::detachdib() { return std::exchange(dib_, PackedDib{}); }

bool mif::validaterect(const MifRect* rect, MifRect* clipped) const {
    MifRect r{0, 0, width(), height()};
    if (rect) {
        r.left = std::max(rect->left, 0);
        r.top = std::max(rect->top, 0);
        r.right = std::min(rect->right, width());
        r.bottom = std::min(rect->bottom, height());
    }
    const bool ok = !empty() && r.left < r.right && r.top < r.bottom;
    if (clipped) *clipped = ok ? r : MifRect{};
    return ok;
}

bool mif::alloccmap(int count) {
    if (empty() || depth() > 8 || count < 1 || count > (1 << depth())) return false;
    std::vector<Rgbq> table(static_cast<size_t>(count));
    const auto old = dib_.palette();
    std::copy_n(old.begin(), std::min<size_t>(old.size(), table.size()), table.begin());
    return replace_palette(table);
}

bool mif::replace_palette(std::span<const Rgbq> entries) {
    if (empty() || depth() > 8 || entries.empty() || entries.size() > (1u << depth())) return false;
    if (entries.size() == static_cast<size_t>(dib_.paletteSize())) {
        std::copy(entries.begin(), entries.end(), dib_.palette().begin());
        return true;
    }
    PackedDib out = MakeWithPalette(width(), height(), depth(), entries);
    if (out.empty()) return false;
    std::memcpy(out.bits(), dib_.bits(), dib_.stride() * static_cast<size_t>(height()));
    dib_ = std::move(out);
    return true;
}

namespace {

bool AllGrey(const PackedDib& dib) {
    if (dib.bitCount() <= 8) return dib.hasGreyPalette();
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x) {
            const uint32_t c = dib.pixel(x, y);
            if (((c >> 16) & 0xff) != (c & 0xff) || ((c >> 8) & 0xff) != (c & 0xff)) return false;
        }
    return true;
}

// A grey image at a palette depth: 2^bits evenly spaced levels.
PackedDib ToGreyLevels(const PackedDib& dib, int bits) {
    PackedDib out = PackedDib::Create(dib.width(), dib.height(), bits);
    if (out.empty()) return out;
    const int top = (1 << bits) - 1;
    for (int y = 0; y < dib.height(); ++y) {
        uint8_t* row = out.row(y);
        for (int x = 0; x < dib.width(); ++x) {
            const int level = static_cast<int>(dib.pixel(x, y) & 0xff);
            SetRaw(row, x, bits, static_cast<uint32_t>((level * top + 127) / 255));
        }
    }
    return out;
}

}  // namespace

bool mif::setdepth(int bits) {
    if (empty()) return false;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
    if (bits == depth() && dib_.compression() == kBiRgb) return true;
    if (bits > 8) {
        PackedDib out = ConvertDirect(dib_, bits);
        if (out.empty()) return false;
        dib_ = std::move(out);
        return true;
    }
    if (AllGrey(dib_)) {
        PackedDib out = ToGreyLevels(dib_, bits);
        if (out.empty()) return false;
        dib_ = std::move(out);
        return true;
    }
    if (!quantize(1 << bits, kQuantizeNearest, nullptr)) return false;
    if (depth() == bits) return true;
    // quantize picked a smaller depth for few colours; widen the indexes.
    PackedDib out = MakeWithPalette(width(), height(), bits, dib_.palette());
    if (out.empty()) return false;
    for (int y = 0; y < height(); ++y)
        for (int x = 0; x < width(); ++x) SetRaw(out.row(y), x, bits, GetRaw(dib_.row(y), x, depth()));
    dib_ = std::move(out);
    return true;
}

int mif::countcolors() const {
    if (empty()) return 0;
    // One bit per 24-bit colour: 2 MB, and counting is a population count.
    std::vector<uint64_t> seen(1u << 18, 0);
    auto mark = [&](uint32_t rgb) { seen[rgb >> 6] |= uint64_t{1} << (rgb & 63); };
    const int bits = depth();
    if (bits <= 8) {
        std::vector<bool> used(static_cast<size_t>(1) << bits, false);
        for (int y = 0; y < height(); ++y)
            for (int x = 0; x < width(); ++x) used[GetRaw(dib_.row(y), x, bits)] = true;
        for (size_t i = 0; i < used.size(); ++i) {
            if (!used[i]) continue;
            const auto pal = dib_.palette();
            // An index past the table shows as black, as the DIB's reader shows it.
            const Rgbq q = i < pal.size() ? pal[i] : Rgbq{};
            mark((static_cast<uint32_t>(q.r) << 16) | (q.g << 8) | q.b);
        }
    } else if (bits == 24 || (bits == 32 && dib_.compression() == kBiRgb)) {
        const int step = bits / 8;
        for (int y = 0; y < height(); ++y) {
            const uint8_t* p = dib_.row(y);
            for (int x = 0; x < width(); ++x, p += step) mark(p[0] | (p[1] << 8) | (static_cast<uint32_t>(p[2]) << 16));
        }
    } else {
        for (int y = 0; y < height(); ++y)
            for (int x = 0; x < width(); ++x) mark(dib_.pixel(x, y) & 0xffffff);
    }
    int count = 0;
    for (uint64_t word : seen) count += std::popcount(word);
    return count;
}

}  // namespace lx
