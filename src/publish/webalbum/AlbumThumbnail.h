// The album's thumbnails: the size rule that shrinks a picture into the thumbnail box, and
// the making of one thumbnail file from a source image.
#pragma once

#include <optional>
#include <string>

#include "PackedDib.h"
#include "ThumbnailMaker.h"

namespace lx {

// The size a width x height picture is shrunk to for a maxWidth x maxHeight box. A picture
// that fits keeps its size (never enlarged). Otherwise the divisor starts at 1.25 and grows
// by 0.25 until both truncated sides fit, in single precision as the album has always
// computed it, so the result is usually a little smaller than the box. A box side below 1
// counts as 1, and no side becomes 0.
ThumbSize AlbumThumbnailSize(int width, int height, int maxWidth, int maxHeight);

// A source picture for the album, and the caption text it carries (its Exif description).
struct AlbumPicture {
    PackedDib picture;
    std::wstring altText;
    ThumbSize sourceSize;  // the size the thumbnail rule starts from (a reduced decode is smaller)
};

// Loads `source` for a thumbnail of the given box. Photographs that embed a picture at least
// as large as the box (camera previews, Exif thumbnails) give that picture, upright, and the
// file's description as the caption; everything else is loaded at the smallest reduced size
// that still covers the box (LoadImageFileToCover). nullopt when nothing can decode the file.
std::optional<AlbumPicture> LoadAlbumPicture(const std::wstring& source, int maxWidth, int maxHeight);

// The picture shrunk by AlbumThumbnailSize (of `sourceSize`, or the picture's own size when
// not given) with the high-quality reduction; false when the reduction fails.
bool ShrinkToThumbnail(PackedDib& picture, int maxWidth, int maxHeight, ThumbSize sourceSize = {});

// Writes `picture` to `path` in the thumbnail format (0 JPEG at quality 60, 1 PNG, 2 GIF;
// any other value JPEG). False when nothing could be written.
bool SaveAlbumThumbnail(const std::wstring& path, const PackedDib& picture, int thumbFormat);

}  // namespace lx
