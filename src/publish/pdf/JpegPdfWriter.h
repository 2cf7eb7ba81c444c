// JpegPdfWriter: builds a PDF 1.3 document that holds JPEG files unchanged, one per page.
//
// Everything but the JPEG bytes is composed as text in fixed memory: a header, one head and
// one tail text per page, and a tail text for the catalog, page tree, cross-reference table
// and trailer. Writing then streams header, each page (head, the JPEG file read again, tail)
// and the tail, so only one JPEG is held in memory at a time.
//
// Use, in this order: SetPageSize, WriteFreeXrefEntry, ComposeHeader, AddJpegFile per file,
// FinishDocument (once), WriteDocument. Up to 256 pages; the writer owns its page records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "ByteSink.h"

namespace lx {

class JpegPdfWriter {
public:
    static constexpr int kMaxPages = 256;
    // Object 0, the page tree, five objects per page and the catalog.
    static constexpr size_t kXrefSlotCount = 3 + 5 * kMaxPages;
    static constexpr size_t kXrefSlotSize = 21;  // one 20-byte xref line and its zero byte
    static constexpr size_t kHeaderCapacity = 64;
    static constexpr size_t kTailCapacity = 28476;
    static constexpr size_t kArenaSize = kHeaderCapacity + kTailCapacity + kXrefSlotCount * kXrefSlotSize;

    JpegPdfWriter();
    ~JpegPdfWriter();
    JpegPdfWriter(const JpegPdfWriter&) = delete;
    JpegPdfWriter& operator=(const JpegPdfWriter&) = delete;

    // The page size, in whole points, before it is turned and fitted to each image.
    void SetPageSize(int width, int height);
    void WriteFreeXrefEntry();
    void ComposeHeader();

    // Reads the file, finds its frame header and adds its page. 1 on success; 0 when the file
    // cannot be read, has no usable frame header, or no page can be added.
    int AddJpegFile(const std::filesystem::path& path);
    // Composes one page's five objects for a JPEG of `streamLength` bytes. 1 on success, 0
    // (and nothing changed) when the document is full or memory runs out.
    int AddImagePage(const std::filesystem::path& path, uint32_t width, uint32_t height, uint64_t streamLength,
                     bool isColor);
    // Composes catalog, page tree, xref table and trailer. Returns the document's length in
    // bytes, or 0 when it would hold nothing beyond header and tail.
    int64_t FinishDocument();
    // Writes the whole document. Stops at the first JPEG that cannot be read again or the
    // first failed write and returns false; what was written stays written.
    bool WriteDocument(ByteSink& out) const;

    int PageCount() const { return pageCount_; }

private:
    struct PdfPageRecord;

    void RecordOffset(int object);
    size_t Append(char* text, size_t capacity, const char* format, ...) __attribute__((format(printf, 4, 5)));

    std::unique_ptr<PdfPageRecord> firstPage_;
    PdfPageRecord* lastPage_ = nullptr;
    int pageCount_ = 0;
    std::unique_ptr<char[]> arena_;
    char* header_ = nullptr;
    char* tail_ = nullptr;
    char* xref_[kXrefSlotCount] = {};
    int defaultPageWidth_ = 0;
    int defaultPageHeight_ = 0;
    int nextObject_ = 0;
    int nextImage_ = 0;
    bool fitPageToImage_ = true;
    int64_t offset_ = 0;
};

}  // namespace lx
