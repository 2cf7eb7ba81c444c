// Layers and fills: addlayer's blend modes with opacity, the alpha source of the paste
// shadow, and solid fills.
//
// The blend formulas are the ones photo editors and the W3C compositing model share, on
// channels scaled to 0..1 (b the image below, s the layer); each is written beside its case.
// Hue, saturation and luminosity work on whole colours with the W3C helpers Lum, ClipColor,
// SetLum, Sat and SetSat (luminosity 0.3 R + 0.59 G + 0.11 B). The blended colour is rounded
// to 0..255 and then mixed over the image by the opacity times the layer's own alpha:
// result = (below x (255 - a) + blended x a + 127) / 255.
#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "MifPixels.h"
#include "mif.h"

namespace lx {

using namespace mifpix;

namespace {

bool IsSeparable(int mode) { return mode != kBlendHue && mode != kBlendSaturation && mode != kBlendLuminosity; }

bool IsBlendCode(int mode) { return mode >= 0 && mode <= 18 && mode != 5 && mode != 9; }

double HardLight(double b, double s) { return s <= 0.5 ? b * 2 * s : 1 - (1 - b) * (1 - (2 * s - 1)); }

double BlendChannel(int mode, double b, double s) {
    switch (mode) {
    case kBlendDarken: return std::min(b, s);      // min(b, s)
    case kBlendLighten: return std::max(b, s);     // max(b, s)
    case kBlendMultiply: return b * s;             // b s
    case kBlendScreen: return b + s - b * s;       // b + s - b s
    case kBlendOverlay: return HardLight(s, b);    // hard light with b and s swapped
    case kBlendHardLight: return HardLight(b, s);  // s <= 1/2: 2 b s, else 1 - 2 (1 - b)(1 - s)
    case kBlendSoftLight: {
        // s <= 1/2: b - (1 - 2s) b (1 - b); else b + (2s - 1)(D(b) - b) with
        // D(b) = ((16b - 12) b + 4) b for b <= 1/4, sqrt(b) above
        if (s <= 0.5) return b - (1 - 2 * s) * b * (1 - b);
        const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
        return b + (2 * s - 1) * (d - b);
    }
    case kBlendDifference: return std::fabs(b - s);  // |b - s|
    case kBlendExclusion: return b + s - 2 * b * s;  // b + s - 2 b s
    case kBlendColorDodge:
        // b = 0: 0; s = 1: 1; else min(1, b / (1 - s))
        if (b == 0) return 0;
        return s >= 1 ? 1 : std::min(1.0, b / (1 - s));
    case kBlendColorBurn:
        // b = 1: 1; s = 0: 0; else 1 - min(1, (1 - b) / s)
        if (b >= 1) return 1;
        return s <= 0 ? 0 : 1 - std::min(1.0, (1 - b) / s);
    case kBlendAdd: return std::min(1.0, b + s);       // min(1, b + s)
    case kBlendSubtract: return std::max(0.0, b - s);  // max(0, b - s)
    default: return s;                                 // normal: s
    }
}

// The result of every base and layer value pair, for the modes that treat channels alike.
std::vector<uint8_t> SeparableTable(int mode) {
    std::vector<uint8_t> table(256 * 256);
    for (int b = 0; b < 256; ++b)
        for (int s = 0; s < 256; ++s)
            table[b * 256 + s] = static_cast<uint8_t>(std::lround(std::clamp(BlendChannel(mode, b / 255.0, s / 255.0), 0.0, 1.0) * 255));
    return table;
}

struct Colour {
    double c[3];  // red, green, blue, 0..1
};

// Lum(C) = 0.3 R + 0.59 G + 0.11 B
double Lum(const Colour& x) { return 0.3 * x.c[0] + 0.59 * x.c[1] + 0.11 * x.c[2]; }

// ClipColor: with l = Lum(C), n = min, x = max of the channels: if n < 0, C = l + (C - l) l / (l - n);
// then if x > 1, C = l + (C - l)(1 - l) / (x - l). Out-of-range colours move towards their grey.
Colour ClipColour(Colour x) {
    const double l = Lum(x);
    const double n = std::min({x.c[0], x.c[1], x.c[2]}), m = std::max({x.c[0], x.c[1], x.c[2]});
    for (double& v : x.c) {
        if (n < 0) v = l + (v - l) * l / (l - n);
        if (m > 1) v = l + (v - l) * (1 - l) / (m - l);
    }
    return x;
}

// SetLum(C, l) = ClipColor(C + (l - Lum(C)))
Colour SetLum(Colour x, double l) {
    const double d = l - Lum(x);
    for (double& v : x.c) v += d;
    return ClipColour(x);
}

// Sat(C) = max - min
double Sat(const Colour& x) { return std::max({x.c[0], x.c[1], x.c[2]}) - std::min({x.c[0], x.c[1], x.c[2]}); }

// SetSat(C, s): max becomes s, mid (mid - min) s / (max - min), min 0; a grey becomes black.
Colour SetSat(Colour x, double s) {
    int order[3] = {0, 1, 2};
    std::sort(order, order + 3, [&](int a, int b) { return x.c[a] < x.c[b]; });
    double& lo = x.c[order[0]];
    double& mid = x.c[order[1]];
    double& hi = x.c[order[2]];
    if (hi > lo) {
        mid = (mid - lo) * s / (hi - lo);
        hi = s;
    } else {
        mid = hi = 0;
    }
    lo = 0;
    return x;
}

Colour BlendColour(int mode, const Colour& b, const Colour& s) {
    switch (mode) {
    case kBlendHue: return SetLum(SetSat(s, Sat(b)), Lum(b));         // SetLum(SetSat(s, Sat(b)), Lum(b))
    case kBlendSaturation: return SetLum(SetSat(b, Sat(s)), Lum(b));  // SetLum(SetSat(b, Sat(s)), Lum(b))
    default: return SetLum(b, Lum(s));                                // luminosity: SetLum(b, Lum(s))
    }
}

inline uint8_t Mix(int below, int over, int alpha) { return static_cast<uint8_t>((below * (255 - alpha) + over * alpha + 127) / 255); }

}  // namespace

bool mif::addlayer(const mif* layer, int x, int y, int mode, int alpha) {
    if (empty() || layer == nullptr || layer->empty() || !IsBlendCode(mode)) return false;
    alpha = std::clamp(alpha, 0, 255);
    // The layer as 24 or 32-bit colour, copied when it is this image itself.
    std::optional<PackedDib> copy;
    if (layer == this || layer->dib_.compression() != kBiRgb || layer->depth() < 24) {
        copy = ConvertDirect(layer->dib_, layer->depth() == 32 ? 32 : 24);
        if (copy->empty()) return false;
    }
    const PackedDib& top = copy ? *copy : layer->dib_;
    if (!EnsureRgb(dib_)) return false;

    const int left = std::max(0, x), right = static_cast<int>(std::min<int64_t>(width(), int64_t{x} + top.width()));
    const int upper = std::max(0, y), lower = static_cast<int>(std::min<int64_t>(height(), int64_t{y} + top.height()));
    if (left >= right || upper >= lower || alpha == 0) return true;

    const std::vector<uint8_t> table = IsSeparable(mode) ? SeparableTable(mode) : std::vector<uint8_t>{};
    const int step = depth() / 8, topStep = top.bitCount() / 8;
    const bool layerAlpha = top.bitCount() == 32;
    ParallelRows(lower - upper, int64_t{right - left} * 4, [&](int begin, int end) {
        for (int row = upper + begin; row < upper + end; ++row) {
            uint8_t* d = dib_.row(row) + static_cast<size_t>(left) * step;
            const uint8_t* s = top.row(row - y) + static_cast<size_t>(left - x) * topStep;
            for (int i = left; i < right; ++i, d += step, s += topStep) {
                const int a = layerAlpha ? (alpha * s[3] + 127) / 255 : alpha;
                if (a == 0) continue;
                if (!table.empty()) {
                    for (int c = 0; c < 3; ++c) d[c] = Mix(d[c], table[d[c] * 256 + s[c]], a);
                    continue;
                }
                const Colour below{{d[2] / 255.0, d[1] / 255.0, d[0] / 255.0}};
                const Colour over{{s[2] / 255.0, s[1] / 255.0, s[0] / 255.0}};
                const Colour blended = BlendColour(mode, below, over);
                for (int c = 0; c < 3; ++c) {
                    const int v = static_cast<int>(std::lround(std::clamp(blended.c[2 - c], 0.0, 1.0) * 255));
                    d[c] = Mix(d[c], v, a);
                }
            }
        }
    });
    return true;
}

bool mif::settoalpha() {
    if (empty()) return false;
    if (!(depth() == 32 && dib_.compression() == kBiRgb)) {
        PackedDib out = ConvertDirect(dib_, 32);
        if (out.empty()) return false;
        dib_ = std::move(out);
    }
    for (int y = 0; y < height(); ++y) {
        uint8_t* p = dib_.row(y);
        for (int x = 0; x < width(); ++x, p += 4) p[3] = Luma(p[2], p[1], p[0]);
    }
    return true;
}

bool mif::solidfill(const MifRect* rect, uint32_t colour, int opacity, int keepAlpha) {
    MifRect r;
    if (!validaterect(rect, &r)) return false;
    opacity = std::clamp(opacity, 0, 255);
    const int red = colour & 0xff, green = (colour >> 8) & 0xff, blue = (colour >> 16) & 0xff;
    const bool rgb = dib_.compression() == kBiRgb && (depth() == 24 || depth() == 32);
    if (rgb) {
        const int step = depth() / 8;
        for (int y = r.top; y < r.bottom; ++y) {
            uint8_t* p = dib_.row(y) + static_cast<size_t>(r.left) * step;
            for (int x = r.left; x < r.right; ++x, p += step) {
                p[0] = Mix(p[0], blue, opacity);
                p[1] = Mix(p[1], green, opacity);
                p[2] = Mix(p[2], red, opacity);
                if (step == 4 && !keepAlpha) p[3] = 255;
            }
        }
        return true;
    }
    NearestCache cache(dib_.palette());
    for (int y = r.top; y < r.bottom; ++y)
        for (int x = r.left; x < r.right; ++x) {
            const uint32_t c = dib_.pixel(x, y);
            const uint32_t mixed = 0xff000000u | (Mix((c >> 16) & 0xff, red, opacity) << 16) |
                                   (Mix((c >> 8) & 0xff, green, opacity) << 8) | Mix(c & 0xff, blue, opacity);
            WriteColour(dib_, x, y, mixed, &cache);
        }
    return true;
}

bool mif::solidfill(int left, int top, int width, int height, uint32_t colour, int opacity, int keepAlpha) {
    const MifRect rect = RectFromSize(left, top, width, height);
    return solidfill(&rect, colour, opacity, keepAlpha);
}

}  // namespace lx
