#include "JpegSampling.h"

#include <algorithm>
#include <cstring>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#define LX_JPEG_AVX2 1
#elif defined(__SSE2__)
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
// The same for the sum of the four pixels of a 2x2 square, two more bits to shift out.
constexpr int32_t kSquareChromaOffset = (128 << (kShift + 2)) + (1 << (kShift + 1)) - 1;
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

template <int kPixelBytes>
inline __m128i LoadFour(const uint8_t* p) {
    if constexpr (kPixelBytes == 3)
        return FourPixels3(p);
    else
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// One component's weights as the vector path multiplies them: blue and red as a 16-bit
// pair, green beside a zero for the byte next to it.
struct Weights {
    __m128i br, g, offset;
};
inline Weights MakeWeights(int32_t wb, int32_t wr, int32_t wg, int32_t offset) {
    return {_mm_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(wr) << 16) | (wb & 0xffff))),
            _mm_set1_epi32(wg & 0xffff), _mm_set1_epi32(offset)};
}

// Four pixels as blue-red pairs and green, 16 bits each.
inline void SplitPixels(__m128i v, __m128i& br, __m128i& gx) {
    const __m128i bytes = _mm_set1_epi32(0x00ff00ff);
    br = _mm_and_si128(v, bytes);
    gx = _mm_and_si128(_mm_srli_epi32(v, 8), bytes);
}

// Stores eight results (two groups of four lanes) as bytes.
inline void StoreEight(uint8_t* out, __m128i lo, __m128i hi) {
    const __m128i words = _mm_packs_epi32(lo, hi);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(words, words));
}

// Converts eight pixels given as two groups of four 32-bit lanes.
inline void ConvertEight(__m128i lo, __m128i hi, uint8_t* y, uint8_t* cb, uint8_t* cr) {
    __m128i brLo, gxLo, brHi, gxHi;
    SplitPixels(lo, brLo, gxLo);
    SplitPixels(hi, brHi, gxHi);
    for (const auto& [out, w] : {std::pair{y, MakeWeights(kYb, kYr, kYg, kYOffset)},
                                 std::pair{cb, MakeWeights(kCbB, kCbR, kCbG, kChromaOffset)},
                                 std::pair{cr, MakeWeights(kCrB, kCrR, kCrG, kChromaOffset)}})
        StoreEight(out, Component(brLo, gxLo, w.br, w.g, w.offset), Component(brHi, gxHi, w.br, w.g, w.offset));
}

// Lanes 0 and 1: the sums of pixels 0 and 1, and of pixels 2 and 3.
inline __m128i PairSums(__m128i x) {
    return _mm_add_epi32(_mm_shuffle_epi32(x, _MM_SHUFFLE(2, 0, 2, 0)), _mm_shuffle_epi32(x, _MM_SHUFFLE(3, 1, 3, 1)));
}

// Eight pixels of two rows: luma of each, chroma of the four 2x2 squares from their sums
// (each channel summed over a square stays below 1024, so the pairs never carry).
inline void ConvertSquares(const __m128i (&top)[2], const __m128i (&bottom)[2], uint8_t* yTop, uint8_t* yBottom,
                           uint8_t* cb, uint8_t* cr) {
    __m128i br[2][2], gx[2][2];
    for (int h = 0; h < 2; ++h) {
        SplitPixels(top[h], br[0][h], gx[0][h]);
        SplitPixels(bottom[h], br[1][h], gx[1][h]);
    }
    const Weights luma = MakeWeights(kYb, kYr, kYg, kYOffset);
    for (int row = 0; row < 2; ++row)
        StoreEight(row == 0 ? yTop : yBottom, Component(br[row][0], gx[row][0], luma.br, luma.g, luma.offset),
                   Component(br[row][1], gx[row][1], luma.br, luma.g, luma.offset));
    const __m128i brSquares = _mm_unpacklo_epi64(PairSums(_mm_add_epi32(br[0][0], br[1][0])),
                                                 PairSums(_mm_add_epi32(br[0][1], br[1][1])));
    const __m128i gxSquares = _mm_unpacklo_epi64(PairSums(_mm_add_epi32(gx[0][0], gx[1][0])),
                                                 PairSums(_mm_add_epi32(gx[0][1], gx[1][1])));
    for (const auto& [out, w] : {std::pair{cb, MakeWeights(kCbB, kCbR, kCbG, kSquareChromaOffset)},
                                 std::pair{cr, MakeWeights(kCrB, kCrR, kCrG, kSquareChromaOffset)}}) {
        const __m128i sum = _mm_add_epi32(_mm_madd_epi16(brSquares, w.br), _mm_madd_epi16(gxSquares, w.g));
        const __m128i value = _mm_srai_epi32(_mm_add_epi32(sum, w.offset), kShift + 2);
        const __m128i words = _mm_packs_epi32(value, value);
        const int32_t four = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(out, &four, 4);
    }
}
#endif

