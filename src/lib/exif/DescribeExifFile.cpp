#include "DescribeExifFile.h"

#include "ExifContainer.h"
#include "ExifReader.h"
#include "ExifText.h"

namespace lx {

std::string DescribeExifFile(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    std::string out = std::string(reinterpret_cast<const char*>(name.data()), name.size()) + "\n";
    FileSource source(path);
    if (!source.isOpen()) return out + "  cannot open the file\n";
    auto record = ReadExifRecord(source, true);
    if (!record) return out + "  no Exif data\n";

    auto time = ShootingTimeOf(*record);
    out += "  shooting time: " + (time ? FormatShootingTime(*time) : std::string("none")) + "\n";
    out += "  shooting information: " + std::string(HasShootingInfo(source) ? "yes" : "no") + "\n";
    out += "  embedded images: " + std::to_string(record->images.size()) + "\n";
    for (const EmbeddedImageRef& image : record->images) {
        out += "    " + std::string(image.format == EmbeddedFormat::Jpeg ? "JPEG" : "BMP") + " " +
               std::to_string(image.width) + "x" + std::to_string(image.height) + ", " +
               std::to_string(ExtractedSize(image)) + " bytes (" + image.where + ")\n";
    }
    const std::string description = DescriptionOf(*record);
    out += "  description: " + (description.empty() ? std::string("none") : description) + "\n";
    for (const ExifInfoGroup& group : CollectExifInfo(*record)) {
        out += "  [" + group.heading + "]\n";
        for (const auto& [name, value] : group.items) out += "    " + name + ": " + value + "\n";
    }
    return out;
}

}  // namespace lx
