#include "JpegUpsample.h"

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace lx {
namespace {

#ifdef __SSE2__
inline __m128i Load8(const uint8_t* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
}

// Outputs 2i and 2i+1 for eight inputs i, from 16-bit sums of the nearer (times 3) and the
// left and right neighbours, each with its own bias; the results are stored interleaved.
inline void StorePairs(__m128i near3, __m128i left, __m128i right, __m128i biasLeft, __m128i biasRight, int shift,
                       uint8_t* out) {
    const __m128i count = _mm_cvtsi32_si128(shift);
    const __m128i even = _mm_srl_epi16(_mm_add_epi16(_mm_add_epi16(near3, left), biasLeft), count);
    const __m128i odd = _mm_srl_epi16(_mm_add_epi16(_mm_add_epi16(near3, right), biasRight), count);
    const __m128i lo = _mm_unpacklo_epi16(even, odd), hi = _mm_unpackhi_epi16(even, odd);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(lo, hi));
}
#endif

}  // namespace

void UpsampleH2V1Fancy(const uint8_t* in, int width, uint8_t* out) {
    out[0] = in[0];
    out[1] = static_cast<uint8_t>((in[0] * 3 + in[1] + 2) >> 2);
    int x = 1;
#ifdef __SSE2__
    for (; x + 9 <= width; x += 8) {
        const __m128i near = Load8(in + x);
        StorePairs(_mm_add_epi16(near, _mm_add_epi16(near, near)), Load8(in + x - 1), Load8(in + x + 1),
                   _mm_set1_epi16(1), _mm_set1_epi16(2), 2, out + 2 * x);
    }
#endif
    for (; x < width - 1; ++x) {
        const int near = in[x] * 3;
        out[2 * x] = static_cast<uint8_t>((near + in[x - 1] + 1) >> 2);
        out[2 * x + 1] = static_cast<uint8_t>((near + in[x + 1] + 2) >> 2);
    }
    out[2 * width - 2] = static_cast<uint8_t>((in[width - 1] * 3 + in[width - 2] + 1) >> 2);
    out[2 * width - 1] = in[width - 1];
}

void UpsampleH2V2Fancy(const uint8_t* nearRow, const uint8_t* farRow, int width, uint8_t* out) {
    // Column sums of the vertical filter (3 near + far), then the horizontal one over them.
    auto sum = [&](int x) { return nearRow[x] * 3 + farRow[x]; };
    out[0] = static_cast<uint8_t>((sum(0) * 4 + 8) >> 4);
    out[1] = static_cast<uint8_t>((sum(0) * 3 + sum(1) + 7) >> 4);
    int x = 1;
#ifdef __SSE2__
    auto sums = [&](int at) {
        const __m128i near = Load8(nearRow + at);
        return _mm_add_epi16(_mm_add_epi16(near, _mm_add_epi16(near, near)), Load8(farRow + at));
    };
    for (; x + 9 <= width; x += 8) {
        const __m128i here = sums(x);
        StorePairs(_mm_add_epi16(here, _mm_add_epi16(here, here)), sums(x - 1), sums(x + 1), _mm_set1_epi16(8),
                   _mm_set1_epi16(7), 4, out + 2 * x);
    }
#endif
    for (; x < width - 1; ++x) {
        const int here = sum(x) * 3;
        out[2 * x] = static_cast<uint8_t>((here + sum(x - 1) + 8) >> 4);
        out[2 * x + 1] = static_cast<uint8_t>((here + sum(x + 1) + 7) >> 4);
    }
    out[2 * width - 2] = static_cast<uint8_t>((sum(width - 1) * 3 + sum(width - 2) + 8) >> 4);
    out[2 * width - 1] = static_cast<uint8_t>((sum(width - 1) * 4 + 7) >> 4);
}

void UpsampleH1V2Fancy(const uint8_t* nearRow, const uint8_t* farRow, int width, bool below, uint8_t* out) {
    const int bias = below ? 2 : 1;
    for (int x = 0; x < width; ++x) out[x] = static_cast<uint8_t>((nearRow[x] * 3 + farRow[x] + bias) >> 2);
}

void UpsampleReplicate(const uint8_t* in, int inGroup, int outGroup, int outWidth, uint8_t* out) {
    if (inGroup == outGroup) {
        std::memcpy(out, in, static_cast<size_t>(outWidth));
    } else if (inGroup * 2 == outGroup) {
        for (int x = 0; x < outWidth; ++x) out[x] = in[x >> 1];
    } else {
        for (int x = 0; x < outWidth; ++x) out[x] = in[static_cast<int64_t>(x) * inGroup / outGroup];
    }
}

}  // namespace lx