#if defined(LX_JPEG_AVX2)
// Eight pixels as 32-bit lanes (blue, green, red, then zero or whatever byte follows).
template <int kPixelBytes>
__attribute__((target("avx2"), always_inline)) inline __m256i LoadEight(const uint8_t* p) {
    if constexpr (kPixelBytes == 4) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    } else {
        const __m256i both = _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 12)), 1);
        const __m256i spread = _mm256_setr_epi8(0, 1, 2, -128, 3, 4, 5, -128, 6, 7, 8, -128, 9, 10, 11, -128,
                                                0, 1, 2, -128, 3, 4, 5, -128, 6, 7, 8, -128, 9, 10, 11, -128);
        return _mm256_shuffle_epi8(both, spread);
    }
}

struct Weights8 {
    __m256i br, g, offset;
};
__attribute__((target("avx2"))) inline Weights8 MakeWeights8(int32_t wb, int32_t wr, int32_t wg, int32_t offset) {
    return {_mm256_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(wr) << 16) | (wb & 0xffff))),
            _mm256_set1_epi32(wg & 0xffff), _mm256_set1_epi32(offset)};
}

__attribute__((target("avx2"), always_inline)) inline __m256i Weigh8(__m256i br, __m256i gx, const Weights8& w,
                                                                      int shift) {
    const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(br, w.br), _mm256_madd_epi16(gx, w.g));
    return _mm256_srai_epi32(_mm256_add_epi32(sum, w.offset), shift);
}

// Sixteen 32-bit results (two registers in order) stored as bytes.
__attribute__((target("avx2"), always_inline)) inline void StoreSixteen(uint8_t* out, __m256i lo, __m256i hi) {
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packs_epi32(lo, hi), 0xd8);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1)));
}

// Eight 32-bit results stored as bytes.
__attribute__((target("avx2"), always_inline)) inline void StoreEight8(uint8_t* out, __m256i v) {
    const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(words, words));
}

