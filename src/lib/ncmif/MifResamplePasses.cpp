// SSE2 is the x86-64 baseline and always used; the vertical passes, where a reduction spends
// most of its time, also have AVX2 forms (twice the samples per instruction), chosen once at
// run time. Every form rounds the same way, so results never depend on the processor.
#include "MifResamplePasses.h"

#include <immintrin.h>

#include <algorithm>
#include <cstring>

namespace lx::mifpix {

namespace {

// 8-bit to intermediate keeps six of the weights' fraction bits; intermediate to 8-bit drops
// all of them (the intermediate's and the weights').
constexpr int kToMidShift = kWeightBits - kMidFractionBits;
constexpr int kToPixelShift = kWeightBits + kMidFractionBits;

inline int16_t ToMid(int32_t acc) {
    return static_cast<int16_t>(std::clamp((acc + (1 << (kToMidShift - 1))) >> kToMidShift, -32768, 32767));
}
inline uint8_t ToPixel(int32_t acc) {
    return static_cast<uint8_t>(std::clamp((acc + (1 << (kToPixelShift - 1))) >> kToPixelShift, 0, 255));
}
inline void Store(int16_t* out, int32_t acc) { *out = ToMid(acc); }
inline void Store(uint8_t* out, int32_t acc) { *out = ToPixel(acc); }

// Two neighbouring weights as one 32-bit word, the layout _mm_madd_epi16 pairs samples with.
inline int32_t WeightPair(const int16_t* w) {
    return static_cast<int32_t>(static_cast<uint16_t>(w[0]) | (static_cast<uint32_t>(static_cast<uint16_t>(w[1])) << 16));
}

template <class In, class Out>
void VerticalTail(const In* const* rows, const int16_t* weights, int span, int from, int count, Out* out) {
    for (int i = from; i < count; ++i) {
        int32_t acc = 0;
        for (int k = 0; k < span; ++k) acc += weights[k] * rows[k][i];
        Store(out + i, acc);
    }
}

// --- SSE2: 16 samples per step, two input rows at a time.

int VerticalSse2(const uint8_t* const* rows, const int16_t* weights, int span, int from, int count, int16_t* out) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i round = _mm_set1_epi32(1 << (kToMidShift - 1));
    int i = from;
    for (; i + 16 <= count; i += 16) {
        __m128i a0 = round, a1 = round, a2 = round, a3 = round;
        for (int k = 0; k < span; k += 2) {
            const __m128i w = _mm_set1_epi32(WeightPair(weights + k));
            const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[k] + i));
            const __m128i q = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[k + 1] + i));
            const __m128i lo = _mm_unpacklo_epi8(p, q), hi = _mm_unpackhi_epi8(p, q);
            a0 = _mm_add_epi32(a0, _mm_madd_epi16(_mm_unpacklo_epi8(lo, zero), w));
            a1 = _mm_add_epi32(a1, _mm_madd_epi16(_mm_unpackhi_epi8(lo, zero), w));
            a2 = _mm_add_epi32(a2, _mm_madd_epi16(_mm_unpacklo_epi8(hi, zero), w));
            a3 = _mm_add_epi32(a3, _mm_madd_epi16(_mm_unpackhi_epi8(hi, zero), w));
        }
        a0 = _mm_srai_epi32(a0, kToMidShift), a1 = _mm_srai_epi32(a1, kToMidShift);
        a2 = _mm_srai_epi32(a2, kToMidShift), a3 = _mm_srai_epi32(a3, kToMidShift);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packs_epi32(a0, a1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i + 8), _mm_packs_epi32(a2, a3));
    }
    return i;
}

