// ByteSource: random access to the bytes of a file or of a memory block.
//
// The Exif reader asks only for the few ranges it needs (a JPEG's APP1 segment, an IFD,
// a tag's value), so a 50 MB raw file is never read whole. Every read is bounded by the
// source's size: a request past the end fails instead of returning short or stale data.
// FileSource keeps one window of the file in memory, since the reader's requests cluster
// (an IFD, then the values just after it).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
#include <vector>

namespace lx {

class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual uint64_t size() const = 0;
    // Copies `count` bytes from `offset` into `out`; false (and `out` untouched) when the
    // range does not lie wholly inside the source or the read fails.
    virtual bool read(uint64_t offset, size_t count, uint8_t* out) = 0;

    bool contains(uint64_t offset, uint64_t count) const {
        return offset <= size() && count <= size() - offset;
    }
    // A range as a new vector; empty when it does not lie inside the source.
    std::vector<uint8_t> readVector(uint64_t offset, size_t count);
};

// A view of bytes owned by the caller, which must outlive the source.
class MemorySource : public ByteSource {
public:
    explicit MemorySource(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    uint64_t size() const override { return bytes_.size(); }
    bool read(uint64_t offset, size_t count, uint8_t* out) override;

private:
    std::span<const uint8_t> bytes_;
};

// A file opened for reading; `isOpen()` is false when it could not be opened.
class FileSource : public ByteSource {
public:
    explicit FileSource(const std::filesystem::path& path);
    ~FileSource() override;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    bool isOpen() const { return file_ != nullptr; }
    uint64_t size() const override { return size_; }
    bool read(uint64_t offset, size_t count, uint8_t* out) override;

private:
    static constexpr size_t kWindowSize = 64 * 1024;
    bool fill(uint64_t offset, size_t count);

    std::FILE* file_ = nullptr;
    uint64_t size_ = 0;
    uint64_t windowOffset_ = 0;
    std::vector<uint8_t> window_;
};

}  // namespace lx