// The four-lane path's arithmetic on sixteen pixels of each row at a time; returns the
// first column left for it.
template <int kPixelBytes>
__attribute__((target("avx2"))) int ConvertPixelPairsAvx2(const uint8_t* top, const uint8_t* bottom, int width,
                                                          uint8_t* yTop, uint8_t* yBottom, uint8_t* cb, uint8_t* cr) {
    constexpr int kReadBeyond = kPixelBytes == 3 ? 2 : 0;
    const __m256i bytes = _mm256_set1_epi32(0x00ff00ff);
    const Weights8 luma = MakeWeights8(kYb, kYr, kYg, kYOffset);
    const Weights8 blue = MakeWeights8(kCbB, kCbR, kCbG, kSquareChromaOffset);
    const Weights8 red = MakeWeights8(kCrB, kCrR, kCrG, kSquareChromaOffset);
    int x = 0;
    for (; x + 16 + kReadBeyond <= width; x += 16) {
        const size_t at = static_cast<size_t>(x) * kPixelBytes;
        __m256i br[2][2], gx[2][2];  // [row][half]
        for (int row = 0; row < 2; ++row) {
            const uint8_t* p = (row == 0 ? top : bottom) + at;
            _mm_prefetch(reinterpret_cast<const char*>(p + 2048), _MM_HINT_T0);
            for (int h = 0; h < 2; ++h) {
                const __m256i v = LoadEight<kPixelBytes>(p + 8 * h * kPixelBytes);
                br[row][h] = _mm256_and_si256(v, bytes);
                gx[row][h] = _mm256_and_si256(_mm256_srli_epi32(v, 8), bytes);
            }
            StoreSixteen(row == 0 ? yTop + x : yBottom + x, Weigh8(br[row][0], gx[row][0], luma, kShift),
                         Weigh8(br[row][1], gx[row][1], luma, kShift));
        }
        // Sums of each 2x2 square; the pairwise add leaves the squares in the order 0 1 4 5
        // 2 3 6 7, which the permute puts right.
        const __m256i brSquares = _mm256_permute4x64_epi64(
            _mm256_hadd_epi32(_mm256_add_epi32(br[0][0], br[1][0]), _mm256_add_epi32(br[0][1], br[1][1])), 0xd8);
        const __m256i gxSquares = _mm256_permute4x64_epi64(
            _mm256_hadd_epi32(_mm256_add_epi32(gx[0][0], gx[1][0]), _mm256_add_epi32(gx[0][1], gx[1][1])), 0xd8);
        StoreEight8(cb + x / 2, Weigh8(brSquares, gxSquares, blue, kShift + 2));
        StoreEight8(cr + x / 2, Weigh8(brSquares, gxSquares, red, kShift + 2));
    }
    return x;
}
// Full-resolution conversion, sixteen pixels at a time; returns the first pixel left.
template <int kPixelBytes>
__attribute__((target("avx2"))) int ConvertPixelsAvx2(const uint8_t* bgr, int width, uint8_t* y, uint8_t* cb,
                                                      uint8_t* cr) {
    constexpr int kReadBeyond = kPixelBytes == 3 ? 2 : 0;
    const __m256i bytes = _mm256_set1_epi32(0x00ff00ff);
    const Weights8 weights[3] = {MakeWeights8(kYb, kYr, kYg, kYOffset), MakeWeights8(kCbB, kCbR, kCbG, kChromaOffset),
                                 MakeWeights8(kCrB, kCrR, kCrG, kChromaOffset)};
    uint8_t* const out[3] = {y, cb, cr};
    int x = 0;
    for (; x + 16 + kReadBeyond <= width; x += 16) {
        const uint8_t* p = bgr + static_cast<size_t>(x) * kPixelBytes;
        _mm_prefetch(reinterpret_cast<const char*>(p + 2048), _MM_HINT_T0);
        __m256i br[2], gx[2];
        for (int h = 0; h < 2; ++h) {
            const __m256i v = LoadEight<kPixelBytes>(p + 8 * h * kPixelBytes);
            br[h] = _mm256_and_si256(v, bytes);
            gx[h] = _mm256_and_si256(_mm256_srli_epi32(v, 8), bytes);
        }
        for (int c = 0; c < 3; ++c)
            StoreSixteen(out[c] + x, Weigh8(br[0], gx[0], weights[c], kShift), Weigh8(br[1], gx[1], weights[c], kShift));
    }
    return x;
}

// Sixteen samples widened to 16 bits.
__attribute__((target("avx2"), always_inline)) inline __m256i Widen16(const uint8_t* p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}

