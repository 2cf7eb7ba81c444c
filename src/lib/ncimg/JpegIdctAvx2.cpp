// The full-size inverse DCT in AVX2: each row of the block is one vector of eight 32-bit
// lanes. This file alone is compiled for AVX2 (CMakeLists.txt) and is only called when the
// processor has it; it includes nothing that could leave an AVX2 copy of a shared inline
// function behind.
#include "JpegIdctSimd.h"

#ifdef LX_JPEG_X86_SIMD
#include "JpegIdctKernel.h"

#include <immintrin.h>

namespace lx {
namespace {

struct V {
    __m256i v;
};

inline V operator+(V a, V b) { return {_mm256_add_epi32(a.v, b.v)}; }
inline V operator-(V a, V b) { return {_mm256_sub_epi32(a.v, b.v)}; }
inline V operator*(V a, int32_t k) { return {_mm256_mullo_epi32(a.v, _mm256_set1_epi32(k))}; }
inline V Shl(V a, int n) { return {_mm256_sll_epi32(a.v, _mm_cvtsi32_si128(n))}; }
inline V Descale(V a, int n) {
    return {_mm256_sra_epi32(_mm256_add_epi32(a.v, _mm256_set1_epi32(1 << (n - 1))), _mm_cvtsi32_si128(n))};
}

inline void Transpose(V* r) {
    const __m256i t0 = _mm256_unpacklo_epi32(r[0].v, r[1].v), t1 = _mm256_unpackhi_epi32(r[0].v, r[1].v);
    const __m256i t2 = _mm256_unpacklo_epi32(r[2].v, r[3].v), t3 = _mm256_unpackhi_epi32(r[2].v, r[3].v);
    const __m256i t4 = _mm256_unpacklo_epi32(r[4].v, r[5].v), t5 = _mm256_unpackhi_epi32(r[4].v, r[5].v);
    const __m256i t6 = _mm256_unpacklo_epi32(r[6].v, r[7].v), t7 = _mm256_unpackhi_epi32(r[6].v, r[7].v);
    const __m256i u0 = _mm256_unpacklo_epi64(t0, t2), u1 = _mm256_unpackhi_epi64(t0, t2);
    const __m256i u2 = _mm256_unpacklo_epi64(t1, t3), u3 = _mm256_unpackhi_epi64(t1, t3);
    const __m256i u4 = _mm256_unpacklo_epi64(t4, t6), u5 = _mm256_unpackhi_epi64(t4, t6);
    const __m256i u6 = _mm256_unpacklo_epi64(t5, t7), u7 = _mm256_unpackhi_epi64(t5, t7);
    r[0].v = _mm256_permute2x128_si256(u0, u4, 0x20);
    r[1].v = _mm256_permute2x128_si256(u1, u5, 0x20);
    r[2].v = _mm256_permute2x128_si256(u2, u6, 0x20);
    r[3].v = _mm256_permute2x128_si256(u3, u7, 0x20);
    r[4].v = _mm256_permute2x128_si256(u0, u4, 0x31);
    r[5].v = _mm256_permute2x128_si256(u1, u5, 0x31);
    r[6].v = _mm256_permute2x128_si256(u2, u6, 0x31);
    r[7].v = _mm256_permute2x128_si256(u3, u7, 0x31);
}

}  // namespace

void IdctIslow8Avx2(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride) {
    using namespace idct;
    V in[8];
    for (int r = 0; r < 8; ++r) {
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(coef + r * 8));
        const __m128i q = _mm_loadu_si128(reinterpret_cast<const __m128i*>(quant + r * 8));
        in[r].v = _mm256_mullo_epi32(_mm256_cvtepi16_epi32(c), _mm256_cvtepu16_epi32(q));
    }
    V w[8], o[8];
    Points8<V>(in[0], in[1], in[2], in[3], in[4], in[5], in[6], in[7], kConstBits - kPass1Bits,
               [&](int r, V v) { w[r] = v; });
    Transpose(w);
    Points8<V>(w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], kConstBits + kPass1Bits + 3,
               [&](int x, V v) { o[x] = v; });
    Transpose(o);
    const __m256i centre = _mm256_set1_epi32(128);
    for (int r = 0; r < 8; ++r) {
        const __m256i v = _mm256_add_epi32(o[r].v, centre);
        const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + r * stride), _mm_packus_epi16(words, words));
    }
}

}  // namespace lx
#endif
