// ExifRecord: the tag values of one file that the Exif operations look at, decoded from
// whichever container held them (a TIFF structure, or Canon's older CIFF heap), plus
// where its embedded thumbnail and preview images lie.
//
// Tags are kept per group (the primary image's IFD0, the Exif IFD, the GPS IFD) with
// their TIFF type and raw bytes in the file's byte order; the first value stored for a
// tag wins, so a container may merge a nested structure's values under its own.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "TiffReader.h"

namespace lx {

enum class TagGroup : uint8_t { Image, Exif, Gps };

// Tags the operations read, by group.
namespace tag {
// IFD0
constexpr uint16_t kImageWidth = 0x0100, kImageLength = 0x0101, kImageDescription = 0x010E, kMake = 0x010F,
                   kModel = 0x0110, kOrientation = 0x0112, kSoftware = 0x0131, kDateTime = 0x0132,
                   kArtist = 0x013B, kCopyright = 0x8298, kXpTitle = 0x9C9B, kXpComment = 0x9C9C,
                   kXpAuthor = 0x9C9D, kXpSubject = 0x9C9F;
// Exif IFD
constexpr uint16_t kExposureTime = 0x829A, kFNumber = 0x829D, kExposureProgram = 0x8822, kIso = 0x8827,
                   kDateTimeOriginal = 0x9003, kDateTimeDigitized = 0x9004, kExposureBias = 0x9204,
                   kMaxAperture = 0x9205, kMeteringMode = 0x9207, kFlash = 0x9209, kFocalLength = 0x920A,
                   kUserComment = 0x9286, kSubSecTimeOriginal = 0x9291, kSubSecTimeDigitized = 0x9292,
                   kColorSpace = 0xA001, kPixelXDimension = 0xA002, kPixelYDimension = 0xA003,
                   kExposureMode = 0xA402, kWhiteBalance = 0xA403, kFocalLength35 = 0xA405,
                   kLensMake = 0xA433, kLensModel = 0xA434;
// GPS IFD
constexpr uint16_t kGpsLatitudeRef = 1, kGpsLatitude = 2, kGpsLongitudeRef = 3, kGpsLongitude = 4,
                   kGpsAltitudeRef = 5, kGpsAltitude = 6;
}  // namespace tag

struct TagValue {
    uint16_t type = 0;
    uint32_t count = 0;
    ByteOrder order = ByteOrder::Little;
    std::vector<uint8_t> bytes;  // count * TiffTypeSize(type) bytes
};

enum class EmbeddedFormat : uint8_t { Jpeg, Bmp };

// Where one embedded image lies in the source. A JPEG is one byte range; an uncompressed
// RGB thumbnail is a list of strips that together hold width * height * 3 bytes.
struct EmbeddedImageRef {
    EmbeddedFormat format = EmbeddedFormat::Jpeg;
    std::string where;  // the IFD or block it came from, e.g. "IFD1", "SubIFD0"
    uint64_t offset = 0;
    uint64_t length = 0;
    int width = 0;  // 0 when not known
    int height = 0;
    std::vector<std::pair<uint64_t, uint64_t>> strips;
};

class ExifRecord {
public:
    // Stores a value unless the tag already has one.
    void set(TagGroup group, uint16_t tag, TagValue value);
    // Stores an ASCII value (for containers whose values are not TIFF fields).
    void setText(TagGroup group, uint16_t tag, const std::string& text);
    const TagValue* find(TagGroup group, uint16_t tag) const;
    bool has(TagGroup group, uint16_t tag) const { return find(group, tag) != nullptr; }
    // Copies every value of `other` that this record does not have yet.
    void mergeMissing(const ExifRecord& other);

    // An ASCII value up to its first NUL, without trailing blanks; empty when absent.
    std::string text(TagGroup group, uint16_t tag) const;
    std::optional<int64_t> integer(TagGroup group, uint16_t tag, uint32_t index = 0) const;
    // A rational value as a number; nullopt when absent or the denominator is 0.
    std::optional<double> real(TagGroup group, uint16_t tag, uint32_t index = 0) const;
    std::optional<std::pair<int64_t, int64_t>> rational(TagGroup group, uint16_t tag, uint32_t index = 0) const;

    bool empty() const { return tags_.empty() && images.empty(); }

    bool hasExifIfd = false;
    std::vector<EmbeddedImageRef> images;

private:
    std::map<std::pair<TagGroup, uint16_t>, TagValue> tags_;
};

}  // namespace lx