// The smoothing filter on sixteen samples at a time, from column 1 on while both
// neighbours lie inside the row; returns the first column left. The scalar sum row * own +
// ring * neighbour equals row * 65536 + 64 * smoothing * (ring - 8 * row), so each output is
// its sample plus that product rounded, which the product's 16-bit halves give exactly.
__attribute__((target("avx2"))) int SmoothRowAvx2(const uint8_t* above, const uint8_t* row, const uint8_t* below,
                                                  int width, int smoothing, uint8_t* out) {
    const __m256i weight = _mm256_set1_epi16(static_cast<int16_t>(smoothing * 64));
    int x = 1;
    for (; x + 17 <= width; x += 16) {
        const __m256i centre = Widen16(row + x);
        __m256i ring = _mm256_add_epi16(Widen16(row + x - 1), Widen16(row + x + 1));
        for (const uint8_t* r : {above, below})
            ring = _mm256_add_epi16(ring, _mm256_add_epi16(_mm256_add_epi16(Widen16(r + x - 1), Widen16(r + x)),
                                                           Widen16(r + x + 1)));
        const __m256i d = _mm256_sub_epi16(ring, _mm256_slli_epi16(centre, 3));
        const __m256i rounded = _mm256_add_epi16(_mm256_mulhi_epi16(d, weight),
                                                 _mm256_srli_epi16(_mm256_mullo_epi16(d, weight), 15));
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(_mm256_add_epi16(centre, rounded), centre), 0xd8);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm256_castsi256_si128(bytes));
    }
    return x;
}

__attribute__((target("avx2"), always_inline)) inline __m256i SumOfRows(const uint8_t* a, const uint8_t* b, int at) {
    return _mm256_add_epi16(Widen16(a + at), Widen16(b + at));
}

// Smoothing with downsampling, eight outputs at a time from output 1 on while every input
// column read lies inside the row; returns the first output left. Per input column the
// sums of the two rows inside the square (t) and of the two outside it (o) are added in
// pairs: those of the square's own columns, and those of the columns left and right of it.
__attribute__((target("avx2"))) int SmoothDownsampleRowAvx2(const uint8_t* above, const uint8_t* top,
                                                            const uint8_t* bottom, const uint8_t* below, int outWidth,
                                                            int smoothing, uint8_t* out) {
    const __m256i both = _mm256_set1_epi16(1), leftOne = _mm256_set1_epi32(1), rightOne = _mm256_set1_epi32(1 << 16);
    const __m256i own = _mm256_set1_epi32(16384 - smoothing * 80), quarter = _mm256_set1_epi32(smoothing * 16);
    const __m256i half = _mm256_set1_epi32(kHalf);
    int x = 1;
    for (; 2 * x + 17 <= 2 * outWidth; x += 8) {
        const int a = 2 * x;
        const __m256i members = _mm256_madd_epi16(SumOfRows(top, bottom, a), both);
        const __m256i sides = _mm256_madd_epi16(SumOfRows(above, below, a), both);  // above and below the square
        const __m256i leftRight =
            _mm256_add_epi32(_mm256_madd_epi16(SumOfRows(top, bottom, a - 1), leftOne), _mm256_madd_epi16(SumOfRows(top, bottom, a + 1), rightOne));
        const __m256i corners =
            _mm256_add_epi32(_mm256_madd_epi16(SumOfRows(above, below, a - 1), leftOne), _mm256_madd_epi16(SumOfRows(above, below, a + 1), rightOne));
        const __m256i ring =
            _mm256_add_epi32(_mm256_slli_epi32(_mm256_add_epi32(sides, leftRight), 1), corners);
        const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(_mm256_mullo_epi32(members, own),
                                                              _mm256_mullo_epi32(ring, quarter)), half);
        StoreEight8(out + x, _mm256_srai_epi32(sum, 16));
    }
    return x;
}
#endif

inline uint8_t LumaOf(const uint8_t* p) {
    return static_cast<uint8_t>((kYr * p[2] + kYg * p[1] + kYb * p[0] + kYOffset) >> kShift);
}

