// How a picture goes on the screen in the slide show: larger pictures are scaled down whole
// (by the smaller of the two ratios) and centred; smaller ones keep their own size, centred.
//
// PrepareSlidePicture does the scaling once, when a slide is loaded, so that showing a slide
// is only a copy to the screen. It runs on the loader thread.
#pragma once

#include <optional>

#include "ImageLoad.h"
#include "PackedDib.h"

namespace lx {

struct SlidePlacement {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const SlidePlacement&) const = default;
};

// Where a picture of `width` x `height` lies on a screen of `screenWidth` x `screenHeight`.
// Empty (all zero) for a picture or screen without pixels.
SlidePlacement PlaceSlide(int width, int height, int screenWidth, int screenHeight);

// The picture as it is shown: reduced to its placement's size when larger than the screen,
// transparency laid over the show's black, 24 bits. nullopt when it cannot be done. A picture
// decoded at a reduced size passes its full size as `full`, so that it is placed exactly as
// the whole picture would be.
std::optional<PackedDib> PrepareSlidePicture(PackedDib picture, int screenWidth, int screenHeight,
                                             PictureSize full = {});

}  // namespace lx
