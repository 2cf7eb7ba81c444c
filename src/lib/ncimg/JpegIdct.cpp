#include "JpegIdct.h"

#include "JpegIdctKernel.h"
#include "JpegIdctSimd.h"

#include <algorithm>
#include <cstring>

namespace lx {
namespace {

using namespace idct;
using Wide = int64_t;

// Multipliers of the reduced transforms, in the same 13-bit fixed point.
constexpr int32_t F0_211164243 = 1730, F0_509795579 = 4176, F0_601344887 = 4926, F0_720959822 = 5906,
                  F0_850430095 = 6967, F1_061594337 = 8697, F1_272758580 = 10426, F1_451774981 = 11893,
                  F2_172734803 = 17799, F3_624509785 = 29692;

inline uint8_t Sample(Wide v) { return static_cast<uint8_t>(std::clamp<Wide>(v + 128, 0, 255)); }

// The odd part of the reduced 4-point transform: the outputs' distance from the even part.
inline void Odd4(Wide i1, Wide i3, Wide i5, Wide i7, Wide& near, Wide& far) {
    near = i7 * -F0_211164243 + i5 * F1_451774981 + i3 * -F2_172734803 + i1 * F1_061594337;
    far = i7 * -F0_509795579 + i5 * -F0_601344887 + i3 * F0_899976223 + i1 * F2_562915447;
}

inline Wide Odd2(Wide i1, Wide i3, Wide i5, Wide i7) {
    return i7 * -F0_720959822 + i5 * F0_850430095 + i3 * -F1_272758580 + i1 * F3_624509785;
}

}  // namespace

void IdctIslow8(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride) {
    Wide work[64];
    for (int c = 0; c < 8; ++c) {
        auto in = [&](int r) { return static_cast<Wide>(coef[r * 8 + c]) * quant[r * 8 + c]; };
        if (!(coef[8 + c] | coef[16 + c] | coef[24 + c] | coef[32 + c] | coef[40 + c] | coef[48 + c] | coef[56 + c])) {
            const Wide dc = in(0) * (1 << kPass1Bits);
            for (int r = 0; r < 8; ++r) work[r * 8 + c] = dc;
            continue;
        }
        idct::Points8<Wide>(in(0), in(1), in(2), in(3), in(4), in(5), in(6), in(7), kConstBits - kPass1Bits,
                    [&](int r, Wide v) { work[r * 8 + c] = v; });
    }
    for (int r = 0; r < 8; ++r) {
        const Wide* w = work + r * 8;
        uint8_t* o = out + r * stride;
        idct::Points8<Wide>(w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], kConstBits + kPass1Bits + 3,
                    [&](int x, Wide v) { o[x] = Sample(v); });
    }
}

void IdctReduced4(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride) {
    Wide work[8 * 4];  // four rows of eight columns; column 4 is never read
    for (int c = 0; c < 8; ++c) {
        if (c == 4) continue;
        auto in = [&](int r) { return static_cast<Wide>(coef[r * 8 + c]) * quant[r * 8 + c]; };
        const Wide t0 = in(0) * (1 << (kConstBits + 1));
        const Wide t2 = in(2) * F1_847759065 - in(6) * F0_765366865;
        Wide near, far;
        Odd4(in(1), in(3), in(5), in(7), near, far);
        constexpr int shift = kConstBits - kPass1Bits + 1;
        work[0 * 8 + c] = Descale(t0 + t2 + far, shift);
        work[3 * 8 + c] = Descale(t0 + t2 - far, shift);
        work[1 * 8 + c] = Descale(t0 - t2 + near, shift);
        work[2 * 8 + c] = Descale(t0 - t2 - near, shift);
    }
    for (int r = 0; r < 4; ++r) {
        const Wide* w = work + r * 8;
        const Wide t0 = w[0] * (1 << (kConstBits + 1));
        const Wide t2 = w[2] * F1_847759065 - w[6] * F0_765366865;
        Wide near, far;
        Odd4(w[1], w[3], w[5], w[7], near, far);
        constexpr int shift = kConstBits + kPass1Bits + 3 + 1;
        uint8_t* o = out + r * stride;
        o[0] = Sample(Descale(t0 + t2 + far, shift));
        o[3] = Sample(Descale(t0 + t2 - far, shift));
        o[1] = Sample(Descale(t0 - t2 + near, shift));
        o[2] = Sample(Descale(t0 - t2 - near, shift));
    }
}

void IdctReduced2(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t stride) {
    Wide work[8 * 2];  // two rows; only columns 0, 1, 3, 5, 7 are read
    for (int c = 0; c < 8; ++c) {
        if (c == 2 || c == 4 || c == 6) continue;
        auto in = [&](int r) { return static_cast<Wide>(coef[r * 8 + c]) * quant[r * 8 + c]; };
        const Wide t10 = in(0) * (1 << (kConstBits + 2));
        const Wide t0 = Odd2(in(1), in(3), in(5), in(7));
        constexpr int shift = kConstBits - kPass1Bits + 2;
        work[c] = Descale(t10 + t0, shift);
        work[8 + c] = Descale(t10 - t0, shift);
    }
    for (int r = 0; r < 2; ++r) {
        const Wide* w = work + r * 8;
        const Wide t10 = w[0] * (1 << (kConstBits + 2));
        const Wide t0 = Odd2(w[1], w[3], w[5], w[7]);
        constexpr int shift = kConstBits + kPass1Bits + 3 + 2;
        out[r * stride] = Sample(Descale(t10 + t0, shift));
        out[r * stride + 1] = Sample(Descale(t10 - t0, shift));
    }
}

void IdctReduced1(const int16_t* coef, const uint16_t* quant, uint8_t* out, ptrdiff_t) {
    out[0] = Sample(Descale(static_cast<Wide>(coef[0]) * quant[0], 3));
}

void IdctFlat(int16_t dc, uint16_t quant, uint8_t* out, ptrdiff_t stride, int size) {
    const uint8_t value = Sample(Descale(static_cast<Wide>(dc) * quant, 3));
    for (int r = 0; r < size; ++r) std::memset(out + r * stride, value, static_cast<size_t>(size));
}

IdctFunction IdctFor(int size) {
    switch (size) {
    case 8: return BestIdctIslow8();
    case 4: return IdctReduced4;
    case 2: return IdctReduced2;
    default: return IdctReduced1;
    }
}

}  // namespace lx
