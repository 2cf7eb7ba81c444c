// Tells an image file's format from its content, in the module's image type numbering, by
// asking the probes of the format table (ImageFormats.h) in order.
//
// The name is never trusted for the format itself: a JPEG called "x.png" is JPEG. It only
// refines what the content cannot tell: a TIFF structure named like a TIFF-based raw file
// (".nef", ".dng", ...) takes that raw type. Targa has no signature and is reported only
// when its header is consistent and the file ends with the Targa 2 footer.
#pragma once

#include "ImageFormats.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace lx {

// Bytes the probe looks at from the start of a file.
constexpr size_t kProbeHeadBytes = 4096;

// `head` is the start of the file (up to kProbeHeadBytes), `tail` its last bytes (26 are
// enough; may be empty), `name` the file name or path (may be empty).
ImageType ProbeImageBytes(std::span<const uint8_t> head, std::span<const uint8_t> tail = {},
                          const std::filesystem::path& name = {});

// The same, but a format without a signature (Targa) is also accepted on a consistent
// header when the name carries its extension: the loader's view, which has the whole file.
ImageType ProbeImageBytesTrustingName(std::span<const uint8_t> head, std::span<const uint8_t> tail,
                                      const std::filesystem::path& name);

// Reads the start and end of the file; 0 when it cannot be read or is not recognised.
ImageType ProbeImageType(const std::filesystem::path& path);

}  // namespace lx
