// The editor's image operations that take more than one call of the image class: resampling
// by the image-size dialog's method, the canvas resize, the colour reduction with its limits,
// and the arithmetic of the image-size dialog (percent and kept ratio). Each works on a mif
// in place and returns false, leaving it as it was, when it yields nothing.
#pragma once

#include <cstdint>

#include "mif.h"

namespace lx {

// The methods of the image-size dialog (list 4137).
enum ResampleMethod : int { kResampleNearest = 0, kResampleLinear = 1, kResampleCubic = 2 };
// The cubic parameter the dialog starts from: the Catmull-Rom kernel.
constexpr int kDefaultCubicParameter = 5;
constexpr int kMaxCubicParameter = 9;

// Cubic: zoom(width, height, cubic, 0); linear: zoom_linear; anything else: zoom_near.
bool ResampleImage(mif& image, int width, int height, int method, int cubic);

// A canvas of width x height and the picture's depth: direct colour filled with `background`
// (0x00BBGGRR), a palette picture keeps its colour table (the new area takes entry 0). The old
// picture is copied in at the anchor cell's place (AnchorPosition), cut where it does not fit.
bool ResizeCanvas(mif& image, int width, int height, int anchorCell, uint32_t background);

// Reduces a picture of 9 bits or more to `count` colours (2 to 256) by a method of list 4133.
// A count above 256, a palette picture or an unknown method yields nothing.
bool ReduceColours(mif& image, int method, int count);

// The image-size dialog's numbers: a side in percent of the present one and back (rounded,
// at least 1), and the other side that keeps the picture's ratio when one side changes.
int PercentOfSide(int pixels, int current);
int SideOfPercent(int percent, int current);
int KeptRatioSide(int changedSide, int changedCurrent, int otherCurrent);

}  // namespace lx
