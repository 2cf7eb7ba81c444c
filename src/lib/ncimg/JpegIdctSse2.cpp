// The full-size inverse DCT in SSE2: each row of the block is two vectors of four 32-bit
// lanes; SSE2 has no 32-bit multiply keeping the low half, so it is made of two unsigned
// 32 x 32 -> 64-bit ones.
#include "JpegIdctSimd.h"

#ifdef LX_JPEG_X86_SIMD
#include "JpegIdctKernel.h"

#include <emmintrin.h>

namespace lx {
namespace {

struct V {
    __m128i lo, hi;
};

inline __m128i Mul32(__m128i a, __m128i b) {
    const __m128i even = _mm_mul_epu32(a, b);
    const __m128i odd = _mm_mul_epu32(_mm_srli_si128(a, 4), _mm_srli_si128(b, 4));
    return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                              _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
}

inline V operator+(V a, V b) { return {_mm_add_epi32(a.lo, b.lo), _mm_add_epi32(a.hi, b.hi)}; }
inline V operator-(V a, V b) { return {_mm_sub_epi32(a.lo, b.lo), _mm_sub_epi32(a.hi, b.hi)}; }
inline V operator*(V a, int32_t k) {
    const __m128i kk = _mm_set1_epi32(k);
    return {Mul32(a.lo, kk), Mul32(a.hi, kk)};
}
inline V Shl(V a, int n) {
    const __m128i count = _mm_cvtsi32_si128(n);
    return {_mm_sll_epi32(a.lo, count), _mm_sll_epi32(a.hi, count)};
}
inline V Descale(V a, int n) {
    const __m128i round = _mm_set1_epi32(1 << (n - 1)), count = _mm_cvtsi32_si128(n);
    return {_mm_sra_epi32(_mm_add_epi32(a.lo, round), count), _mm_sra_epi32(_mm_add_epi32(a.hi, round), count)};
}

inline void Transpose4(__m128i& a, __m128i& b, __m128i& c, __m128i& d) {
    const __m128i t0 = _mm_unpacklo_epi32(a, b), t1 = _mm_unpackhi_epi32(a, b);
    const __m128i t2 = _mm_unpacklo_epi32(c, d), t3 = _mm_unpackhi_epi32(c, d);
    a = _mm_unpacklo_epi64(t0, t2);
    b = _mm_unpackhi_epi64(t0, t2);
    c = _mm_unpacklo_epi64(t1, t3);
    d = _mm_unpackhi_epi64(t1, t3);
}

// Rows become columns: the four 4 x 4 quarters are transposed, the off-diagonal ones swapped.
inline void Transpose(V* r) {
    Transpose4(r[0].lo, r[1].lo, r[2].lo, r[3].lo);
    Transpose4(r[0].hi, r[1].hi, r[2].hi, r[3].hi);
    Transpose4(r[4].lo, r[5].lo, r[6].lo, r[7].lo);
    Transpose4(r[4].hi, r[5].hi, r[6].hi, r[7].hi);
    for (int i = 0; i < 4; ++i) {
        const __m128i t = r[i].hi;
        r[i].hi = r[i + 4].lo;
        r[i + 4].lo = t;
    }
}

}  // namespace

void IdctIslow8Sse2(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride) {
    using namespace idct;
    const __m128i zero = _mm_setzero_si128();
    V in[8];
    for (int r = 0; r < 8; ++r) {
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(coef + r * 8));
        const __m128i q = _mm_loadu_si128(reinterpret_cast<const __m128i*>(quant + r * 8));
        in[r].lo = Mul32(_mm_srai_epi32(_mm_unpacklo_epi16(c, c), 16), _mm_unpacklo_epi16(q, zero));
        in[r].hi = Mul32(_mm_srai_epi32(_mm_unpackhi_epi16(c, c), 16), _mm_unpackhi_epi16(q, zero));
    }
    V w[8], o[8];
    Points8<V>(in[0], in[1], in[2], in[3], in[4], in[5], in[6], in[7], kConstBits - kPass1Bits,
               [&](int r, V v) { w[r] = v; });
    Transpose(w);
    Points8<V>(w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], kConstBits + kPass1Bits + 3,
               [&](int x, V v) { o[x] = v; });
    Transpose(o);
    const __m128i centre = _mm_set1_epi32(128);
    for (int r = 0; r < 8; ++r) {
        const __m128i words = _mm_packs_epi32(_mm_add_epi32(o[r].lo, centre), _mm_add_epi32(o[r].hi, centre));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + r * stride), _mm_packus_epi16(words, words));
    }
}

}  // namespace lx
#endif
