// Every Exif operation over arbitrary bytes: none may read outside them, loop or crash.
#include <cstddef>
#include <cstdint>
#include <span>

#include "ExifReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lx::MemorySource source(std::span<const uint8_t>(data, size));
    lx::ReadShootingTime(source);
    lx::HasShootingInfo(source);
    for (const auto& image : lx::ListEmbeddedImages(source)) lx::ExtractEmbeddedImage(source, image);
    lx::ReadEmbeddedImage(source, lx::EmbeddedChoice::Smallest);
    lx::EnumerateExifInfo(source, [](int, std::string_view name, std::string_view value) {
        return name.size() + value.size() < (1u << 20);
    });
    lx::ReadDescription(source);
    lx::RenderPreview(source);
    lx::ReadOrientation(source);
    return 0;
}
