// Page size and image placement for one image on a PDF page, in points.
//
// The page starts from the default size turned to the image's orientation. With
// `fitPageToImage` the shorter side shrinks so the page has the image's proportions and the
// image fills it; without it the page keeps its size and the image is centred along one axis.
#pragma once

#include <cstdint>

namespace lx {

struct PdfPageGeometry {
    int pageWidth = 0;
    int pageHeight = 0;
    double imageX = 0;
    double imageY = 0;
};

PdfPageGeometry ComputePageGeometry(int defaultWidth, int defaultHeight, uint32_t imageWidth, uint32_t imageHeight,
                                    bool fitPageToImage);

}  // namespace lx
