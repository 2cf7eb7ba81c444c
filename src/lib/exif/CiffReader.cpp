#include "CiffReader.h"

#include <cstdio>
#include <cstring>

#include "JpegSegments.h"
#include "ShootingTime.h"

namespace lx {

namespace {

constexpr uint16_t kMakeModel = 0x080A, kCapturedTime = 0x180E, kImageInfo = 0x1810,
                   kPreviewJpeg = 0x2007, kThumbnailJpeg = 0x2008;
constexpr uint32_t kMaxEntriesPerHeap = 1000;

class CiffWalk {
public:
    CiffWalk(ByteSource& source, ExifRecord& record, bool withImages, ByteOrder order)
        : source_(source), record_(record), withImages_(withImages), order_(order) {}

    // A heap is [start, end): its entries' data, then the entry table, whose offset is the
    // heap's last four bytes.
    void heap(uint64_t start, uint64_t end, int depth) {
        if (depth > kMaxCiffDepth || heaps_++ >= kMaxCiffHeaps || end - start < 6) return;
        uint8_t b[4];
        if (!source_.read(end - 4, 4, b)) return;
        const uint64_t table = start + get32(b);
        if (table < start || table > end - 6 || !source_.read(table, 2, b)) return;
        const uint32_t count = std::min<uint32_t>(get16(b), kMaxEntriesPerHeap);
        if ((end - 4 - table - 2) / 10 < count) return;
        std::vector<uint8_t> entries = source_.readVector(table + 2, count * 10u);
        if (entries.size() != count * 10u) return;
        for (uint32_t i = 0; i < count; ++i) {
            const uint8_t* e = entries.data() + 10u * i;
            const uint16_t tag = get16(e);
            const bool inRecord = (tag & 0xC000) == 0x4000;  // data held in the entry itself
            const uint16_t id = tag & 0x3FFF;
            const uint64_t size = inRecord ? 8 : get32(e + 2);
            const uint64_t at = inRecord ? table + 2 + 10u * i + 2 : start + get32(e + 6);
            if (at < start || at > end || size > end - at) continue;
            const uint16_t dataType = tag & 0x3800;
            if (!inRecord && (dataType == 0x2800 || dataType == 0x3000)) heap(at, at + size, depth + 1);
            else entry(id, at, size);
        }
    }

private:
    uint16_t get16(const uint8_t* p) const { return order_ == ByteOrder::Little ? ReadLe16(p) : ReadBe16(p); }
    uint32_t get32(const uint8_t* p) const { return order_ == ByteOrder::Little ? ReadLe32(p) : ReadBe32(p); }

    void entry(uint16_t id, uint64_t at, uint64_t size) {
        if (id == kMakeModel && size <= 256) {
            std::vector<uint8_t> v = source_.readVector(at, static_cast<size_t>(size));
            std::string both(v.begin(), v.end());
            const size_t nul = both.find('\0');
            record_.setText(TagGroup::Image, tag::kMake, both.substr(0, nul));
            if (nul != std::string::npos) record_.setText(TagGroup::Image, tag::kModel, both.substr(nul + 1).c_str());
        } else if (id == kCapturedTime && size >= 4) {
            uint8_t b[4];
            if (!source_.read(at, 4, b)) return;
            // The camera's local time, counted like Unix time.
            const ShootingTime t = ShootingTimeFromSeconds(get32(b));
            char text[64];
            std::snprintf(text, sizeof text, "%04u:%02u:%02u %02u:%02u:%02u", t.year, t.month, t.day, t.hour,
                          t.minute, t.second);
            record_.setText(TagGroup::Exif, tag::kDateTimeOriginal, text);
            record_.hasExifIfd = true;
        } else if (id == kImageInfo && size >= 8) {
            uint8_t b[8];
            if (!source_.read(at, 8, b)) return;
            setLong(tag::kPixelXDimension, b);
            setLong(tag::kPixelYDimension, b + 4);
        } else if ((id == kPreviewJpeg || id == kThumbnailJpeg) && withImages_) {
            auto frame = ProbeJpegFrame(source_, at, at + size);
            if (!frame) return;
            EmbeddedImageRef image;
            image.where = id == kPreviewJpeg ? "CIFF preview" : "CIFF thumbnail";
            image.offset = at;
            image.length = size;
            image.width = frame->width;
            image.height = frame->height;
            record_.images.push_back(std::move(image));
        }
    }

    void setLong(uint16_t tagId, const uint8_t* p) {
        TagValue value;
        value.type = kTiffLong;
        value.count = 1;
        value.order = order_;
        value.bytes.assign(p, p + 4);
        record_.set(TagGroup::Exif, tagId, std::move(value));
    }

    ByteSource& source_;
    ExifRecord& record_;
    bool withImages_;
    ByteOrder order_;
    int heaps_ = 0;
};

}  // namespace

bool IsCiff(ByteSource& source) {
    uint8_t h[14];
    return source.read(0, 14, h) && ((h[0] == 'I' && h[1] == 'I') || (h[0] == 'M' && h[1] == 'M')) &&
           std::memcmp(h + 6, "HEAPCCDR", 8) == 0;
}

void ReadCiff(ByteSource& source, ExifRecord& record, bool withImages) {
    uint8_t h[6];
    if (!IsCiff(source) || !source.read(0, 6, h)) return;
    const ByteOrder order = h[0] == 'I' ? ByteOrder::Little : ByteOrder::Big;
    const uint32_t headerLength = order == ByteOrder::Little ? ReadLe32(h + 2) : ReadBe32(h + 2);
    if (headerLength < 14 || headerLength > source.size()) return;
    CiffWalk(source, record, withImages, order).heap(headerLength, source.size(), 0);
}

}  // namespace lx
