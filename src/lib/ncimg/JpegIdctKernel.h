// The arithmetic of the accurate integer inverse DCT, written once over a number type so the
// scalar transform (64-bit integers) and the vector ones (eight 32-bit lanes) are the same
// formulas step for step: their results agree wherever no sum leaves 32 bits.
//
// Included by JpegIdct.cpp and by the vector files, each compiled for its own instruction
// set; everything here has internal linkage so no copy built for one set can be picked by
// the linker for another.
#pragma once

#include <cstdint>

namespace lx {
namespace {

namespace idct {

constexpr int kConstBits = 13;
constexpr int kPass1Bits = 2;

// Multipliers in 13-bit fixed point: round(x * 8192).
constexpr int32_t F0_298631336 = 2446, F0_390180644 = 3196, F0_541196100 = 4433, F0_765366865 = 6270,
                  F0_899976223 = 7373, F1_175875602 = 9633, F1_501321110 = 12299, F1_847759065 = 15137,
                  F1_961570560 = 16069, F2_053119869 = 16819, F2_562915447 = 20995, F3_072711026 = 25172;

// The scalar number type: 64 bits, so hostile coefficients and 16-bit quantisation steps
// cannot overflow.
constexpr int64_t Descale(int64_t x, int n) { return (x + (int64_t{1} << (n - 1))) >> n; }
constexpr int64_t Shl(int64_t x, int n) { return x * (int64_t{1} << n); }

// One 8-point transform: the even part from inputs 0, 2, 4, 6, the odd part from 1, 3, 5, 7.
// T has +, -, * by an int32_t constant and Shl/Descale helpers found by lookup. `store`
// receives the eight results in output order, descaled by `shift`.
template <typename T, typename Store>
inline void Points8(T i0, T i1, T i2, T i3, T i4, T i5, T i6, T i7, int shift, Store store) {
    T z1 = (i2 + i6) * F0_541196100;
    const T t2 = z1 - i6 * F1_847759065;
    const T t3 = z1 + i2 * F0_765366865;
    const T t0 = Shl(i0 + i4, kConstBits);
    const T t1 = Shl(i0 - i4, kConstBits);
    const T e10 = t0 + t3, e13 = t0 - t3, e11 = t1 + t2, e12 = t1 - t2;

    T o0 = i7, o1 = i5, o2 = i3, o3 = i1;
    z1 = o0 + o3;
    T z2 = o1 + o2, z3 = o0 + o2, z4 = o1 + o3;
    const T z5 = (z3 + z4) * F1_175875602;
    o0 = o0 * F0_298631336;
    o1 = o1 * F2_053119869;
    o2 = o2 * F3_072711026;
    o3 = o3 * F1_501321110;
    z1 = z1 * -F0_899976223;
    z2 = z2 * -F2_562915447;
    z3 = z3 * -F1_961570560 + z5;
    z4 = z4 * -F0_390180644 + z5;
    o0 = o0 + z1 + z3;
    o1 = o1 + z2 + z4;
    o2 = o2 + z2 + z3;
    o3 = o3 + z1 + z4;

    store(0, Descale(e10 + o3, shift));
    store(7, Descale(e10 - o3, shift));
    store(1, Descale(e11 + o2, shift));
    store(6, Descale(e11 - o2, shift));
    store(2, Descale(e12 + o1, shift));
    store(5, Descale(e12 - o1, shift));
    store(3, Descale(e13 + o0, shift));
    store(4, Descale(e13 - o0, shift));
}

}  // namespace idct
}  // namespace
}  // namespace lx
