#include "ExifReader.h"

#include "ExifContainer.h"
#include "ExifText.h"

namespace lx {

namespace {

// Runs `operation` on the opened file, or returns `failure` when it cannot be opened.
template <typename Result, typename Operation>
Result OnFile(const std::filesystem::path& path, Result failure, Operation operation) {
    FileSource source(path);
    if (!source.isOpen()) return failure;
    return operation(source);
}

}  // namespace

std::optional<ShootingTime> ReadShootingTime(ByteSource& source) {
    auto record = ReadExifRecord(source, false);
    return record ? ShootingTimeOf(*record) : std::nullopt;
}

bool HasShootingInfo(ByteSource& source) {
    auto record = ReadExifRecord(source, false);
    if (!record) return false;
    static const uint16_t shootingTags[] = {tag::kDateTimeOriginal, tag::kDateTimeDigitized, tag::kExposureTime,
                                            tag::kFNumber,          tag::kIso,               tag::kExposureProgram,
                                            tag::kExposureBias,     tag::kMeteringMode,      tag::kFlash,
                                            tag::kFocalLength,      tag::kFocalLength35,     tag::kWhiteBalance};
    for (uint16_t t : shootingTags)
        if (record->hasExifIfd && record->has(TagGroup::Exif, t)) return true;
    return record->has(TagGroup::Gps, tag::kGpsLatitude);
}

std::vector<EmbeddedImageRef> ListEmbeddedImages(ByteSource& source) {
    auto record = ReadExifRecord(source, true);
    return record ? record->images : std::vector<EmbeddedImageRef>();
}

std::optional<EmbeddedImage> ReadEmbeddedImage(ByteSource& source, EmbeddedChoice choice) {
    const std::vector<EmbeddedImageRef> images = ListEmbeddedImages(source);
    const int chosen = ChooseEmbeddedImage(images, choice);
    if (chosen < 0) return std::nullopt;
    return ExtractEmbeddedImage(source, images[chosen]);
}

bool EnumerateExifInfo(ByteSource& source, const ExifInfoCallback& callback) {
    auto record = ReadExifRecord(source, false);
    return !record || DeliverExifInfo(CollectExifInfo(*record), callback);
}

std::string ReadDescription(ByteSource& source) {
    auto record = ReadExifRecord(source, false);
    return record ? DescriptionOf(*record) : std::string();
}

std::optional<PreviewRender> RenderPreview(ByteSource& source) {
    auto record = ReadExifRecord(source, true);
    if (!record) return std::nullopt;
    const int chosen = ChooseEmbeddedImage(record->images, EmbeddedChoice::Largest, true);
    if (chosen < 0) return std::nullopt;
    auto image = ExtractEmbeddedImage(source, record->images[chosen]);
    if (!image) return std::nullopt;
    return PreviewRender{std::move(image->bytes), DescriptionOf(*record)};
}

std::optional<int> ReadOrientation(ByteSource& source) {
    auto record = ReadExifRecord(source, false);
    auto value = record ? record->integer(TagGroup::Image, tag::kOrientation) : std::nullopt;
    if (!value || *value < 1 || *value > 8) return std::nullopt;
    return static_cast<int>(*value);
}

std::optional<ShootingTime> ReadShootingTime(const std::filesystem::path& path) {
    return OnFile(path, std::optional<ShootingTime>(), [](ByteSource& s) { return ReadShootingTime(s); });
}

bool HasShootingInfo(const std::filesystem::path& path) {
    return OnFile(path, false, [](ByteSource& s) { return HasShootingInfo(s); });
}

std::vector<EmbeddedImageRef> ListEmbeddedImages(const std::filesystem::path& path) {
    return OnFile(path, std::vector<EmbeddedImageRef>(), [](ByteSource& s) { return ListEmbeddedImages(s); });
}

std::optional<EmbeddedImage> ReadEmbeddedImage(const std::filesystem::path& path, EmbeddedChoice choice) {
    return OnFile(path, std::optional<EmbeddedImage>(), [&](ByteSource& s) { return ReadEmbeddedImage(s, choice); });
}

bool EnumerateExifInfo(const std::filesystem::path& path, const ExifInfoCallback& callback) {
    return OnFile(path, true, [&](ByteSource& s) { return EnumerateExifInfo(s, callback); });
}

std::string ReadDescription(const std::filesystem::path& path) {
    return OnFile(path, std::string(), [](ByteSource& s) { return ReadDescription(s); });
}

std::optional<PreviewRender> RenderPreview(const std::filesystem::path& path) {
    return OnFile(path, std::optional<PreviewRender>(), [](ByteSource& s) { return RenderPreview(s); });
}

std::optional<int> ReadOrientation(const std::filesystem::path& path) {
    return OnFile(path, std::optional<int>(), [](ByteSource& s) { return ReadOrientation(s); });
}

}  // namespace lx
