#include "JpegUpsample.h"

#include <cstring>

namespace lx {

void UpsampleH2V1Fancy(const uint8_t* in, int width, uint8_t* out) {
    out[0] = in[0];
    out[1] = static_cast<uint8_t>((in[0] * 3 + in[1] + 2) >> 2);
    for (int x = 1; x < width - 1; ++x) {
        const int near = in[x] * 3;
        out[2 * x] = static_cast<uint8_t>((near + in[x - 1] + 1) >> 2);
        out[2 * x + 1] = static_cast<uint8_t>((near + in[x + 1] + 2) >> 2);
    }
    out[2 * width - 2] = static_cast<uint8_t>((in[width - 1] * 3 + in[width - 2] + 1) >> 2);
    out[2 * width - 1] = in[width - 1];
}

void UpsampleH2V2Fancy(const uint8_t* nearRow, const uint8_t* farRow, int width, uint8_t* out) {
    // Column sums of the vertical filter, then the horizontal one over them.
    int last = nearRow[0] * 3 + farRow[0];
    int here = last;
    out[0] = static_cast<uint8_t>((here * 4 + 8) >> 4);
    for (int x = 0; x < width - 1; ++x) {
        const int next = nearRow[x + 1] * 3 + farRow[x + 1];
        if (x > 0) out[2 * x] = static_cast<uint8_t>((here * 3 + last + 8) >> 4);
        out[2 * x + 1] = static_cast<uint8_t>((here * 3 + next + 7) >> 4);
        last = here;
        here = next;
    }
    out[2 * width - 2] = static_cast<uint8_t>((here * 3 + last + 8) >> 4);
    out[2 * width - 1] = static_cast<uint8_t>((here * 4 + 7) >> 4);
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
