#include "ImageProbe.h"

#include <fstream>
#include <vector>

namespace lx {

ImageType ProbeImageBytes(std::span<const uint8_t> head, std::span<const uint8_t> tail,
                          const std::filesystem::path& name) {
    const ProbeInput in{head, tail, ImageTypeFromName(name)};
    for (const ImageFormat& format : kImageFormats)
        if (format.probe && format.probe(in, format.type)) return format.type;
    return kImageUnknown;
}

ImageType ProbeImageBytesTrustingName(std::span<const uint8_t> head, std::span<const uint8_t> tail,
                                      const std::filesystem::path& name) {
    const ImageType type = ProbeImageBytes(head, tail, name);
    if (type != kImageUnknown) return type;
    const ProbeInput in{head, tail, ImageTypeFromName(name)};
    const ImageFormat* named = FindImageFormat(in.namedType);
    return named && named->probeWhenNamed && named->probeWhenNamed(in) ? named->type : kImageUnknown;
}

ImageType ProbeImageType(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return kImageUnknown;
    std::vector<uint8_t> head(kProbeHeadBytes);
    in.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<size_t>(in.gcount()));
    std::vector<uint8_t> tail(26);
    in.clear();
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size >= 26) {
        in.seekg(size - 26);
        in.read(reinterpret_cast<char*>(tail.data()), 26);
        if (in.gcount() != 26) tail.clear();
    } else {
        tail.clear();
    }
    return ProbeImageBytes(head, tail, path.filename());
}

}  // namespace lx
