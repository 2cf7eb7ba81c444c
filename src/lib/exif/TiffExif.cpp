#include "TiffExif.h"

#include <set>

#include "JpegSegments.h"

namespace lx {

namespace {

constexpr uint16_t kNewSubfileType = 0x00FE, kBitsPerSample = 0x0102, kCompression = 0x0103,
                   kPhotometric = 0x0106, kStripOffsets = 0x0111, kSamplesPerPixel = 0x0115,
                   kStripByteCounts = 0x0117, kPlanarConfig = 0x011C, kSubIfds = 0x014A,
                   kJpegOffset = 0x0201, kJpegLength = 0x0202, kExifIfd = 0x8769, kGpsIfd = 0x8825,
                   kRw2Preview = 0x002E, kMakerNote = 0x927C;

// Values larger than this are not kept; a text field people read is far smaller, and a
// blob (a maker note, an ICC profile, XMP) is not read at all.
constexpr uint32_t kMaxValueBytes = 64 * 1024;
constexpr uint32_t kMaxStrips = 4096;
// An uncompressed thumbnail larger than this is an image of its own, not a thumbnail.
constexpr int64_t kMaxRgbThumbnailPixels = 4'000'000;

enum class IfdRole { Main, Exif, Gps, Sub };

class Walk {
public:
    Walk(const TiffReader& reader, ExifRecord& record, bool withImages)
        : r_(reader), record_(record), withImages_(withImages) {}

    void run() {
        uint32_t offset = r_.firstIfd();
        for (int index = 0; offset != 0; ++index) {
            auto ifd = enter(offset);
            if (!ifd) break;
            if (index == 0) {
                keepValues(*ifd, TagGroup::Image);
                if (r_.magic() == kRw2Magic) readRw2Preview(ifd->find(kRw2Preview));
            }
            follow(*ifd, kExifIfd, IfdRole::Exif, 0);
            follow(*ifd, kGpsIfd, IfdRole::Gps, 0);
            follow(*ifd, kSubIfds, IfdRole::Sub, 1);
            findImages(*ifd, "IFD" + std::to_string(index), index > 0);
            offset = ifd->next;
        }
    }

private:
    // Reads the IFD at `offset` unless it was seen before or the budget is spent.
    std::optional<TiffIfd> enter(uint32_t offset) {
        if (visits_ >= kMaxIfds || !seen_.insert(offset).second) return std::nullopt;
        ++visits_;
        return r_.readIfd(offset);
    }

    void follow(const TiffIfd& ifd, uint16_t pointerTag, IfdRole role, int depth) {
        const TiffEntry* pointer = ifd.find(pointerTag);
        if (!pointer || depth > kMaxSubIfdDepth) return;
        const uint32_t count = role == IfdRole::Sub ? std::min<uint32_t>(pointer->count, 16) : 1;
        for (uint32_t i = 0; i < count; ++i) {
            auto offset = r_.integer(*pointer, i);
            if (!offset || *offset <= 0) continue;
            auto child = enter(static_cast<uint32_t>(*offset));
            if (!child) continue;
            switch (role) {
            case IfdRole::Exif:
                record_.hasExifIfd = true;
                keepValues(*child, TagGroup::Exif);
                break;
            case IfdRole::Gps: keepValues(*child, TagGroup::Gps); break;
            case IfdRole::Sub:
                findImages(*child, "SubIFD" + std::to_string(subIfds_++), false);
                follow(*child, kSubIfds, IfdRole::Sub, depth + 1);
                break;
            case IfdRole::Main: break;
            }
        }
    }

    void keepValues(const TiffIfd& ifd, TagGroup group) {
        for (const TiffEntry& entry : ifd.entries) {
            if (entry.tag == kMakerNote || entry.byteSize() > kMaxValueBytes) continue;
            TagValue value;
            value.type = entry.type;
            value.count = entry.count;
            value.order = r_.order();
            value.bytes = r_.bytes(entry, kMaxValueBytes);
            if (value.bytes.size() == entry.byteSize()) record_.set(group, entry.tag, std::move(value));
        }
    }

    int64_t number(const TiffIfd& ifd, uint16_t tag, int64_t fallback) const {
        const TiffEntry* entry = ifd.find(tag);
        auto value = entry ? r_.integer(*entry) : std::nullopt;
        return value ? *value : fallback;
    }