int VerticalSse2(const int16_t* const* rows, const int16_t* weights, int span, int from, int count, uint8_t* out) {
    const __m128i round = _mm_set1_epi32(1 << (kToPixelShift - 1));
    int i = from;
    for (; i + 16 <= count; i += 16) {
        __m128i a0 = round, a1 = round, a2 = round, a3 = round;
        for (int k = 0; k < span; k += 2) {
            const __m128i w = _mm_set1_epi32(WeightPair(weights + k));
            const __m128i p0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[k] + i));
            const __m128i p1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[k] + i + 8));
            const __m128i q0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[k + 1] + i));
            const __m128i q1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[k + 1] + i + 8));
            a0 = _mm_add_epi32(a0, _mm_madd_epi16(_mm_unpacklo_epi16(p0, q0), w));
            a1 = _mm_add_epi32(a1, _mm_madd_epi16(_mm_unpackhi_epi16(p0, q0), w));
            a2 = _mm_add_epi32(a2, _mm_madd_epi16(_mm_unpacklo_epi16(p1, q1), w));
            a3 = _mm_add_epi32(a3, _mm_madd_epi16(_mm_unpackhi_epi16(p1, q1), w));
        }
        a0 = _mm_srai_epi32(a0, kToPixelShift), a1 = _mm_srai_epi32(a1, kToPixelShift);
        a2 = _mm_srai_epi32(a2, kToPixelShift), a3 = _mm_srai_epi32(a3, kToPixelShift);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i),
                         _mm_packus_epi16(_mm_packs_epi32(a0, a1), _mm_packs_epi32(a2, a3)));
    }
    return i;
}

// --- AVX2: 32 samples per step. The unpacks work within each 128-bit half, so the halves of
// the accumulators hold samples 16 apart (8-bit in) or 8 apart (16-bit in) and are put back
// in order when stored.

__attribute__((target("avx2"))) int VerticalAvx2(const uint8_t* const* rows, const int16_t* weights, int span,
                                                 int count, int16_t* out) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i round = _mm256_set1_epi32(1 << (kToMidShift - 1));
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        __m256i a0 = round, a1 = round, a2 = round, a3 = round;
        for (int k = 0; k < span; k += 2) {
            const __m256i w = _mm256_set1_epi32(WeightPair(weights + k));
            const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k] + i));
            const __m256i q = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k + 1] + i));
            const __m256i lo = _mm256_unpacklo_epi8(p, q), hi = _mm256_unpackhi_epi8(p, q);
            a0 = _mm256_add_epi32(a0, _mm256_madd_epi16(_mm256_unpacklo_epi8(lo, zero), w));  // 0-3, 16-19
            a1 = _mm256_add_epi32(a1, _mm256_madd_epi16(_mm256_unpackhi_epi8(lo, zero), w));  // 4-7, 20-23
            a2 = _mm256_add_epi32(a2, _mm256_madd_epi16(_mm256_unpacklo_epi8(hi, zero), w));  // 8-11, 24-27
            a3 = _mm256_add_epi32(a3, _mm256_madd_epi16(_mm256_unpackhi_epi8(hi, zero), w));  // 12-15, 28-31
        }
        const __m256i low = _mm256_packs_epi32(_mm256_srai_epi32(a0, kToMidShift), _mm256_srai_epi32(a1, kToMidShift));
        const __m256i high = _mm256_packs_epi32(_mm256_srai_epi32(a2, kToMidShift), _mm256_srai_epi32(a3, kToMidShift));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_permute2x128_si256(low, high, 0x20));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i + 16), _mm256_permute2x128_si256(low, high, 0x31));
    }
    return i;
}

__attribute__((target("avx2"))) int VerticalAvx2(const int16_t* const* rows, const int16_t* weights, int span,
                                                 int count, uint8_t* out) {
    const __m256i round = _mm256_set1_epi32(1 << (kToPixelShift - 1));
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        __m256i a0 = round, a1 = round, a2 = round, a3 = round;
        for (int k = 0; k < span; k += 2) {
            const __m256i w = _mm256_set1_epi32(WeightPair(weights + k));
            const __m256i p0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k] + i));
            const __m256i p1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k] + i + 16));
            const __m256i q0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k + 1] + i));
            const __m256i q1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k + 1] + i + 16));
            a0 = _mm256_add_epi32(a0, _mm256_madd_epi16(_mm256_unpacklo_epi16(p0, q0), w));  // 0-3, 8-11
            a1 = _mm256_add_epi32(a1, _mm256_madd_epi16(_mm256_unpackhi_epi16(p0, q0), w));  // 4-7, 12-15
            a2 = _mm256_add_epi32(a2, _mm256_madd_epi16(_mm256_unpacklo_epi16(p1, q1), w));  // 16-19, 24-27
            a3 = _mm256_add_epi32(a3, _mm256_madd_epi16(_mm256_unpackhi_epi16(p1, q1), w));  // 20-23, 28-31
        }
        const __m256i low = _mm256_packs_epi32(_mm256_srai_epi32(a0, kToPixelShift), _mm256_srai_epi32(a1, kToPixelShift));
        const __m256i high = _mm256_packs_epi32(_mm256_srai_epi32(a2, kToPixelShift), _mm256_srai_epi32(a3, kToPixelShift));
        // Bytes 0-7, 16-23 | 8-15, 24-31 before the 64-bit blocks are reordered.
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i),
                            _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xd8));
    }
    return i;
}

