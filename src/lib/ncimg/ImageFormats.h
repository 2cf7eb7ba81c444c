// The one table of image formats: for every image type id, what files of it are called, how
// their content is recognised, which reader and writer of this library handle it, and the
// extension a saved file of it gets. Nothing else ties a format to its code: the loader, the
// probe, the save operations and the module's extension rules all read kImageFormats.
//
// Adding a format is one row here plus its reader and writer files.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace lx {

// The numeric type id every tool shares; 0 is unknown, 12 and 22 are never produced.
using ImageType = int32_t;

enum : ImageType {
    kImageUnknown = 0,
    kImageBmp = 1,
    kImageJpeg = 2,
    kImageGif = 3,
    kImageTiff = 4,
    kImageTga = 5,
    kImagePcx = 6,
    kImageMag = 7,
    kImageMki = 8,
    kImageRas = 9,
    kImagePng = 10,
    kImagePsd = 11,
    kImageCam = 13,
    kImageSgi = 14,
    kImageWmf = 15,
    kImageEmf = 16,
    kImagePnm = 17,
    kImageIco = 18,
    kImageTxr = 19,
    kImageXpm = 20,
    kImageXbm = 21,
    kImageFpx = 23,
    kImageJpeg2000 = 24,
    kImagePcd = 25,
    // Camera raw kinds, named by their usual extension.
    kImageCrw = 26,
    kImageNef = 27,
    kImageRaf = 28,
    kImageMrw = 29,
    kImageX3f = 30,
    kImagePef = 31,
    kImageSrf = 32,
    kImageOrf = 33,
    kImageDng = 34,
    kImageErf = 35,
    kImageArw = 36,
    kImageRw2 = 37,
    kImageMef = 38,
    kImage3fr = 39,
    kImageFirstRaw = kImageCrw,
    kImageLastRaw = kImage3fr,
    kImageTableEnd = -1,
};

inline bool IsCameraRawType(ImageType type) { return type >= kImageFirstRaw && type <= kImageLastRaw; }

// What a content probe sees: the start of the file (up to kProbeHeadBytes), its last bytes
// (26 are enough; may be empty), and the type its name's extension stands for (0 when the
// name says nothing). The name never decides alone; it only refines what content cannot tell.
struct ProbeInput {
    std::span<const uint8_t> head;
    std::span<const uint8_t> tail;
    ImageType namedType = kImageUnknown;

    template <size_t N>
    bool startsWith(const char (&magic)[N]) const {  // N counts the literal's NUL
        return head.size() >= N - 1 && std::memcmp(head.data(), magic, N - 1) == 0;
    }
};

struct ImageFormat {
    ImageType type;
    const char* name;
    // Lower-case extensions without dots, separated by blanks: the names ImageTypeFromPath
    // maps to this type.
    const wchar_t* extensions;
    // The extension a save as this type forces on the output name; null where the module
    // never renames for it (Sun raster and SGI keep the name they are given).
    const wchar_t* saveExtension;
    // True when the content is this format. `self` is the row's own type. Null: told by
    // name only.
    bool (*probe)(const ProbeInput& in, ImageType self);
    // A weaker test for formats without a signature, trusted only when the file's name
    // already says this type (a consistent Targa header in a ".tga" file).
    bool (*probeWhenNamed)(const ProbeInput& in);
    // This library's reader; null leaves the format to the system's codecs.
    std::optional<PackedDib> (*read)(std::span<const uint8_t> file);
    // This library's writer with default parameters; null when the library does not write it.
    std::vector<uint8_t> (*encode)(const PackedDib& dib);
};

// Rows in probe order: formats with a strong signature first, Targa (no signature) last
// among those with a probe.
extern const std::span<const ImageFormat> kImageFormats;

// The row of a type, or null.
const ImageFormat* FindImageFormat(ImageType type);

// The type an extension (without its dot, any ASCII case) stands for; 0 when none does.
ImageType ImageTypeFromExtension(std::wstring_view extension);

// The same for the extension of a file name or path; 0 without one.
ImageType ImageTypeFromName(const std::filesystem::path& name);

}  // namespace lx
