#include "JpegSampling.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lx {
namespace {

// The JFIF equations in 14-bit fixed point: small enough that every coefficient is a
// signed 16-bit number, so the vector path multiplies and adds pairs of samples in one
// instruction; the scalar path uses the same numbers and gives the same results. Each row
// of coefficients sums to exactly 1 or 0, so grey stays grey and white stays 255.
constexpr int kShift = 14;
constexpr int32_t kYr = 4899, kYg = 9617, kYb = 1868;
constexpr int32_t kCbR = -2765, kCbG = -5427, kCbB = 8192;
constexpr int32_t kCrR = 8192, kCrG = -6860, kCrB = -1332;
constexpr int32_t kYOffset = 1 << (kShift - 1);
// The chroma sums stop one short of a half so that the largest value stays 255.
constexpr int32_t kChromaOffset = (128 << kShift) + (1 << (kShift - 1)) - 1;
// Smoothing weights are 16.16 fractions.
constexpr int32_t kHalf = 1 << 15;

inline void ConvertPixel(const uint8_t* p, uint8_t* y, uint8_t* cb, uint8_t* cr) {
    const int32_t b = p[0], g = p[1], r = p[2];
    *y = static_cast<uint8_t>((kYr * r + kYg * g + kYb * b + kYOffset) >> kShift);
    *cb = static_cast<uint8_t>((kCbR * r + kCbG * g + kCbB * b + kChromaOffset) >> kShift);
    *cr = static_cast<uint8_t>((kCrR * r + kCrG * g + kCrB * b + kChromaOffset) >> kShift);
}

#if defined(__SSE2__)
// Four pixels as 32-bit lanes (blue, green, red, one byte of whatever follows), from 3-byte
// pixels: the 16 bytes from `p` shifted by whole pixels, then interleaved.
inline __m128i FourPixels3(const uint8_t* p) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i ab = _mm_unpacklo_epi32(x, _mm_srli_si128(x, 3));
    const __m128i cd = _mm_unpacklo_epi32(_mm_srli_si128(x, 6), _mm_srli_si128(x, 9));
    return _mm_unpacklo_epi64(ab, cd);
}

// One component of four pixels: blue and red as 16-bit pairs in `br`, green (beside a
// byte the zero coefficient ignores) in `gx`.
inline __m128i Component(__m128i br, __m128i gx, __m128i brWeights, __m128i gWeight, __m128i offset) {
    const __m128i sum = _mm_add_epi32(_mm_madd_epi16(br, brWeights), _mm_madd_epi16(gx, gWeight));
    return _mm_srai_epi32(_mm_add_epi32(sum, offset), kShift);
}

// Converts eight pixels given as two groups of four 32-bit lanes.
inline void ConvertEight(__m128i lo, __m128i hi, uint8_t* y, uint8_t* cb, uint8_t* cr) {
    const __m128i bytes = _mm_set1_epi32(0x00ff00ff);
    const __m128i brLo = _mm_and_si128(lo, bytes), gxLo = _mm_and_si128(_mm_srli_epi32(lo, 8), bytes);
    const __m128i brHi = _mm_and_si128(hi, bytes), gxHi = _mm_and_si128(_mm_srli_epi32(hi, 8), bytes);
    auto store = [&](uint8_t* out, int32_t wb, int32_t wr, int32_t wg, int32_t offset) {
        const __m128i brWeights = _mm_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(wr) << 16) | (wb & 0xffff)));
        const __m128i gWeight = _mm_set1_epi32(wg & 0xffff), off = _mm_set1_epi32(offset);
        const __m128i words = _mm_packs_epi32(Component(brLo, gxLo, brWeights, gWeight, off),
                                              Component(brHi, gxHi, brWeights, gWeight, off));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(words, words));
    };
    store(y, kYb, kYr, kYg, kYOffset);
    store(cb, kCbB, kCbR, kCbG, kChromaOffset);
    store(cr, kCrB, kCrR, kCrG, kChromaOffset);
}
#endif

