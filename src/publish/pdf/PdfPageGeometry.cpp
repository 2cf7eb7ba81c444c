#include "PdfPageGeometry.h"

#include <utility>

namespace lx {

namespace {

// Truncation toward zero, kept inside int for sizes no JPEG header can produce.
int TruncateToInt(double value) {
    if (!(value > -2147483648.0)) return value < 0 ? -2147483647 - 1 : 0;
    if (value >= 2147483647.0) return 2147483647;
    return int(value);
}

}  // namespace

PdfPageGeometry ComputePageGeometry(int defaultWidth, int defaultHeight, uint32_t w, uint32_t h, bool fitPageToImage) {
    int pw = defaultWidth;
    int ph = defaultHeight;
    if (ph > pw && h < w) {
        std::swap(pw, ph);
    } else if (pw > ph && h > w) {
        std::swap(pw, ph);
    }

    // The products are 32-bit on purpose (sizes come from 16-bit header fields, so they cannot
    // overflow); only the quotients are taken in double. A zero side gives an infinite or
    // undefined ratio, which simply falls through the comparisons below.
    const double pageRatio = double(ph) / double(pw);
    const double imageRatio = double(h) / double(w);
    const uint32_t widthForPageHeight = w * uint32_t(ph);
    const uint32_t heightForPageWidth = h * uint32_t(pw);

    PdfPageGeometry g;
    if (fitPageToImage) {
        if (imageRatio > pageRatio) {
            pw = TruncateToInt(double(widthForPageHeight) / double(h));
        } else if (pageRatio > imageRatio) {
            ph = TruncateToInt(double(heightForPageWidth) / double(w));
        }
    } else {
        if (imageRatio > pageRatio) {
            g.imageX = (pw - double(widthForPageHeight) / double(h)) * 0.5;
        } else if (pageRatio > imageRatio) {
            g.imageY = (ph - double(heightForPageWidth) / double(w)) * 0.5;
        }
    }
    g.pageWidth = pw;
    g.pageHeight = ph;
    return g;
}

}  // namespace lx