    void findImages(const TiffIfd& ifd, const std::string& where, bool laterInChain) {
        if (!withImages_) return;
        const TiffEntry* jpegOffset = ifd.find(kJpegOffset);
        const TiffEntry* jpegLength = ifd.find(kJpegLength);
        if (jpegOffset && jpegLength) {
            auto offset = r_.integer(*jpegOffset);
            auto length = r_.integer(*jpegLength);
            if (offset && length) addJpeg(*offset, *length, where);
            return;
        }
        const TiffEntry* offsets = ifd.find(kStripOffsets);
        const TiffEntry* counts = ifd.find(kStripByteCounts);
        if (!offsets || !counts || offsets->count != counts->count || offsets->count == 0 ||
            offsets->count > kMaxStrips)
            return;
        const int64_t compression = number(ifd, kCompression, 1);
        if (compression != 1) {
            // One strip that is a whole JPEG stream: CR2's IFD0 and many raw previews.
            auto offset = r_.integer(*offsets);
            auto length = r_.integer(*counts);
            if (offsets->count == 1 && offset && length) addJpeg(*offset, *length, where);
            return;
        }
        const bool reduced = (number(ifd, kNewSubfileType, 0) & 1) != 0;
        const TiffEntry* bits = ifd.find(kBitsPerSample);
        bool eightBit = bits != nullptr;
        for (uint32_t i = 0; bits && i < 3; ++i) eightBit = eightBit && r_.integer(*bits, std::min(i, bits->count - 1)) == 8;
        if (!(reduced || laterInChain) || number(ifd, kPhotometric, -1) != 2 || number(ifd, kSamplesPerPixel, 1) != 3 ||
            number(ifd, kPlanarConfig, 1) != 1 || !eightBit)
            return;
        const int64_t width = number(ifd, kImageWidthTag, 0), height = number(ifd, kImageLengthTag, 0);
        if (width <= 0 || height <= 0 || width > 65535 || height > 65535 || width * height > kMaxRgbThumbnailPixels)
            return;
        EmbeddedImageRef image;
        image.format = EmbeddedFormat::Bmp;
        image.where = where;
        image.width = static_cast<int>(width);
        image.height = static_cast<int>(height);
        for (uint32_t i = 0; i < offsets->count; ++i) {
            auto offset = r_.integer(*offsets, i);
            auto length = r_.integer(*counts, i);
            if (!offset || !length || *offset < 0 || *length < 0 || !r_.inside(*offset, *length)) return;
            image.strips.emplace_back(r_.base() + *offset, *length);
            image.length += *length;
        }
        if (image.length < static_cast<uint64_t>(width * height * 3)) return;
        image.offset = image.strips.front().first;
        record_.images.push_back(std::move(image));
    }

    void addJpeg(int64_t offset, int64_t length, const std::string& where) {
        if (offset <= 0 || length <= 0 || !r_.inside(offset, length)) return;
        const uint64_t start = r_.base() + offset;
        auto frame = ProbeJpegFrame(r_.source(), start, start + length);
        if (!frame) return;
        EmbeddedImageRef image;
        image.where = where;
        image.offset = start;
        image.length = length;
        image.width = frame->width;
        image.height = frame->height;
        record_.images.push_back(std::move(image));
    }

    // Panasonic keeps the shooting data in the Exif segment of the preview JPEG that IFD0
    // embeds as one value, rather than in an Exif IFD of its own.
    void readRw2Preview(const TiffEntry* entry) {
        if (!entry) return;
        const uint64_t start = entry->valueOffset, end = start + entry->byteSize();
        addJpeg(start - r_.base(), entry->byteSize(), "IFD0 preview");
        auto segment = FindExifSegment(r_.source(), start, end);
        auto inner = segment ? TiffReader::Open(r_.source(), segment->tiffBase, segment->limit) : std::nullopt;
        if (!inner || inner->magic() != kTiffMagic) return;  // one level only
        ExifRecord nested;
        ReadTiffStructure(*inner, nested, false);
        record_.mergeMissing(nested);
    }

    static constexpr uint16_t kImageWidthTag = tag::kImageWidth, kImageLengthTag = tag::kImageLength;

    const TiffReader& r_;
    ExifRecord& record_;
    bool withImages_;
    std::set<uint32_t> seen_;
    int visits_ = 0;
    int subIfds_ = 0;
};

}  // namespace

void ReadTiffStructure(const TiffReader& reader, ExifRecord& record, bool withImages) {
    Walk(reader, record, withImages).run();
}

}  // namespace lx
