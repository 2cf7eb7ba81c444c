// How the batch conversion scales one image: by its long side, its short side or a
// percentage, with the system's MulDiv rounding, so that results match the dialog's promise
// (3000 x 2000 by long side 1000 is 1000 x 667).
#pragma once

#include <cstdint>

namespace lx {

// a * b / c in 64 bits, rounded half away from zero; -1 when c is 0 or the result does not
// fit in 32 bits (the behaviour of Windows' MulDiv).
int32_t MulDiv(int32_t a, int32_t b, int32_t c);

struct ScaleDecision {
    enum Kind { Keep, Scale, Skip } kind = Keep;
    int width = 0;   // the new size when kind is Scale
    int height = 0;
};

// What becomes of a width x height image under `mode` (0 long side, 1 short side,
// 2 percent) and `size`. Keep: write as it is (100 %, or noEnlarge and already smaller, or an
// unknown mode). Skip: a new side would be 0 or less.
ScaleDecision DecideScale(int width, int height, int mode, int size, bool noEnlarge);

}  // namespace lx