inline void ConvertSquare(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d, uint8_t* cb,
                          uint8_t* cr) {
    const int32_t blue = a[0] + b[0] + c[0] + d[0], green = a[1] + b[1] + c[1] + d[1], red = a[2] + b[2] + c[2] + d[2];
    *cb = static_cast<uint8_t>((kCbR * red + kCbG * green + kCbB * blue + kSquareChromaOffset) >> (kShift + 2));
    *cr = static_cast<uint8_t>((kCrR * red + kCrG * green + kCrB * blue + kSquareChromaOffset) >> (kShift + 2));
}

template <int kPixelBytes>
void ConvertPixelPairs(const uint8_t* top, const uint8_t* bottom, int width, uint8_t* yTop, uint8_t* yBottom,
                       uint8_t* cb, uint8_t* cr, JpegSimd simd) {
    int x = 0;
#if defined(LX_JPEG_AVX2)
    if (simd >= JpegSimd::Avx2) x = ConvertPixelPairsAvx2<kPixelBytes>(top, bottom, width, yTop, yBottom, cb, cr);
#endif
#if defined(__SSE2__)
    constexpr int kReadBeyond = kPixelBytes == 3 ? 2 : 0;
    for (; x + 8 + kReadBeyond <= width; x += 8) {  // x a multiple of 8, so squares stay whole
        const size_t at = static_cast<size_t>(x) * kPixelBytes;
        const __m128i t[2] = {LoadFour<kPixelBytes>(top + at), LoadFour<kPixelBytes>(top + at + 4 * kPixelBytes)};
        const __m128i b[2] = {LoadFour<kPixelBytes>(bottom + at), LoadFour<kPixelBytes>(bottom + at + 4 * kPixelBytes)};
        ConvertSquares(t, b, yTop + x, yBottom + x, cb + x / 2, cr + x / 2);
    }
#endif
    for (int i = x; i < width; ++i) {
        yTop[i] = LumaOf(top + static_cast<size_t>(i) * kPixelBytes);
        yBottom[i] = LumaOf(bottom + static_cast<size_t>(i) * kPixelBytes);
    }
    // An odd last column makes a square with itself.
    for (int i = x; i < width; i += 2) {
        const size_t left = static_cast<size_t>(i) * kPixelBytes;
        const size_t right = static_cast<size_t>(std::min(i + 1, width - 1)) * kPixelBytes;
        ConvertSquare(top + left, top + right, bottom + left, bottom + right, cb + i / 2, cr + i / 2);
    }
}

template <int kPixelBytes>
void ConvertPixels(const uint8_t* bgr, int width, uint8_t* y, uint8_t* cb, uint8_t* cr, JpegSimd simd) {
    int x = 0;
#if defined(LX_JPEG_AVX2)
    if (simd >= JpegSimd::Avx2) x = ConvertPixelsAvx2<kPixelBytes>(bgr, width, y, cb, cr);
#endif
#if defined(__SSE2__)
    // Each group reads a little past its last pixel, so the last few pixels of the row
    // go the scalar way.
    constexpr int kReadBeyond = kPixelBytes == 3 ? 2 : 0;
    for (; x + 8 + kReadBeyond <= width; x += 8) {
        const uint8_t* p = bgr + static_cast<size_t>(x) * kPixelBytes;
        ConvertEight(LoadFour<kPixelBytes>(p), LoadFour<kPixelBytes>(p + 4 * kPixelBytes), y + x, cb + x, cr + x);
    }
#endif
    for (; x < width; ++x) ConvertPixel(bgr + static_cast<size_t>(x) * kPixelBytes, y + x, cb + x, cr + x);
}

}  // namespace

