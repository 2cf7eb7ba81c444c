#include "JpegPdfWriter.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include "JpegFrameHeader.h"
#include "PdfPageGeometry.h"
#include "FileBytes.h"

namespace lx {

// A page's stream length is copied out as 32 bits, so larger files cannot be embedded.
constexpr uint64_t kMaxStreamBytes = 0xFFFFFFFFull;

struct JpegPdfWriter::PdfPageRecord {
    static constexpr size_t kHeadCapacity = 256;
    static constexpr size_t kTailCapacity = 512;

    std::unique_ptr<PdfPageRecord> next;
    uint64_t streamLength = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    int pageObject = 0;
    char head[kHeadCapacity] = {};  // written just before the JPEG bytes
    char tail[kTailCapacity] = {};  // the rest of the image object and the page's other objects
    std::filesystem::path path;
};

namespace {

// PDF numbers are printed as 32-bit values: offsets and lengths beyond that wrap the same way
// in every place they appear.
int Low32(int64_t value) { return int(uint32_t(uint64_t(value))); }

}  // namespace

JpegPdfWriter::JpegPdfWriter() : arena_(new char[kArenaSize]()) {
    header_ = arena_.get();
    tail_ = header_ + kHeaderCapacity;
    char* slots = tail_ + kTailCapacity;
    for (size_t n = 0; n < kXrefSlotCount; ++n) xref_[n] = slots + n * kXrefSlotSize;
}

// Unlinks the records one by one so a long list is not freed by deep recursion.
JpegPdfWriter::~JpegPdfWriter() {
    while (firstPage_) firstPage_ = std::move(firstPage_->next);
}

void JpegPdfWriter::SetPageSize(int width, int height) {
    defaultPageWidth_ = width;
    defaultPageHeight_ = height;
}

void JpegPdfWriter::WriteFreeXrefEntry() { std::snprintf(xref_[0], kXrefSlotSize, "%010d 65535 f\r\n", 0); }

void JpegPdfWriter::ComposeHeader() {
    // The second line is a comment of high bytes, so that transfer programs treat the file as
    // binary.
    header_[0] = 0;
    offset_ = int64_t(Append(header_, kHeaderCapacity, "%%PDF-1.3\r\n%%%cJ2PDF%c\r\n", 255, 255));
    nextObject_ = 2;
}

size_t JpegPdfWriter::Append(char* text, size_t capacity, const char* format, ...) {
    const size_t used = std::strlen(text);
    if (used + 1 >= capacity) return 0;
    va_list args;
    va_start(args, format);
    const int n = std::vsnprintf(text + used, capacity - used, format, args);
    va_end(args);
    if (n < 0) {
        text[used] = 0;
        return 0;
    }
    // Every text fits its area by construction; should one not, the cut text is what counts.
    return std::strlen(text + used);
}

void JpegPdfWriter::RecordOffset(int object) {
    if (object < 0 || size_t(object) >= kXrefSlotCount) return;
    std::snprintf(xref_[object], kXrefSlotSize, "%010d 00000 %c\r\n", Low32(offset_), 'n');
}

int JpegPdfWriter::AddJpegFile(const std::filesystem::path& path) {
    const auto bytes = ReadWholeFile(path, kMaxStreamBytes);
    if (!bytes) return 0;
    const auto frame = FindJpegFrameHeader(bytes->data(), bytes->size());
    if (!frame) return 0;
    return AddImagePage(path, frame->width, frame->height, bytes->size(), frame->components == 3);
}

int JpegPdfWriter::AddImagePage(const std::filesystem::path& path, uint32_t width, uint32_t height,
                                uint64_t streamLength, bool isColor) {
    if (pageCount_ >= kMaxPages) return 0;
    std::unique_ptr<PdfPageRecord> record(new (std::nothrow) PdfPageRecord);
    if (!record) return 0;
    record->width = width;
    record->height = height;
    record->streamLength = streamLength;
    record->path = path;

    const int n = nextObject_;
    const int k = nextImage_;
    constexpr size_t headCap = PdfPageRecord::kHeadCapacity;
    constexpr size_t tailCap = PdfPageRecord::kTailCapacity;

    // The recorded offset is that of the line break before "N 0 obj", two bytes early. Readers
    // accept it, and documents made before keep comparing equal byte for byte.
    RecordOffset(n);
    offset_ += Append(record->head, headCap,
                      "\r\n%d 0 obj\r\n<</Type/XObject/Subtype/Image/Filter/DCTDecode/BitsPerComponent 8"
                      "/ColorSpace/%s/Width %d/Height %d/Length %d>>\r\nstream\r\n",
                      n, isColor ? "DeviceRGB" : "DeviceGray", int(width), int(height), Low32(int64_t(streamLength)));
    offset_ += int64_t(streamLength);
    offset_ += Append(record->tail, tailCap, "\r\nendstream\r\nendobj\r\n");

    const PdfPageGeometry g = ComputePageGeometry(defaultPageWidth_, defaultPageHeight_, width, height, fitPageToImage_);
    const int page = n + 1;
    RecordOffset(page);
    record->pageObject = page;
    offset_ += Append(record->tail, tailCap,
                      "%d 0 obj\r\n<</Type/Page/Parent 1 0 R/MediaBox[0 0 %d %d]/Contents %d 0 R/Resources %d 0 R>>"
                      "\r\nendobj\r\n",
                      page, g.pageWidth, g.pageHeight, n + 2, n + 4);

    char content[256] = {};
    Append(content, sizeof content, "q\r\n1 0 0 1 %.2f %.2f cm\r\n%.2f 0 0 %.2f 0 0 cm\r\n/I%d Do\r\nQ\r\n", g.imageX,
           g.imageY, g.pageWidth - 2 * g.imageX, g.pageHeight - 2 * g.imageY, k);
    RecordOffset(n + 2);
    offset_ += Append(record->tail, tailCap, "%d 0 obj\r\n<</Length %d 0 R>>stream\r\n%sendstream\r\nendobj\r\n", n + 2,
                      n + 3, content);
    RecordOffset(n + 3);
    offset_ += Append(record->tail, tailCap, "%d 0 obj\r\n%ld\r\nendobj\r\n", n + 3, long(std::strlen(content)));
    RecordOffset(n + 4);
    offset_ += Append(record->tail, tailCap, "%d 0 obj\r\n<</ProcSet[/PDF/%s]/XObject<</I%d %d 0 R>>>>\r\nendobj\r\n",
                      n + 4, isColor ? "ImageC" : "ImageB", k, n);

    nextObject_ = n + 5;
    nextImage_ = k + 1;
    ++pageCount_;
    PdfPageRecord* added = record.get();
    if (lastPage_) {
        lastPage_->next = std::move(record);
    } else {
        firstPage_ = std::move(record);
    }
    lastPage_ = added;
    return 1;
}

int64_t JpegPdfWriter::FinishDocument() {
    const int catalog = nextObject_;
    tail_[0] = 0;
    size_t tailLength = 0;

    RecordOffset(catalog);
    size_t n = Append(tail_, kTailCapacity, "%d 0 obj\r\n<</Type/Catalog/Pages 1 0 R>>\r\nendobj\r\n", catalog);
    offset_ += n;
    tailLength += n;

    RecordOffset(1);
    char kids[2560] = {};
    for (const PdfPageRecord* p = firstPage_.get(); p; p = p->next.get()) Append(kids, sizeof kids, "%d 0 R ", p->pageObject);
    const size_t kidsLength = std::strlen(kids);
    if (kidsLength >= 2 && kids[kidsLength - 1] == ' ') kids[kidsLength - 1] = 0;
    n = Append(tail_, kTailCapacity, "1 0 obj\r\n<</Type /Pages /Kids [%s] /Count %d>>\r\nendobj\r\n", kids, pageCount_);
    offset_ += n;
    tailLength += n;

    const int64_t startxref = offset_;
    n = Append(tail_, kTailCapacity, "xref\r\n0 %d\r\n", catalog + 1);
    offset_ += n;
    tailLength += n;
    for (int object = 0; object <= catalog && size_t(object) < kXrefSlotCount; ++object) {
        n = Append(tail_, kTailCapacity, "%s", xref_[object]);
        offset_ += n;
        tailLength += n;
    }
    n = Append(tail_, kTailCapacity, "trailer\r\n<</Root %d 0 R /Size %d>>\r\n", catalog, catalog + 1);
    n += Append(tail_, kTailCapacity, "startxref\r\n%d\r\n%%%%EOF\r\n", Low32(startxref));
    offset_ += n;
    tailLength += n;

    const int64_t headerLength = int64_t(std::strlen(header_));
    if (offset_ <= headerLength + int64_t(tailLength)) return 0;
    return offset_;
}

bool JpegPdfWriter::WriteDocument(ByteSink& out) const {
    if (!out.Write(header_, std::strlen(header_))) return false;
    for (const PdfPageRecord* p = firstPage_.get(); p; p = p->next.get()) {
        if (!out.Write(p->head, std::strlen(p->head))) return false;
        auto bytes = ReadWholeFile(p->path, kMaxStreamBytes);
        if (!bytes) return false;
        // The recorded length is what the offsets were counted with. A file that grew is cut
        // to it; one that shrank is padded with zero bytes, so every later offset stays true.
        const size_t length = uint32_t(p->streamLength);
        const size_t copied = bytes->size() < length ? bytes->size() : length;
        if (copied && !out.Write(bytes->data(), copied)) return false;
        if (copied < length) {
            bytes->assign(length - copied, 0);
            if (!out.Write(bytes->data(), bytes->size())) return false;
        }
        if (!out.Write(p->tail, std::strlen(p->tail))) return false;
    }
    return out.Write(tail_, std::strlen(tail_));
}

}  // namespace lx
