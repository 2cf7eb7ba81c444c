#include "JpegDct.h"

#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#define LX_JPEG_AVX2 1
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lx {
namespace {

// Four lanes: one SSE register on x86-64, and something equivalent elsewhere.
typedef float Lanes __attribute__((vector_size(16)));
typedef int32_t IntLanes __attribute__((vector_size(16)));

// After both passes, output [u][v] is the true DCT coefficient times
// 8 * AanScale(u) * AanScale(v); the divisors take that factor out again.
double AanScale(int k) {
    return k == 0 ? 1.0 : std::cos(k * std::numbers::pi / 16) * std::sqrt(2.0);
}

// One-dimensional scaled DCT along the array index, for independent lanes (four or eight).
template <class V>
inline __attribute__((always_inline)) void Dct8(V* d) {
    using Lanes = V;
    const Lanes t0 = d[0] + d[7], t7 = d[0] - d[7];
    const Lanes t1 = d[1] + d[6], t6 = d[1] - d[6];
    const Lanes t2 = d[2] + d[5], t5 = d[2] - d[5];
    const Lanes t3 = d[3] + d[4], t4 = d[3] - d[4];

    // Even part.
    const Lanes t10 = t0 + t3, t13 = t0 - t3;
    const Lanes t11 = t1 + t2, t12 = t1 - t2;
    d[0] = t10 + t11;
    d[4] = t10 - t11;
    const Lanes z1 = (t12 + t13) * 0.707106781f;
    d[2] = t13 + z1;
    d[6] = t13 - z1;

    // Odd part.
    const Lanes o10 = t4 + t5, o11 = t5 + t6, o12 = t6 + t7;
    const Lanes z5 = (o10 - o12) * 0.382683433f;
    const Lanes z2 = o10 * 0.541196100f + z5;
    const Lanes z4 = o12 * 1.306562965f + z5;
    const Lanes z3 = o11 * 0.707106781f;
    const Lanes z11 = t7 + z3, z13 = t7 - z3;
    d[5] = z13 + z2;
    d[3] = z13 - z2;
    d[1] = z11 + z4;
    d[7] = z11 - z4;
}

// The second pass runs over the transposed block, so output [u][v] holds horizontal
// frequency u and vertical frequency v (natural index v * 8 + u). kOutputOfZigzag[k] is
// the output holding the k-th coefficient in zigzag order.
constexpr std::array<uint8_t, 64> kOutputOfZigzag = [] {
    std::array<uint8_t, 64> place{};
    for (int k = 0; k < 64; ++k) place[k] = static_cast<uint8_t>(kZigzagToNatural[k] % 8 * 8 + kZigzagToNatural[k] / 8);
    return place;
}();

// Transposes the 4x4 square in[0..3] into out[0..3].
inline __attribute__((always_inline)) void Transpose4(const Lanes* in, Lanes* out) {
    const Lanes t0 = __builtin_shufflevector(in[0], in[1], 0, 4, 1, 5);
    const Lanes t1 = __builtin_shufflevector(in[2], in[3], 0, 4, 1, 5);
    const Lanes t2 = __builtin_shufflevector(in[0], in[1], 2, 6, 3, 7);
    const Lanes t3 = __builtin_shufflevector(in[2], in[3], 2, 6, 3, 7);
    out[0] = __builtin_shufflevector(t0, t1, 0, 1, 4, 5);
    out[1] = __builtin_shufflevector(t0, t1, 2, 3, 6, 7);
    out[2] = __builtin_shufflevector(t2, t3, 0, 1, 4, 5);
    out[3] = __builtin_shufflevector(t2, t3, 2, 3, 6, 7);
}

// Eight samples as two sets of four lanes, level-shifted.
inline __attribute__((always_inline)) void LevelShifted(const uint8_t* samples, Lanes& left, Lanes& right) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i words = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples)), zero);
    const Lanes shift = {128.0f, 128.0f, 128.0f, 128.0f};
    left = reinterpret_cast<Lanes>(_mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero))) - shift;
    right = reinterpret_cast<Lanes>(_mm_cvtepi32_ps(_mm_unpackhi_epi16(words, zero))) - shift;