template <int kPixelBytes>
void ConvertPixels(const uint8_t* bgr, int width, uint8_t* y, uint8_t* cb, uint8_t* cr) {
    int x = 0;
#if defined(__SSE2__)
    // Each group reads a little past its last pixel, so the last few pixels of the row
    // go the scalar way.
    constexpr int kReadBeyond = kPixelBytes == 3 ? 2 : 0;
    for (; x + 8 + kReadBeyond <= width; x += 8) {
        const uint8_t* p = bgr + static_cast<size_t>(x) * kPixelBytes;
        if constexpr (kPixelBytes == 3)
            ConvertEight(FourPixels3(p), FourPixels3(p + 12), y + x, cb + x, cr + x);
        else
            ConvertEight(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16)), y + x, cb + x, cr + x);
    }
#endif
    for (; x < width; ++x) ConvertPixel(bgr + static_cast<size_t>(x) * kPixelBytes, y + x, cb + x, cr + x);
}

}  // namespace

void ConvertRowToYcc(const uint8_t* bgr, int pixelBytes, int width, int paddedWidth, uint8_t* y,
                     uint8_t* cb, uint8_t* cr) {
    if (pixelBytes == 4)
        ConvertPixels<4>(bgr, width, y, cb, cr);
    else
        ConvertPixels<3>(bgr, width, y, cb, cr);
    std::fill(y + width, y + paddedWidth, y[width - 1]);
    std::fill(cb + width, cb + paddedWidth, cb[width - 1]);
    std::fill(cr + width, cr + paddedWidth, cr[width - 1]);
}

void SmoothRow(const uint8_t* above, const uint8_t* row, const uint8_t* below, int width,
               int smoothing, uint8_t* out) {
    const int32_t own = 65536 - smoothing * 512;  // (1 - 8 SF) in 16.16
    const int32_t neighbour = smoothing * 64;     // SF in 16.16
    auto column = [&](int x) { return above[x] + row[x] + below[x]; };
    for (int x = 0; x < width; ++x) {
        const int left = std::max(x - 1, 0), right = std::min(x + 1, width - 1);
        const int32_t ring = column(left) + column(x) + column(right) - row[x];
        out[x] = static_cast<uint8_t>((row[x] * own + ring * neighbour + kHalf) >> 16);
    }
}

void DownsampleRow(const uint8_t* top, const uint8_t* bottom, int outWidth, uint8_t* out) {
    // The rounding bias alternates between 1 and 2 so that halves don't all round one way.
    for (int x = 0; x < outWidth; ++x)
        out[x] = static_cast<uint8_t>((top[2 * x] + top[2 * x + 1] + bottom[2 * x] + bottom[2 * x + 1] + 1 + (x & 1)) >> 2);
}

void SmoothDownsampleRow(const uint8_t* above, const uint8_t* top, const uint8_t* bottom,
                         const uint8_t* below, int outWidth, int smoothing, uint8_t* out) {
    // Averaging four smoothed samples: each of the four keeps (1 - 5 SF) / 4, each
    // neighbour sharing an edge with the square counts SF / 2 and each corner SF / 4.
    const int32_t own = 16384 - smoothing * 80;
    const int32_t quarter = smoothing * 16;
    const int last = 2 * outWidth - 1;
    for (int x = 0; x < outWidth; ++x) {
        const int l = std::max(2 * x - 1, 0), a = 2 * x, b = 2 * x + 1, r = std::min(2 * x + 2, last);
        const int32_t members = top[a] + top[b] + bottom[a] + bottom[b];
        const int32_t edges = above[a] + above[b] + below[a] + below[b] + top[l] + bottom[l] + top[r] + bottom[r];
        const int32_t corners = above[l] + above[r] + below[l] + below[r];
        out[x] = static_cast<uint8_t>((members * own + (2 * edges + corners) * quarter + kHalf) >> 16);
    }
}

}  // namespace lx
