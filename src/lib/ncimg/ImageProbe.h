// Tells an image file's format from its content, in the module's image type numbering
// (0 unknown, 1 BMP, 2 JPEG, 3 GIF, 4 TIFF, 5 TGA, 6 PCX, 9 Sun raster, 10 PNG, 11 PSD,
// 14 SGI, 17 PNM, 18 ICO, 20 XPM, 21 XBM, 26-39 camera raw kinds).
//
// The name is never trusted for the format itself: a JPEG called "x.png" is 2. It only
// refines what the content cannot tell: a TIFF structure named like a TIFF-based raw file
// (".nef", ".dng", ...) takes that raw type. Targa has no signature and is reported only
// when its header is consistent and the file ends with the Targa 2 footer.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace lx {

// Bytes the probe looks at from the start of a file.
constexpr size_t kProbeHeadBytes = 4096;

// `head` is the start of the file (up to kProbeHeadBytes), `tail` its last bytes (26 are
// enough; may be empty), `name` the file name or path (may be empty).
int ProbeImageBytes(std::span<const uint8_t> head, std::span<const uint8_t> tail = {},
                    const std::filesystem::path& name = {});

// Reads the start and end of the file; 0 when it cannot be read or is not recognised.
int ProbeImageType(const std::filesystem::path& path);

// The extension with its dot, in lower case ("" when absent or not plain ASCII).
std::string LowerExtension(const std::filesystem::path& name);

// The camera raw type a file name's extension stands for (26-39), or 0.
int RawTypeFromName(const std::filesystem::path& name);

}  // namespace lx
