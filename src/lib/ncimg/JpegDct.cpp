#include "JpegDct.h"

#include <cmath>
#include <cstring>

namespace lx {
namespace {

// Eight lanes at once; the compiler maps this onto whatever vector unit the target has.
typedef float Lanes __attribute__((vector_size(32)));
typedef int32_t IntLanes __attribute__((vector_size(32)));
typedef uint8_t ByteLanes __attribute__((vector_size(8)));

// After both passes, output [u][v] is the true DCT coefficient times
// 8 * AanScale(u) * AanScale(v); the divisors take that factor out again.
double AanScale(int k) {
    return k == 0 ? 1.0 : std::cos(k * M_PI / 16) * std::sqrt(2.0);
}

// One-dimensional scaled DCT along the array index, for eight independent lanes.
inline __attribute__((always_inline)) void Dct8(Lanes* d) {
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

inline __attribute__((always_inline)) void Transpose(Lanes* d) {
    float m[8][8];
    std::memcpy(m, d, sizeof m);
    for (int i = 0; i < 8; ++i)
        for (int j = 0; j < 8; ++j) d[i][j] = m[j][i];
}

}  // namespace

DctQuantizer MakeDctQuantizer(const QuantTable& table) {
    uint8_t naturalToZigzag[64];
    for (int k = 0; k < 64; ++k) naturalToZigzag[kZigzagToNatural[k]] = static_cast<uint8_t>(k);
    // The second pass runs over the transposed block, so output [u][v] holds horizontal
    // frequency u and vertical frequency v: natural index v * 8 + u.
    DctQuantizer q;
    for (int u = 0; u < 8; ++u) {
        for (int v = 0; v < 8; ++v) {
            const int natural = v * 8 + u;
            q.reciprocal[u * 8 + v] =
                static_cast<float>(1.0 / (table[natural] * AanScale(u) * AanScale(v) * 8.0));
            q.zigzagPlace[u * 8 + v] = naturalToZigzag[natural];
        }
    }
    return q;
}

void ForwardDctQuantize(const uint8_t* samples, ptrdiff_t stride, const DctQuantizer& quantizer,
                        int16_t* zigzag) {
    Lanes d[8];
    for (int r = 0; r < 8; ++r) {
        ByteLanes bytes;
        std::memcpy(&bytes, samples + r * stride, 8);
        d[r] = __builtin_convertvector(bytes, Lanes) - 128.0f;
    }
    Dct8(d);  // columns
    Transpose(d);
    Dct8(d);  // rows

    for (int u = 0; u < 8; ++u) {
        Lanes recip;
        std::memcpy(&recip, quantizer.reciprocal + u * 8, sizeof recip);
        Lanes x = d[u] * recip;
        // Clamp to the largest magnitudes the entropy coder can express, then round to
        // nearest by truncating a value made positive.
        x = x < -1024.0f ? -1024.0f : x;
        x = x > 1023.0f ? 1023.0f : x;
        const IntLanes rounded = __builtin_convertvector(x + 16384.5f, IntLanes) - 16384;
        for (int v = 0; v < 8; ++v) zigzag[quantizer.zigzagPlace[u * 8 + v]] = static_cast<int16_t>(rounded[v]);
    }
}

}  // namespace lx