#else
    for (int i = 0; i < 4; ++i) {
        left[i] = static_cast<float>(samples[i]) - 128.0f;
        right[i] = static_cast<float>(samples[i + 4]) - 128.0f;
    }
#endif
}

// Stores the 64 rounded results (output [u][v] at u * 8 + v) in zigzag order.
inline __attribute__((always_inline)) void StoreZigzag(const int16_t* rounded, int16_t* zigzag) {
    // Left as a loop: unrolled, the compiler gathers the values lane by lane into vector
    // registers, which takes twice as long as these plain moves.
    for (int k = 0; k < 64; ++k) zigzag[k] = rounded[kOutputOfZigzag[k]];
}

#if defined(LX_JPEG_AVX2)
typedef float Lanes8 __attribute__((vector_size(32)));

__attribute__((target("avx2"))) inline void Transpose8(Lanes8* r) {
    __m256 t[8], u[8];
    for (int i = 0; i < 8; i += 2) {
        t[i] = _mm256_unpacklo_ps(reinterpret_cast<__m256>(r[i]), reinterpret_cast<__m256>(r[i + 1]));
        t[i + 1] = _mm256_unpackhi_ps(reinterpret_cast<__m256>(r[i]), reinterpret_cast<__m256>(r[i + 1]));
    }
    for (int i = 0; i < 8; i += 4) {
        u[i] = _mm256_shuffle_ps(t[i], t[i + 2], 0x44);
        u[i + 1] = _mm256_shuffle_ps(t[i], t[i + 2], 0xee);
        u[i + 2] = _mm256_shuffle_ps(t[i + 1], t[i + 3], 0x44);
        u[i + 3] = _mm256_shuffle_ps(t[i + 1], t[i + 3], 0xee);
    }
    for (int i = 0; i < 4; ++i) {
        r[i] = reinterpret_cast<Lanes8>(_mm256_permute2f128_ps(u[i], u[i + 4], 0x20));
        r[i + 4] = reinterpret_cast<Lanes8>(_mm256_permute2f128_ps(u[i], u[i + 4], 0x31));
    }
}

// Byte shuffles that move the results of output row `from` to their places among zigzag
// positions 8 * to .. 8 * to + 7 (-128: a byte taken from elsewhere).
struct ZigzagShuffles {
    alignas(16) int8_t mask[8][8][16];
    bool used[8][8];
};
constexpr ZigzagShuffles kZigzagShuffles = [] {
    ZigzagShuffles z{};
    for (int to = 0; to < 8; ++to)
        for (int from = 0; from < 8; ++from)
            for (int i = 0; i < 8; ++i) {
                const int at = kOutputOfZigzag[8 * to + i];
                const bool here = at / 8 == from;
                z.mask[to][from][2 * i] = static_cast<int8_t>(here ? 2 * (at % 8) : -128);
                z.mask[to][from][2 * i + 1] = static_cast<int8_t>(here ? 2 * (at % 8) + 1 : -128);
                z.used[to][from] = z.used[to][from] || here;
            }
    return z;
}();

template <int kTo, int kFrom>
__attribute__((target("avx2"), always_inline)) inline __m128i ZigzagPart(const __m128i* rows) {
    if constexpr (kZigzagShuffles.used[kTo][kFrom])
        return _mm_shuffle_epi8(rows[kFrom], _mm_load_si128(reinterpret_cast<const __m128i*>(kZigzagShuffles.mask[kTo][kFrom])));
    else
        return _mm_setzero_si128();
}

