#include "EmbeddedImage.h"

#include "PackedDib.h"

namespace lx {

namespace {

constexpr size_t kBmpFileHeaderSize = 14;

// Orders images for the choice: pixel count first, extracted size when a pixel size is
// missing or the counts are equal.
bool Smaller(const EmbeddedImageRef& a, const EmbeddedImageRef& b) {
    const int64_t areaA = int64_t(a.width) * a.height, areaB = int64_t(b.width) * b.height;
    if (areaA > 0 && areaB > 0 && areaA != areaB) return areaA < areaB;
    return ExtractedSize(a) < ExtractedSize(b);
}

}  // namespace

uint64_t ExtractedSize(const EmbeddedImageRef& image) {
    if (image.format == EmbeddedFormat::Jpeg) return image.length;
    return kBmpFileHeaderSize + kDibHeaderSize + DibStride(image.width, 24) * static_cast<uint64_t>(image.height);
}

int ChooseEmbeddedImage(const std::vector<EmbeddedImageRef>& images, EmbeddedChoice choice, bool jpegOnly) {
    int chosen = -1;
    for (size_t i = 0; i < images.size(); ++i) {
        if (jpegOnly && images[i].format != EmbeddedFormat::Jpeg) continue;
        if (chosen < 0) {
            chosen = static_cast<int>(i);
            continue;
        }
        const bool better = choice == EmbeddedChoice::Largest ? Smaller(images[chosen], images[i])
                                                              : Smaller(images[i], images[chosen]);
        if (better) chosen = static_cast<int>(i);
    }
    return chosen;
}

std::vector<uint8_t> RgbToBmpFile(const uint8_t* rgb, int width, int height) {
    PackedDib dib = PackedDib::Create(width, height, 24);
    if (dib.empty()) return {};
    for (int y = 0; y < height; ++y) {
        const uint8_t* from = rgb + static_cast<size_t>(y) * width * 3;
        uint8_t* to = dib.row(y);
        for (int x = 0; x < width; ++x) {  // DIB pixels are blue, green, red
            to[3 * x] = from[3 * x + 2];
            to[3 * x + 1] = from[3 * x + 1];
            to[3 * x + 2] = from[3 * x];
        }
    }
    const DibBytes& packed = dib.bytes();
    std::vector<uint8_t> file(kBmpFileHeaderSize + packed.size());
    file[0] = 'B';
    file[1] = 'M';
    WriteLe32(file.data() + 2, static_cast<uint32_t>(file.size()));
    WriteLe32(file.data() + 10, static_cast<uint32_t>(kBmpFileHeaderSize + dib.bitsOffset()));
    std::copy(packed.begin(), packed.end(), file.begin() + kBmpFileHeaderSize);
    return file;
}

std::optional<EmbeddedImage> ExtractEmbeddedImage(ByteSource& source, const EmbeddedImageRef& ref) {
    EmbeddedImage image;
    image.format = ref.format;
    image.where = ref.where;
    image.width = ref.width;
    image.height = ref.height;
    if (ref.format == EmbeddedFormat::Jpeg) {
        if (!source.contains(ref.offset, ref.length)) return std::nullopt;
        image.bytes = source.readVector(ref.offset, static_cast<size_t>(ref.length));
        if (image.bytes.size() != ref.length) return std::nullopt;
        return image;
    }
    const size_t needed = static_cast<size_t>(ref.width) * ref.height * 3;
    std::vector<uint8_t> rgb;
    rgb.reserve(needed);
    for (const auto& [offset, length] : ref.strips) {
        if (rgb.size() >= needed) break;
        const size_t take = static_cast<size_t>(std::min<uint64_t>(length, needed - rgb.size()));
        std::vector<uint8_t> strip = source.readVector(offset, take);
        if (strip.size() != take) return std::nullopt;
        rgb.insert(rgb.end(), strip.begin(), strip.end());
    }
    if (rgb.size() != needed) return std::nullopt;
    image.bytes = RgbToBmpFile(rgb.data(), ref.width, ref.height);
    if (image.bytes.empty()) return std::nullopt;
    return image;
}

}  // namespace lx
