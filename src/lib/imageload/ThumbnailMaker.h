// Making one list thumbnail from an image file, portably: the picture as a 24-bit packed DIB
// no larger than a square `box` (72 pixels in the list), its aspect kept.
//
// Fast path: JPEG, TIFF and camera raw files usually embed a small picture in their Exif
// data; the smallest one whose long side reaches `box` is decoded from memory and turned
// upright by the file's orientation. Otherwise the image is loaded (LoadImageFileToCover:
// a JPEG at the smallest reduced size that still covers the box, upright) and reduced with
// the image class's high-quality area averaging to the size its whole picture would get. Pictures smaller than the box keep their size; transparency is laid over
// white. nullopt when the file cannot be read or decoded. Safe to run on several threads.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace lx {

class ByteSource;

// The long side of a list thumbnail.
constexpr int kThumbnailBox = 72;

struct ThumbSize {
    int width = 0, height = 0;
    bool operator==(const ThumbSize&) const = default;
};

// The size of an image of width x height fitted into a square of `box`: the aspect is kept,
// the long side becomes `box`, neither side becomes 0. Images that fit already keep their
// own size (a thumbnail is never enlarged). Non-positive sizes give {0, 0}.
ThumbSize FitInBox(int width, int height, int box = kThumbnailBox);

std::optional<PackedDib> MakeThumbnailDib(const std::filesystem::path& path, int box = kThumbnailBox);

// The same over a whole file held in memory; `name` gives the type by its extension.
std::optional<PackedDib> MakeThumbnailDibFromBytes(std::span<const uint8_t> file, const std::filesystem::path& name,
                                                   int box = kThumbnailBox);

// The fast path alone: the embedded picture of `source`, upright and fitted; nullopt when
// the file embeds none at least `box` on its long side.
std::optional<PackedDib> EmbeddedThumbnail(ByteSource& source, int box = kThumbnailBox);

// Lays a 32-bit picture's alpha over the grey level `background` (0 black, 255 white) and
// makes every pixel opaque; other depths are left alone.
void FlattenAlpha(PackedDib& picture, uint8_t background);

// The smallest embedded picture of `source` whose long side reaches `minLongSide`, decoded and
// upright at its own size; nullopt when there is none.
std::optional<PackedDib> EmbeddedPicture(ByteSource& source, int minLongSide);

// Reduces a decoded picture to fit `box` and makes it 24-bit; nullopt when it cannot. The
// size is that of a picture of `fullSize` fitted (the picture's own size when not given), so a
// picture decoded at a reduced scale gives the thumbnail the whole one would.
std::optional<PackedDib> FitThumbnail(PackedDib picture, int box = kThumbnailBox, ThumbSize fullSize = {});

}  // namespace lx
