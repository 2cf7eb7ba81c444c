// ExifReader: the Exif operations the tools use, on a file path or on any ByteSource.
//
//   ReadShootingTime    when the photograph was taken (Rename to Exif date)
//   HasShootingInfo     whether overwriting the file would lose shooting information
//   ListEmbeddedImages / ReadEmbeddedImage
//                       the thumbnails and previews a file embeds (Thumbnail pickout)
//   EnumerateExifInfo   headed groups of (name, value) pairs (the viewer's Exif view)
//   ReadDescription     the caption text (slide show, web album alternative text)
//   RenderPreview       the largest embedded JPEG and the caption (web album)
//   ReadOrientation     the Orientation tag, 1-8, for turning images upright
//
// Readable files: JPEG, TIFF and the TIFF-based camera raw files (CR2, NEF, ARW, SR2,
// SRF, DNG, ORF, PEF, ERF, MEF, 3FR, RW2), plus RAF, MRW and CRW at best effort. Only
// the bytes needed are read. Every text is UTF-8. A file that cannot be opened, holds no
// Exif data or is malformed gives the "nothing" result of each operation (nullopt, false,
// an empty text); no input makes these read outside the file or loop.
// All functions are safe to call from several threads on different sources.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "ByteSource.h"
#include "EmbeddedImage.h"
#include "ExifInfoList.h"
#include "ExifRecord.h"
#include "ShootingTime.h"

namespace lx {

std::optional<ShootingTime> ReadShootingTime(ByteSource& source);
std::optional<ShootingTime> ReadShootingTime(const std::filesystem::path& path);

// True when the file has an Exif IFD holding shooting tags (date and time, exposure,
// aperture, ISO, focal length, flash...) or a GPS position.
bool HasShootingInfo(ByteSource& source);
bool HasShootingInfo(const std::filesystem::path& path);

// Every displayable embedded image, in the order found, with kind, pixel size and place.
std::vector<EmbeddedImageRef> ListEmbeddedImages(ByteSource& source);
std::vector<EmbeddedImageRef> ListEmbeddedImages(const std::filesystem::path& path);

std::optional<EmbeddedImage> ReadEmbeddedImage(ByteSource& source, EmbeddedChoice choice);
std::optional<EmbeddedImage> ReadEmbeddedImage(const std::filesystem::path& path, EmbeddedChoice choice);

// Calls `callback` for each group heading and each item (see ExifInfoList.h). Returns
// false when the callback stopped the enumeration; a file without Exif data calls it
// never and returns true.
bool EnumerateExifInfo(ByteSource& source, const ExifInfoCallback& callback);
bool EnumerateExifInfo(const std::filesystem::path& path, const ExifInfoCallback& callback);

std::string ReadDescription(ByteSource& source);
std::string ReadDescription(const std::filesystem::path& path);

struct PreviewRender {
    std::vector<uint8_t> jpeg;  // the largest embedded JPEG, as stored
    std::string altText;        // the descriptive text, possibly empty
};
std::optional<PreviewRender> RenderPreview(ByteSource& source);
std::optional<PreviewRender> RenderPreview(const std::filesystem::path& path);

// The Orientation value of IFD0 when it is 1 to 8; nullopt otherwise.
std::optional<int> ReadOrientation(ByteSource& source);
std::optional<int> ReadOrientation(const std::filesystem::path& path);

}  // namespace lx