template <int kTo, int... kFrom>
__attribute__((target("avx2"), always_inline)) inline __m128i ZigzagRow(const __m128i* rows,
                                                                         std::integer_sequence<int, kFrom...>) {
    __m128i v = _mm_setzero_si128();
    ((v = _mm_or_si128(v, ZigzagPart<kTo, kFrom>(rows))), ...);
    return v;
}

// About forty byte shuffles in place of 64 loads and stores.
template <int... kTo>
__attribute__((target("avx2"), always_inline)) inline void StoreZigzagAvx2(const __m128i* rows, int16_t* zigzag,
                                                                            std::integer_sequence<int, kTo...>) {
    ((_mm_storeu_si128(reinterpret_cast<__m128i*>(zigzag + 8 * kTo),
                       ZigzagRow<kTo>(rows, std::make_integer_sequence<int, 8>()))), ...);
}

// The same arithmetic as the four-lane path, a whole row of the block per register: the
// vertical pass over rows, one transpose, the horizontal pass.
__attribute__((target("avx2"))) void DctRowAvx2(const uint8_t* samples, ptrdiff_t stride, int blocks,
                                                const DctQuantizer& quantizer, int16_t* zigzag) {
    const __m256 shift = _mm256_set1_ps(128.0f);
    const __m256 offset = _mm256_set1_ps(16384.5f);
    const __m256i unshift = _mm256_set1_epi32(16384);
    for (int b = 0; b < blocks; ++b, samples += 8, zigzag += 64) {
        Lanes8 d[8];
        for (int r = 0; r < 8; ++r) {
            const __m256i wide = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples + r * stride)));
            d[r] = reinterpret_cast<Lanes8>(_mm256_sub_ps(_mm256_cvtepi32_ps(wide), shift));
        }
        Dct8(d);
        Transpose8(d);
        Dct8(d);
        __m128i rows[8];  // rows[u]: the rounded results of output [u][0..7]
        for (int u = 0; u < 8; u += 2) {
            __m256i q[2];
            for (int h = 0; h < 2; ++h) {
                const __m256 recip = _mm256_loadu_ps(quantizer.reciprocal + (u + h) * 8);
                const __m256 scaled = _mm256_add_ps(_mm256_mul_ps(reinterpret_cast<__m256>(d[u + h]), recip), offset);
                q[h] = _mm256_sub_epi32(_mm256_cvttps_epi32(scaled), unshift);
            }
            // The pack interleaves the halves of the two rows; the permute puts them back.
            const __m256i words = _mm256_permute4x64_epi64(_mm256_packs_epi32(q[0], q[1]), 0xd8);
            rows[u] = _mm256_castsi256_si128(words);
            rows[u + 1] = _mm256_extracti128_si256(words, 1);
        }
        StoreZigzagAvx2(rows, zigzag, std::make_integer_sequence<int, 8>());
    }
}

// Two blocks side by side, one in each half of every 16-lane register: the same
// arithmetic again, with half the instructions per block.
typedef float Lanes16 __attribute__((vector_size(64)));

// The last step of two 8x8 transposes at once: the 128-bit quarters of a pair of registers
// interleaved, within each block's half.
alignas(64) constexpr int32_t kQuarterLow[16] = {0, 1, 2, 3, 16, 17, 18, 19, 8, 9, 10, 11, 24, 25, 26, 27};
alignas(64) constexpr int32_t kQuarterHigh[16] = {4, 5, 6, 7, 20, 21, 22, 23, 12, 13, 14, 15, 28, 29, 30, 31};

