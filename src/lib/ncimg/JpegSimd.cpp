#include "JpegSimd.h"

namespace lx {

JpegSimd BestJpegSimd() {
#if defined(__x86_64__)
    // Every processor with AVX2 so far has BMI1 and BMI2 too; asked anyway.
    static const JpegSimd best = [] {
        if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("bmi") || !__builtin_cpu_supports("bmi2"))
            return JpegSimd::Baseline;
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")) return JpegSimd::Avx512;
        return JpegSimd::Avx2;
    }();
    return best;
#else
    return JpegSimd::Baseline;
#endif
}

}  // namespace lx
