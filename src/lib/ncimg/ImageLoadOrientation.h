// Turning decoded photographs upright. Cameras store the picture as the sensor saw it and
// record in the Exif orientation tag (values 1 to 8) how to show it; a loader that hands
// out pixels applies that turn so every tool sees the picture the right way up.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <span>

namespace lx {

// The orientation of IFD0 in a JPEG file's Exif segment or in a TIFF file; 0 when there
// is none or the structure is damaged.
int ReadExifOrientation(std::span<const uint8_t> file);

// Applies an orientation: 2 mirror, 3 half turn, 4 flip, 5 transpose, 6 quarter turn
// clockwise, 7 transverse, 8 quarter turn anticlockwise. 1 and unknown values change
// nothing. False when the image could not be transformed (it is left as it was).
bool OrientUpright(PackedDib& dib, int orientation);

}  // namespace lx
