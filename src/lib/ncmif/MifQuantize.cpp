// Colour reduction: the palette (the image's own colours when few enough, otherwise median
// cut over a 5-5-5 histogram) and the four ways of mapping pixels onto it.
#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <vector>

#include "MifPixels.h"
#include "mif.h"

namespace lx {

using namespace mifpix;

namespace {

inline uint32_t Rgb(const uint8_t* p) { return p[0] | (p[1] << 8) | (static_cast<uint32_t>(p[2]) << 16); }
inline Rgbq ToRgbq(uint32_t rgb) {
    return Rgbq{static_cast<uint8_t>(rgb & 0xff), static_cast<uint8_t>((rgb >> 8) & 0xff), static_cast<uint8_t>(rgb >> 16), 0};
}

// The image's distinct colours (0x00RRGGBB, sorted) when there are at most `count`; empty
// otherwise.
std::vector<uint32_t> FewColours(const PackedDib& rgb, int count) {
    std::vector<uint64_t> seen(1u << 18, 0);
    std::vector<uint32_t> found;
    const int step = rgb.bitCount() / 8;
    for (int y = 0; y < rgb.height(); ++y) {
        const uint8_t* p = rgb.row(y);
        for (int x = 0; x < rgb.width(); ++x, p += step) {
            const uint32_t c = Rgb(p);
            uint64_t& word = seen[c >> 6];
            const uint64_t bit = uint64_t{1} << (c & 63);
            if (word & bit) continue;
            word |= bit;
            if (static_cast<int>(found.size()) == count) return {};
            found.push_back(c);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

// Median cut over a histogram of 5 bits per channel; each box's colour is the mean of the
// pixels in it (full precision).
class MedianCut {
public:
    explicit MedianCut(const PackedDib& rgb) : bins_(kBins) {
        std::mutex merge;
        ParallelRows(rgb.height(), rgb.width(), [&](int begin, int end) {
            std::vector<Bin> local(kBins);
            const int step = rgb.bitCount() / 8;
            for (int y = begin; y < end; ++y) {
                const uint8_t* p = rgb.row(y);
                for (int x = 0; x < rgb.width(); ++x, p += step) {
                    Bin& bin = local[Index(p[2] >> 3, p[1] >> 3, p[0] >> 3)];
                    ++bin.n;
                    bin.sum[0] += p[2];
                    bin.sum[1] += p[1];
                    bin.sum[2] += p[0];
                }
            }
            const std::lock_guard<std::mutex> lock(merge);
            for (int i = 0; i < kBins; ++i) {
                bins_[i].n += local[i].n;
                for (int c = 0; c < 3; ++c) bins_[i].sum[c] += local[i].sum[c];
            }
        });
    }

    std::vector<Rgbq> palette(int count) {
        std::vector<Box> boxes{shrink(Box{{0, 0, 0}, {31, 31, 31}, 0})};
        while (static_cast<int>(boxes.size()) < count) {
            // Split the box that holds the most pixels spread over the longest extent.
            int best = -1;
            uint64_t bestScore = 0;
            for (size_t i = 0; i < boxes.size(); ++i) {
                const uint64_t score = boxes[i].n * static_cast<uint64_t>(longest(boxes[i]).second);
                if (score > bestScore) bestScore = score, best = static_cast<int>(i);
            }
            if (best < 0) break;  // every box is a single histogram cell
            Box other;
            split(boxes[best], other);
            boxes.push_back(other);
        }
        std::vector<Rgbq> out;
        for (const Box& box : boxes) {
            uint64_t n = 0, sum[3] = {0, 0, 0};
            forEach(box, [&](int, const Bin& bin) {
                n += bin.n;
                for (int c = 0; c < 3; ++c) sum[c] += bin.sum[c];
            });
            if (n == 0) continue;
            const auto mean = [&](int c) { return static_cast<uint8_t>((sum[c] + n / 2) / n); };
            out.push_back(Rgbq{mean(2), mean(1), mean(0), 0});
        }
        return out;
    }

private:
    static constexpr int kBins = 1 << 15;
    struct Bin {
        uint64_t n = 0;
        uint64_t sum[3] = {0, 0, 0};  // red, green, blue
    };
    struct Box {
        int lo[3];
        int hi[3];
        uint64_t n;
    };
    static int Index(int r, int g, int b) { return (r << 10) | (g << 5) | b; }

    template <class Fn>
    void forEach(const Box& box, Fn fn) const {
        for (int r = box.lo[0]; r <= box.hi[0]; ++r)
            for (int g = box.lo[1]; g <= box.hi[1]; ++g)
                for (int b = box.lo[2]; b <= box.hi[2]; ++b) {
                    const int i = Index(r, g, b);
                    if (bins_[i].n) fn(i, bins_[i]);
                }
    }

    // The box tightened around its occupied cells, with its pixel count.
    Box shrink(const Box& box) const {
        Box out{{31, 31, 31}, {0, 0, 0}, 0};
        forEach(box, [&](int i, const Bin& bin) {
            const int v[3] = {i >> 10, (i >> 5) & 31, i & 31};
            for (int c = 0; c < 3; ++c) out.lo[c] = std::min(out.lo[c], v[c]), out.hi[c] = std::max(out.hi[c], v[c]);
            out.n += bin.n;
        });
        if (out.n == 0) out = Box{{0, 0, 0}, {0, 0, 0}, 0};
        return out;
    }

    // The axis with the largest extent (green weighted up, as the eye is most sensitive to
    // it) and that extent; 0 when the box cannot be split.
    static std::pair<int, int> longest(const Box& box) {
        const int weight[3] = {3, 4, 2};
        int axis = 0, extent = 0;
        for (int c = 0; c < 3; ++c) {
            const int e = (box.hi[c] - box.lo[c]) * weight[c];
            if (e > extent) extent = e, axis = c;
        }
        return {axis, extent};
    }

    // Splits `box` at the median of its pixels along its longest axis; `other` gets the upper part.
    void split(Box& box, Box& other) const {
        const int axis = longest(box).first;
        std::vector<uint64_t> slices(32, 0);
        forEach(box, [&](int i, const Bin& bin) {
            const int v[3] = {i >> 10, (i >> 5) & 31, i & 31};
            slices[v[axis]] += bin.n;
        });
        uint64_t below = 0;
        int cut = box.lo[axis];
        // The last slice of the lower part: at least one slice on each side.
        for (; cut < box.hi[axis] - 1; ++cut) {
            below += slices[cut];
            if (below * 2 >= box.n) break;
        }
        Box lower = box, upper = box;
        lower.hi[axis] = cut;
        upper.lo[axis] = cut + 1;
        box = shrink(lower);
        other = shrink(upper);
    }

    std::vector<Bin> bins_;
};

// Neighbours whose colours differ by more than this in some channel lie across an edge.
constexpr int kBleedLimit = 40;

// The 8x8 Bayer threshold pattern, values 0..63.
constexpr std::array<std::array<uint8_t, 8>, 8> kBayer = {{
    {0, 32, 8, 40, 2, 34, 10, 42},
    {48, 16, 56, 24, 50, 18, 58, 26},
    {12, 44, 4, 36, 14, 46, 6, 38},
    {60, 28, 52, 20, 62, 30, 54, 22},
    {3, 35, 11, 43, 1, 33, 9, 41},
    {51, 19, 59, 27, 49, 17, 57, 25},
    {15, 47, 7, 39, 13, 45, 5, 37},
    {63, 31, 55, 23, 61, 29, 53, 21},
}};

// Maps rows [begin, end) onto the table; indexes go to `out` (same size, palette depth).
void MapNearest(const PackedDib& rgb, PackedDib& out, std::span<const Rgbq> table, int begin, int end) {
    NearestCache cache(table);
    const int step = rgb.bitCount() / 8;
    for (int y = begin; y < end; ++y) {
        const uint8_t* p = rgb.row(y);
        uint8_t* d = out.row(y);
        for (int x = 0; x < rgb.width(); ++x, p += step) SetRaw(d, x, out.bitCount(), static_cast<uint32_t>(cache.find(p[2], p[1], p[0])));
    }
}

void MapPattern(const PackedDib& rgb, PackedDib& out, std::span<const Rgbq> table, int begin, int end) {
    NearestCache cache(table);
    const int step = rgb.bitCount() / 8;
    // The pattern's amplitude is the palette's typical spacing: the mean, over the entries,
    // of the largest channel difference to the nearest other entry. So a tone between two
    // entries is dithered between them in the right proportion.
    double spacing = 0;
    for (size_t i = 0; i < table.size(); ++i) {
        int nearest = 255;
        for (size_t j = 0; j < table.size(); ++j) {
            if (j == i) continue;
            const int d = std::max({std::abs(table[i].r - table[j].r), std::abs(table[i].g - table[j].g), std::abs(table[i].b - table[j].b)});
            nearest = std::min(nearest, d);
        }
        spacing += nearest;
    }
    const double spread = table.empty() ? 0 : spacing / static_cast<double>(table.size());
    int offset[64];
    for (int i = 0; i < 64; ++i) offset[i] = static_cast<int>(std::lround(((i + 0.5) / 64 - 0.5) * spread));
    for (int y = begin; y < end; ++y) {
        const uint8_t* p = rgb.row(y);
        uint8_t* d = out.row(y);
        for (int x = 0; x < rgb.width(); ++x, p += step) {
            const int o = offset[kBayer[y & 7][x & 7]];
            const int r = std::clamp(p[2] + o, 0, 255), g = std::clamp(p[1] + o, 0, 255), b = std::clamp(p[0] + o, 0, 255);
            SetRaw(d, x, out.bitCount(), static_cast<uint32_t>(cache.find(r, g, b)));
        }
    }
}

// Floyd-Steinberg over rows [begin, end), serpentine. With `edgeLimit` above 0 a share of
// the error only goes to a neighbour whose own colour is within that distance (largest
// channel difference) of the pixel's: the error stays inside areas of like colour instead of
// bleeding across edges into the next area, while flat and gently shaded areas dither as usual.
void MapDiffusion(const PackedDib& rgb, PackedDib& out, std::span<const Rgbq> table, int begin, int end, int edgeLimit) {
    NearestCache cache(table);
    const int w = rgb.width(), step = rgb.bitCount() / 8;
    // Errors in 1/16 units for the current and next row, with one guard pixel at each end.
    std::vector<int> current(static_cast<size_t>(w + 2) * 3, 0), next(current.size(), 0);
    const auto alike = [&](const uint8_t* a, const uint8_t* b) {
        return edgeLimit <= 0 || std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])}) <= edgeLimit;
    };
    for (int y = begin; y < end; ++y) {
        std::fill(next.begin(), next.end(), 0);
        const bool leftToRight = ((y - begin) & 1) == 0;
        const int dir = leftToRight ? 1 : -1;
        const uint8_t* row = rgb.row(y);
        const uint8_t* below = y + 1 < end ? rgb.row(y + 1) : nullptr;
        uint8_t* d = out.row(y);
        for (int i = 0; i < w; ++i) {
            const int x = leftToRight ? i : w - 1 - i;
            const uint8_t* p = row + static_cast<size_t>(x) * step;
            const int* e = &current[static_cast<size_t>(x + 1) * 3];
            int v[3];
            const int source[3] = {p[2], p[1], p[0]};
            for (int c = 0; c < 3; ++c) v[c] = std::clamp(source[c] + (e[c] + (e[c] >= 0 ? 8 : -8)) / 16, 0, 255);
            const int index = cache.find(v[0], v[1], v[2]);
            SetRaw(d, x, out.bitCount(), static_cast<uint32_t>(index));
            const int chosen[3] = {table[index].r, table[index].g, table[index].b};
            // Which neighbours take a share: ahead on this row, behind, under and ahead below.
            const int ahead = x + dir, behind = x - dir;
            const bool toAhead = ahead >= 0 && ahead < w && alike(p, row + static_cast<size_t>(ahead) * step);
            const bool hasBelow = below != nullptr;
            const bool toBehindBelow = hasBelow && behind >= 0 && behind < w && alike(p, below + static_cast<size_t>(behind) * step);
            const bool toBelow = hasBelow && alike(p, below + static_cast<size_t>(x) * step);
            const bool toAheadBelow = hasBelow && ahead >= 0 && ahead < w && alike(p, below + static_cast<size_t>(ahead) * step);
            for (int c = 0; c < 3; ++c) {
                const int err = v[c] - chosen[c];
                if (toAhead) current[static_cast<size_t>(ahead + 1) * 3 + c] += err * 7;
                if (toBehindBelow) next[static_cast<size_t>(behind + 1) * 3 + c] += err * 3;
                if (toBelow) next[static_cast<size_t>(x + 1) * 3 + c] += err * 5;
                if (toAheadBelow) next[static_cast<size_t>(ahead + 1) * 3 + c] += err;
            }
        }
        std::swap(current, next);
    }
}

}  // namespace

