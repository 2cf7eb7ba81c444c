#include "JpegIdctSimd.h"

namespace lx {

bool CpuHasAvx2() {
#ifdef LX_JPEG_X86_SIMD
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

IdctFunction BestIdctIslow8() {
#ifdef LX_JPEG_X86_SIMD
    static const IdctFunction best = CpuHasAvx2() ? IdctIslow8Avx2 : IdctIslow8Sse2;
    return best;
#else
    return IdctIslow8;
#endif
}

}  // namespace lx
