#include "JpegSimd.h"

namespace lx {

JpegSimd BestJpegSimd() {
#if defined(__x86_64__)
    static const JpegSimd best = __builtin_cpu_supports("avx2") ? JpegSimd::Avx2 : JpegSimd::Baseline;
    return best;
#else
    return JpegSimd::Baseline;
#endif
}

}  // namespace lx