bool HasAvx2() {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

template <class In, class Out>
void Vertical(const In* const* rows, const int16_t* weights, int span, int count, Out* out) {
    int done = HasAvx2() ? VerticalAvx2(rows, weights, span, count, out) : 0;
    done = VerticalSse2(rows, weights, span, done, count, out);
    VerticalTail(rows, weights, span, done, count, out);
}

// --- Across a row.

inline __m128i Load4(const uint8_t* p) {
    int32_t v;
    std::memcpy(&v, p, 4);
    return _mm_cvtsi32_si128(v);
}

// Four 16-bit samples from p and four from p + step, interleaved for _mm_madd_epi16.
inline __m128i Interleaved(const uint8_t* p, int step) {
    return _mm_unpacklo_epi8(_mm_unpacklo_epi8(Load4(p), Load4(p + step)), _mm_setzero_si128());
}
inline __m128i Interleaved(const int16_t* p, int step) {
    return _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                              _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + step)));
}
// Eight samples from p widened to 16 bits.
inline __m128i Load8(const uint8_t* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
}
inline __m128i Load8(const int16_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

template <class In, class Out>
void Horizontal(const In* in, int channels, const AxisWeights& axis, Out* out) {
    const int outWidth = static_cast<int>(axis.first.size());
    if (channels == 1) {
        // One channel: eight neighbouring samples against eight weights.
        for (int x = 0; x < outWidth; ++x) {
            const In* p = in + axis.first[x];
            const int16_t* w = &axis.weights[static_cast<size_t>(x) * axis.span];
            __m128i acc = _mm_setzero_si128();
            for (int k = 0; k < axis.span; k += 8)
                acc = _mm_add_epi32(acc, _mm_madd_epi16(Load8(p + k), _mm_loadu_si128(reinterpret_cast<const __m128i*>(w + k))));
            acc = _mm_add_epi32(acc, _mm_shuffle_epi32(acc, 0x4e));
            acc = _mm_add_epi32(acc, _mm_shuffle_epi32(acc, 0xb1));
            Store(out + x, _mm_cvtsi128_si32(acc));
        }
        return;
    }
    // Three or four channels: the channels of two neighbouring pixels against a weight pair.
    const int taps = (axis.taps + 1) & ~1;
    alignas(16) int32_t lanes[4];
    for (int x = 0; x < outWidth; ++x) {
        const In* p = in + static_cast<size_t>(axis.first[x]) * channels;
        const int16_t* w = &axis.weights[static_cast<size_t>(x) * axis.span];
        __m128i acc = _mm_setzero_si128();
        for (int k = 0; k < taps; k += 2, p += 2 * channels)
            acc = _mm_add_epi32(acc, _mm_madd_epi16(Interleaved(p, channels), _mm_set1_epi32(WeightPair(w + k))));
        _mm_store_si128(reinterpret_cast<__m128i*>(lanes), acc);
        for (int c = 0; c < channels; ++c) Store(out + x * channels + c, lanes[c]);
    }
}

}  // namespace

void VerticalPass(const uint8_t* const* rows, const int16_t* weights, int span, int count, int16_t* out) {
    Vertical(rows, weights, span, count, out);
}
void VerticalPass(const int16_t* const* rows, const int16_t* weights, int span, int count, uint8_t* out) {
    Vertical(rows, weights, span, count, out);
}
void HorizontalPass(const uint8_t* in, int channels, const AxisWeights& axis, int16_t* out) {
    Horizontal(in, channels, axis, out);
}
void HorizontalPass(const int16_t* in, int channels, const AxisWeights& axis, uint8_t* out) {
    Horizontal(in, channels, axis, out);
}

}  // namespace lx::mifpix