bool mif::quantize(int count, int method, const MifLogPalette* palette) {
    if (empty() || count < 2 || count > 256 || method < 0 || method > 3) return false;
    if (palette && palette->count == 0) return false;
    PackedDib holder;
    const bool rgb = dib_.compression() == kBiRgb && (depth() == 24 || depth() == 32);
    if (!rgb) holder = ConvertDirect(dib_, 24);
    const PackedDib& src = rgb ? dib_ : holder;
    if (src.empty()) return false;

    std::vector<Rgbq> table;
    std::vector<uint32_t> exact;
    if (palette) {
        const MifPaletteEntry* entries = palette->entries;
        for (int i = 0; i < std::min<int>(count, palette->count); ++i)
            table.push_back(Rgbq{entries[i].blue, entries[i].green, entries[i].red, 0});
    } else {
        exact = FewColours(src, count);
        if (!exact.empty()) {
            for (uint32_t c : exact) table.push_back(ToRgbq(c));
        } else {
            table = MedianCut(src).palette(count);
        }
    }
    const int size = static_cast<int>(table.size());
    const int bits = size <= 2 ? 1 : (size <= 16 ? 4 : 8);
    PackedDib out = MakeWithPalette(width(), height(), bits, table);
    if (out.empty()) return false;

    const int64_t rowWork = width();
    if (!exact.empty()) {
        // Every colour is in the table: look each one up, nothing to dither.
        ParallelRows(height(), rowWork, [&](int begin, int end) {
            const int step = src.bitCount() / 8;
            for (int y = begin; y < end; ++y) {
                const uint8_t* p = src.row(y);
                for (int x = 0; x < width(); ++x, p += step) {
                    const auto at = std::lower_bound(exact.begin(), exact.end(), Rgb(p));
                    SetRaw(out.row(y), x, bits, static_cast<uint32_t>(at - exact.begin()));
                }
            }
        });
    } else {
        // Diffusion runs in each band of rows on its own; the error carried over the one
        // band boundary is dropped, which the eye does not see.
        ParallelRows(height(), rowWork * 8, [&](int begin, int end) {
            switch (method) {
            case kQuantizeNearest: MapNearest(src, out, table, begin, end); break;
            case kQuantizeDiffusion: MapDiffusion(src, out, table, begin, end, 0); break;
            case kQuantizeDiffusionSoft: MapDiffusion(src, out, table, begin, end, kBleedLimit); break;
            default: MapPattern(src, out, table, begin, end); break;
            }
        });
    }
    dib_ = std::move(out);
    return true;
}

}  // namespace lx