__attribute__((target("avx2,avx512f,avx512bw"))) inline void Transpose8Pair(Lanes16* r) {
    __m512 t[8], u[8];
    for (int i = 0; i < 8; i += 2) {
        t[i] = _mm512_unpacklo_ps(reinterpret_cast<__m512>(r[i]), reinterpret_cast<__m512>(r[i + 1]));
        t[i + 1] = _mm512_unpackhi_ps(reinterpret_cast<__m512>(r[i]), reinterpret_cast<__m512>(r[i + 1]));
    }
    for (int i = 0; i < 8; i += 4) {
        u[i] = _mm512_shuffle_ps(t[i], t[i + 2], 0x44);
        u[i + 1] = _mm512_shuffle_ps(t[i], t[i + 2], 0xee);
        u[i + 2] = _mm512_shuffle_ps(t[i + 1], t[i + 3], 0x44);
        u[i + 3] = _mm512_shuffle_ps(t[i + 1], t[i + 3], 0xee);
    }
    const __m512i low = _mm512_load_si512(kQuarterLow), high = _mm512_load_si512(kQuarterHigh);
    for (int i = 0; i < 4; ++i) {
        r[i] = reinterpret_cast<Lanes16>(_mm512_permutex2var_ps(u[i], low, u[i + 4]));
        r[i + 4] = reinterpret_cast<Lanes16>(_mm512_permutex2var_ps(u[i], high, u[i + 4]));
    }
}

// After the pack, register k holds output rows 2k and 2k + 1 of both blocks: in each 128-bit
// quarter four results of the first row, then the same four of the second; quarters 0 and 1
// belong to the left block, 2 and 3 to the right one. Gathered into two registers per block
// (rows 0-3, rows 4-7), word i of the pair is placed by this table into zigzag order.
alignas(64) constexpr std::array<int16_t, 64> kPairZigzag = [] {
    std::array<int, 64> wordOf{};  // by output u * 8 + v
    for (int i = 0; i < 64; ++i) {
        const int k = i / 16, quarter = (i % 16) / 8, w = i % 8;
        wordOf[(2 * k + w / 4) * 8 + quarter * 4 + w % 4] = i;
    }
    std::array<int16_t, 64> index{};
    for (int k = 0; k < 64; ++k) index[k] = static_cast<int16_t>(wordOf[kOutputOfZigzag[k]]);
    return index;
}();

// One block's results in zigzag order: kQuarters picks its two quarters of each register.
template <int kQuarters>
__attribute__((target("avx2,avx512f,avx512bw"), always_inline)) inline void StoreBlockOfPair(
    const __m512i* packed, __m512i first, __m512i second, int16_t* zigzag) {
    const __m512i top = _mm512_shuffle_i64x2(packed[0], packed[1], kQuarters);
    const __m512i bottom = _mm512_shuffle_i64x2(packed[2], packed[3], kQuarters);
    _mm512_storeu_si512(zigzag, _mm512_permutex2var_epi16(top, first, bottom));
    _mm512_storeu_si512(zigzag + 32, _mm512_permutex2var_epi16(top, second, bottom));
}

__attribute__((target("avx2,avx512f,avx512bw"))) void DctRowAvx512(const uint8_t* samples, ptrdiff_t stride,
                                                                   int blocks, const DctQuantizer& quantizer,
                                                                   int16_t* zigzag) {
    const __m512 shift = _mm512_set1_ps(128.0f);
    const __m512 offset = _mm512_set1_ps(16384.5f);
    const __m512i unshift = _mm512_set1_epi32(16384);
    alignas(64) float recip[8][16];
    for (int u = 0; u < 8; ++u)
        for (int i = 0; i < 16; ++i) recip[u][i] = quantizer.reciprocal[u * 8 + i % 8];
    const __m512i first = _mm512_load_si512(kPairZigzag.data()), second = _mm512_load_si512(kPairZigzag.data() + 32);
    int b = 0;
    for (; b + 2 <= blocks; b += 2, samples += 16, zigzag += 128) {
        Lanes16 d[8];
        for (int r = 0; r < 8; ++r) {
            const __m512i wide = _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + r * stride)));
            d[r] = reinterpret_cast<Lanes16>(_mm512_sub_ps(_mm512_cvtepi32_ps(wide), shift));
        }
        Dct8(d);
        Transpose8Pair(d);
        Dct8(d);
        __m512i packed[4];
        for (int u = 0; u < 8; u += 2) {
            __m512i q[2];
            for (int h = 0; h < 2; ++h) {
                const __m512 scaled =
                    _mm512_add_ps(_mm512_mul_ps(reinterpret_cast<__m512>(d[u + h]), _mm512_load_ps(recip[u + h])), offset);
                q[h] = _mm512_sub_epi32(_mm512_cvttps_epi32(scaled), unshift);
            }
            packed[u / 2] = _mm512_packs_epi32(q[0], q[1]);
        }
        StoreBlockOfPair<0x44>(packed, first, second, zigzag);
        StoreBlockOfPair<0xee>(packed, first, second, zigzag + 64);
    }
    if (b < blocks) DctRowAvx2(samples, stride, blocks - b, quantizer, zigzag);
}
#endif

}  // namespace