void ConvertRowToYcc(const uint8_t* bgr, int pixelBytes, int width, int paddedWidth, uint8_t* y,
                     uint8_t* cb, uint8_t* cr, JpegSimd simd) {
    if (pixelBytes == 4)
        ConvertPixels<4>(bgr, width, y, cb, cr, simd);
    else
        ConvertPixels<3>(bgr, width, y, cb, cr, simd);
    std::fill(y + width, y + paddedWidth, y[width - 1]);
    std::fill(cb + width, cb + paddedWidth, cb[width - 1]);
    std::fill(cr + width, cr + paddedWidth, cr[width - 1]);
}

void ConvertRowPairTo420(const uint8_t* top, const uint8_t* bottom, int pixelBytes, int width, int paddedWidth,
                         uint8_t* yTop, uint8_t* yBottom, uint8_t* cb, uint8_t* cr, JpegSimd simd) {
    if (pixelBytes == 4)
        ConvertPixelPairs<4>(top, bottom, width, yTop, yBottom, cb, cr, simd);
    else
        ConvertPixelPairs<3>(top, bottom, width, yTop, yBottom, cb, cr, simd);
    std::fill(yTop + width, yTop + paddedWidth, yTop[width - 1]);
    std::fill(yBottom + width, yBottom + paddedWidth, yBottom[width - 1]);
    const int halfWidth = (width + 1) / 2;
    std::fill(cb + halfWidth, cb + paddedWidth / 2, cb[halfWidth - 1]);
    std::fill(cr + halfWidth, cr + paddedWidth / 2, cr[halfWidth - 1]);
}

void SmoothRow(const uint8_t* above, const uint8_t* row, const uint8_t* below, int width,
               int smoothing, uint8_t* out, JpegSimd simd) {
    const int32_t own = 65536 - smoothing * 512;  // (1 - 8 SF) in 16.16
    const int32_t neighbour = smoothing * 64;     // SF in 16.16
    auto column = [&](int x) { return above[x] + row[x] + below[x]; };
    auto smooth = [&](int x) {
        const int left = std::max(x - 1, 0), right = std::min(x + 1, width - 1);
        const int32_t ring = column(left) + column(x) + column(right) - row[x];
        out[x] = static_cast<uint8_t>((row[x] * own + ring * neighbour + kHalf) >> 16);
    };
    int x = 0;
#if defined(LX_JPEG_AVX2)
    if (simd >= JpegSimd::Avx2 && width > 1) {
        smooth(0);
        x = SmoothRowAvx2(above, row, below, width, smoothing, out);
    }
#endif
    for (; x < width; ++x) smooth(x);
}

void SmoothDownsampleRow(const uint8_t* above, const uint8_t* top, const uint8_t* bottom,
                         const uint8_t* below, int outWidth, int smoothing, uint8_t* out, JpegSimd simd) {
    // Averaging four smoothed samples: each of the four keeps (1 - 5 SF) / 4, each
    // neighbour sharing an edge with the square counts SF / 2 and each corner SF / 4.
    const int32_t own = 16384 - smoothing * 80;
    const int32_t quarter = smoothing * 16;
    const int last = 2 * outWidth - 1;
    auto smooth = [&](int x) {
        const int l = std::max(2 * x - 1, 0), a = 2 * x, b = 2 * x + 1, r = std::min(2 * x + 2, last);
        const int32_t members = top[a] + top[b] + bottom[a] + bottom[b];
        const int32_t edges = above[a] + above[b] + below[a] + below[b] + top[l] + bottom[l] + top[r] + bottom[r];
        const int32_t corners = above[l] + above[r] + below[l] + below[r];
        out[x] = static_cast<uint8_t>((members * own + (2 * edges + corners) * quarter + kHalf) >> 16);
    };
    int x = 0;
#if defined(LX_JPEG_AVX2)
    if (simd >= JpegSimd::Avx2 && outWidth > 1) {
        smooth(0);
        x = SmoothDownsampleRowAvx2(above, top, bottom, below, outWidth, smoothing, out);
    }
#endif
    for (; x < outWidth; ++x) smooth(x);
}

}  // namespace lx
