#include "JpegColor.h"

#include <algorithm>
#include <array>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace lx {
namespace {

struct YccTables {
    std::array<int, 256> crToR, cbToB;
    std::array<int32_t, 256> crToG, cbToG;  // 16-bit fixed point, summed before the shift
};

constexpr int kScaleBits = 16;
constexpr int32_t Fix(double x) { return static_cast<int32_t>(x * (1 << kScaleBits) + 0.5); }

const YccTables& Tables() {
    static const YccTables tables = [] {
        YccTables t{};
        constexpr int32_t half = 1 << (kScaleBits - 1);
        for (int i = 0; i < 256; ++i) {
            const int32_t x = i - 128;
            t.crToR[i] = (Fix(1.40200) * x + half) >> kScaleBits;
            t.cbToB[i] = (Fix(1.77200) * x + half) >> kScaleBits;
            t.crToG[i] = -Fix(0.71414) * x;
            t.cbToG[i] = -Fix(0.34414) * x + half;
        }
        return t;
    }();
    return tables;
}

inline uint8_t Clamp(int v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

// Stored (inverted) ink times stored black, over 255, rounded half up.
inline uint8_t InkTimesBlack(int ink, int black) { return static_cast<uint8_t>((ink * black * 2 + 255) / 510); }

#ifdef __SSE2__
// Eight pixels of the same arithmetic in 16-bit lanes. Each multiplier is split into a
// multiple of 65536, which adds whole samples (x * 65536 + m) >> 16 == x + (m >> 16), and a
// remainder that fits the 16-bit multiply-add; the results are the tables' to the bit.
struct YccVector {
    __m128i b, g, r;  // eight 16-bit values each, not yet clamped
};

inline YccVector YccEight(const uint8_t* y, const uint8_t* cb, const uint8_t* cr) {
    const __m128i zero = _mm_setzero_si128(), centre = _mm_set1_epi16(128);
    const __m128i l = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(y)), zero);
    const __m128i u = _mm_sub_epi16(_mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(cb)), zero), centre);
    const __m128i v = _mm_sub_epi16(_mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(cr)), zero), centre);
    auto high = [](__m128i lo, __m128i hi) { return _mm_packs_epi32(_mm_srai_epi32(lo, 16), _mm_srai_epi32(hi, 16)); };
    const __m128i two = _mm_set1_epi16(2);
    // R: 91881 = 65536 + 26345; B: 116130 = 131072 - 14942; rounding 32768 = 2 * 16384.
    const __m128i rk = _mm_set_epi16(16384, 26345, 16384, 26345, 16384, 26345, 16384, 26345);
    const __m128i bk = _mm_set_epi16(16384, -14942, 16384, -14942, 16384, -14942, 16384, -14942);
    const __m128i rTerm = high(_mm_madd_epi16(_mm_unpacklo_epi16(v, two), rk), _mm_madd_epi16(_mm_unpackhi_epi16(v, two), rk));
    const __m128i bTerm = high(_mm_madd_epi16(_mm_unpacklo_epi16(u, two), bk), _mm_madd_epi16(_mm_unpackhi_epi16(u, two), bk));
    // G: -22554 u - 46802 v + 32768, with -46802 = -65536 + 18734.
    const __m128i gk = _mm_set_epi16(18734, -22554, 18734, -22554, 18734, -22554, 18734, -22554);
    const __m128i half = _mm_set1_epi32(32768);
    const __m128i gTerm = high(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(u, v), gk), half),
                               _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(u, v), gk), half));
    return {_mm_add_epi16(l, _mm_add_epi16(_mm_add_epi16(u, u), bTerm)), _mm_add_epi16(l, _mm_sub_epi16(gTerm, v)),
            _mm_add_epi16(l, _mm_add_epi16(v, rTerm))};
}
#endif

}  // namespace

void YccToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int width, uint8_t* bgr) {
    const YccTables& t = Tables();
    int x = 0;
#ifdef __SSE2__
    // Two pixels at a time go out as one eight-byte store of which six bytes count; the next
    // store overwrites the rest, so the vector loop stops one pixel short of the row's end.
    const __m128i zero = _mm_setzero_si128();
    auto putPair = [](uint8_t* out, uint64_t twoPixels) {  // B G R 0 B G R 0 -> B G R B G R
        const uint64_t packed = (twoPixels & 0xFFFFFFu) | ((twoPixels >> 8) & 0xFFFFFF000000u);
        std::memcpy(out, &packed, 8);
    };
    for (; x + 17 <= width; x += 16, bgr += 48) {
        const YccVector lo = YccEight(y + x, cb + x, cr + x), hi = YccEight(y + x + 8, cb + x + 8, cr + x + 8);
        const __m128i b = _mm_packus_epi16(lo.b, hi.b), g = _mm_packus_epi16(lo.g, hi.g);
        const __m128i r = _mm_packus_epi16(lo.r, hi.r);
        const __m128i bg[2] = {_mm_unpacklo_epi8(b, g), _mm_unpackhi_epi8(b, g)};
        const __m128i r0[2] = {_mm_unpacklo_epi8(r, zero), _mm_unpackhi_epi8(r, zero)};
        uint8_t* out = bgr;
        for (int half = 0; half < 2; ++half) {
            for (const __m128i quad : {_mm_unpacklo_epi16(bg[half], r0[half]), _mm_unpackhi_epi16(bg[half], r0[half])}) {
                putPair(out, static_cast<uint64_t>(_mm_cvtsi128_si64(quad)));
                putPair(out + 6, static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(quad, quad))));
                out += 12;
            }
        }
    }
#endif
    for (; x < width; ++x, bgr += 3) {
        const int l = y[x];
        bgr[0] = Clamp(l + t.cbToB[cb[x]]);
        bgr[1] = Clamp(l + ((t.cbToG[cb[x]] + t.crToG[cr[x]]) >> kScaleBits));
        bgr[2] = Clamp(l + t.crToR[cr[x]]);
    }
}

void RgbToBgr(const uint8_t* r, const uint8_t* g, const uint8_t* b, int width, uint8_t* bgr) {
    for (int x = 0; x < width; ++x, bgr += 3) bgr[0] = b[x], bgr[1] = g[x], bgr[2] = r[x];
}

void CmykToBgr(const uint8_t* c, const uint8_t* m, const uint8_t* y, const uint8_t* k, int width, uint8_t* bgr) {
    for (int x = 0; x < width; ++x, bgr += 3) {
        bgr[0] = InkTimesBlack(y[x], k[x]);
        bgr[1] = InkTimesBlack(m[x], k[x]);
        bgr[2] = InkTimesBlack(c[x], k[x]);
    }
}

void YcckToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, const uint8_t* k, int width, uint8_t* bgr) {
    // The YCbCr part decodes to the complement of the stored inks.
    const YccTables& t = Tables();
    for (int x = 0; x < width; ++x, bgr += 3) {
        const int l = y[x];
        bgr[0] = InkTimesBlack(255 - Clamp(l + t.cbToB[cb[x]]), k[x]);
        bgr[1] = InkTimesBlack(255 - Clamp(l + ((t.cbToG[cb[x]] + t.crToG[cr[x]]) >> kScaleBits)), k[x]);
        bgr[2] = InkTimesBlack(255 - Clamp(l + t.crToR[cr[x]]), k[x]);
    }
}

}  // namespace lx
