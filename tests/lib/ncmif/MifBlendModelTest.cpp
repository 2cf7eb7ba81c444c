// addlayer's seventeen blend modes against a model written here from the W3C compositing and
// blending equations, over a grid of colour pairs that holds the corners (0 and 255 on every
// channel, where dodge, burn and ClipColor have their special cases) and values either side
// of the one-half and one-quarter turning points of hard light, overlay and soft light.
//
// The model works in doubles and rounds once at the end; the image class rounds the blended
// colour to 0..255 and then once more when mixing it by the opacity. So at full opacity a
// result must be the model's value correctly rounded (within 0.5), and at half opacity within
// one level of the model's exact mix.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::PackedDib;

namespace {

struct Rgb {
    double r, g, b;  // 0..1
};

// ---- the equations, one function each, as the recommendation writes them ----

double Multiply(double cb, double cs) { return cb * cs; }
double Screen(double cb, double cs) { return cb + cs - cb * cs; }
double HardLight(double cb, double cs) { return cs <= 0.5 ? Multiply(cb, 2 * cs) : Screen(cb, 2 * cs - 1); }
double SoftLight(double cb, double cs) {
    if (cs <= 0.5) return cb - (1 - 2 * cs) * cb * (1 - cb);
    const double d = cb <= 0.25 ? ((16 * cb - 12) * cb + 4) * cb : std::sqrt(cb);
    return cb + (2 * cs - 1) * (d - cb);
}
double ColorDodge(double cb, double cs) { return cb == 0 ? 0 : cs == 1 ? 1 : std::min(1.0, cb / (1 - cs)); }
double ColorBurn(double cb, double cs) { return cb == 1 ? 1 : cs == 0 ? 0 : 1 - std::min(1.0, (1 - cb) / cs); }

double Lum(Rgb c) { return 0.3 * c.r + 0.59 * c.g + 0.11 * c.b; }
Rgb ClipColor(Rgb c) {
    const double l = Lum(c);
    const double n = std::min({c.r, c.g, c.b});
    const double x = std::max({c.r, c.g, c.b});
    if (n < 0) c = {l + (c.r - l) * l / (l - n), l + (c.g - l) * l / (l - n), l + (c.b - l) * l / (l - n)};
    if (x > 1) c = {l + (c.r - l) * (1 - l) / (x - l), l + (c.g - l) * (1 - l) / (x - l), l + (c.b - l) * (1 - l) / (x - l)};
    return c;
}
Rgb SetLum(Rgb c, double l) {
    const double d = l - Lum(c);
    return ClipColor({c.r + d, c.g + d, c.b + d});
}
double Sat(Rgb c) { return std::max({c.r, c.g, c.b}) - std::min({c.r, c.g, c.b}); }
// The recommendation's SetSat on references to the largest, middle and smallest channel.
Rgb SetSat(Rgb c, double s) {
    double* max = &c.r;
    double* mid = &c.g;
    double* min = &c.b;
    if (*max < *mid) std::swap(max, mid);
    if (*mid < *min) std::swap(mid, min);
    if (*max < *mid) std::swap(max, mid);
    if (*max > *min) {
        *mid = (*mid - *min) * s / (*max - *min);
        *max = s;
    } else {
        *mid = *max = 0;
    }
    *min = 0;
    return c;
}

using Separable = double (*)(double, double);

struct ModeModel {
    int code;
    Separable channel;          // null for the non-separable modes
    Rgb (*colour)(Rgb, Rgb);    // used when channel is null
};

const ModeModel kModes[] = {
    {0, [](double, double cs) { return cs; }, nullptr},
    {1, [](double cb, double cs) { return std::min(cb, cs); }, nullptr},
    {2, [](double cb, double cs) { return std::max(cb, cs); }, nullptr},
    {3, nullptr, [](Rgb cb, Rgb cs) { return SetLum(SetSat(cs, Sat(cb)), Lum(cb)); }},
    {4, nullptr, [](Rgb cb, Rgb cs) { return SetLum(SetSat(cb, Sat(cs)), Lum(cb)); }},
    {6, nullptr, [](Rgb cb, Rgb cs) { return SetLum(cb, Lum(cs)); }},
    {7, Multiply, nullptr},
    {8, Screen, nullptr},
    {10, [](double cb, double cs) { return HardLight(cs, cb); }, nullptr},
    {11, HardLight, nullptr},
    {12, SoftLight, nullptr},
    {13, [](double cb, double cs) { return std::fabs(cb - cs); }, nullptr},
    {14, [](double cb, double cs) { return cb + cs - 2 * cb * cs; }, nullptr},
    {15, ColorDodge, nullptr},
    {16, ColorBurn, nullptr},
    {17, [](double cb, double cs) { return std::min(1.0, cb + cs); }, nullptr},
    {18, [](double cb, double cs) { return std::max(0.0, cb - cs); }, nullptr},
};

Rgb ModelBlend(const ModeModel& mode, Rgb cb, Rgb cs) {
    if (mode.colour) return mode.colour(cb, cs);
    return {mode.channel(cb.r, cs.r), mode.channel(cb.g, cs.g), mode.channel(cb.b, cs.b)};
}

// Every colour whose channels come from these levels.
std::vector<uint32_t> GridColours() {
    const int levels[] = {0, 63, 64, 127, 128, 200, 255};
    std::vector<uint32_t> colours;
    for (int r : levels)
        for (int g : levels)
            for (int b : levels) colours.push_back(static_cast<uint32_t>(r << 16 | g << 8 | b));
    return colours;
}

// Row y holds base colour y everywhere; column x of the layer holds layer colour x: every
// pair meets once.
PackedDib PairImage(const std::vector<uint32_t>& colours, bool byColumn) {
    const int n = static_cast<int>(colours.size());
    return lxtest::Painted(n, n, [&](int x, int y) { return colours[byColumn ? x : y]; });
}

double Channel(uint32_t c, int i) { return ((c >> (16 - 8 * i)) & 0xff) / 255.0; }  // i: 0 red, 1 green, 2 blue
Rgb ToRgb(uint32_t c) { return {Channel(c, 0), Channel(c, 1), Channel(c, 2)}; }

void CheckMode(const ModeModel& mode, int alpha, double tolerance) {
    const std::vector<uint32_t> colours = GridColours();
    const int n = static_cast<int>(colours.size());
    mif image(PairImage(colours, false));
    const mif layer(PairImage(colours, true));
    ASSERT_TRUE(image.addlayer(&layer, 0, 0, mode.code, alpha));
    int wrong = 0;
    for (int y = 0; y < n && wrong < 5; ++y)
        for (int x = 0; x < n && wrong < 5; ++x) {
            const Rgb blended = ModelBlend(mode, ToRgb(colours[y]), ToRgb(colours[x]));
            const double model[3] = {blended.r, blended.g, blended.b}, a = alpha / 255.0;
            for (int c = 0; c < 3; ++c) {
                const double want = 255 * ((1 - a) * Channel(colours[y], c) + a * std::clamp(model[c], 0.0, 1.0));
                const double have = 255 * Channel(image.dib().pixel(x, y), c);
                if (std::fabs(have - want) <= tolerance) continue;
                ADD_FAILURE() << "mode " << mode.code << " alpha " << alpha << std::hex << " below " << colours[y]
                              << " layer " << colours[x] << std::dec << " channel " << c << ": " << have << ", model " << want;
                ++wrong;
                break;
            }
        }
}

// 50 % is alpha 127, as the paste's opacity scale gives it.
TEST(MifBlendModel, EveryModeIsTheModelRoundedAtFullOpacityAndMixedOverTheImageAtHalf) {
    for (const ModeModel& mode : kModes) {
        CheckMode(mode, 255, 0.5 + 1e-6);
        CheckMode(mode, 127, 1.0 + 1e-6);
    }
}

}  // namespace