DctQuantizer MakeDctQuantizer(const QuantTable& table) {
    DctQuantizer q;
    for (int u = 0; u < 8; ++u)
        for (int v = 0; v < 8; ++v)
            q.reciprocal[u * 8 + v] = static_cast<float>(1.0 / (table[v * 8 + u] * AanScale(u) * AanScale(v) * 8.0));
    return q;
}

void ForwardDctQuantize(const uint8_t* samples, ptrdiff_t stride, const DctQuantizer& quantizer, int16_t* zigzag) {
    // Columns first, in two halves of four lanes: left[r] holds columns 0-3 of row r.
    Lanes left[8], right[8];
    for (int r = 0; r < 8; ++r) LevelShifted(samples + r * stride, left[r], right[r]);
    Dct8(left);
    Dct8(right);

    // Rows next, on the transposed block: low[x] holds vertical frequencies 0-3 of column x.
    Lanes low[8], high[8];
    Transpose4(left, low);
    Transpose4(left + 4, high);
    Transpose4(right, low + 4);
    Transpose4(right + 4, high + 4);
    Dct8(low);
    Dct8(high);

    // Quantise: |coefficient| stays below 1024 for 8-bit samples, so the value made
    // positive by the offset truncates to the rounded result.
    alignas(16) int16_t rounded[64];
    for (int u = 0; u < 8; ++u) {
        Lanes recipLow, recipHigh;
        std::memcpy(&recipLow, quantizer.reciprocal + u * 8, sizeof(Lanes));
        std::memcpy(&recipHigh, quantizer.reciprocal + u * 8 + 4, sizeof(Lanes));
        const IntLanes a = __builtin_convertvector(low[u] * recipLow + 16384.5f, IntLanes) - 16384;
        const IntLanes b = __builtin_convertvector(high[u] * recipHigh + 16384.5f, IntLanes) - 16384;
#if defined(__SSE2__)
        _mm_store_si128(reinterpret_cast<__m128i*>(rounded + u * 8),
                        _mm_packs_epi32(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#else
        for (int i = 0; i < 4; ++i) {
            rounded[u * 8 + i] = static_cast<int16_t>(a[i]);
            rounded[u * 8 + 4 + i] = static_cast<int16_t>(b[i]);
        }
#endif
    }
    StoreZigzag(rounded, zigzag);
}

void ForwardDctQuantizeRow(const uint8_t* samples, ptrdiff_t stride, int blocks, const DctQuantizer& quantizer,
                           int16_t* zigzag, JpegSimd simd) {
#if defined(LX_JPEG_AVX2)
    if (simd == JpegSimd::Avx512) return DctRowAvx512(samples, stride, blocks, quantizer, zigzag);
    if (simd == JpegSimd::Avx2) return DctRowAvx2(samples, stride, blocks, quantizer, zigzag);
#endif
    for (int b = 0; b < blocks; ++b) ForwardDctQuantize(samples + 8 * b, stride, quantizer, zigzag + 64 * b);
}

}  // namespace lx
