#include "JpegIdctSimd.h"

#include "JpegSimd.h"

namespace lx {

IdctFunction BestIdctIslow8() {
#ifdef LX_JPEG_X86_SIMD
    static const IdctFunction best = BestJpegSimd() != JpegSimd::Baseline ? IdctIslow8Avx2 : IdctIslow8Sse2;
    return best;
#else
    return IdctIslow8;
#endif
}

}  // namespace lx
