#include "ByteSource.h"

#include <algorithm>
#include <cstring>

namespace lx {

std::vector<uint8_t> ByteSource::readVector(uint64_t offset, size_t count) {
    std::vector<uint8_t> bytes;
    if (!contains(offset, count)) return bytes;
    bytes.resize(count);
    if (!read(offset, count, bytes.data())) bytes.clear();
    return bytes;
}

bool MemorySource::read(uint64_t offset, size_t count, uint8_t* out) {
    if (!contains(offset, count)) return false;
    if (count) std::memcpy(out, bytes_.data() + offset, count);
    return true;
}

namespace {

std::FILE* OpenForReading(const std::filesystem::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"rb");
#else
    return std::fopen(path.c_str(), "rb");
#endif
}

bool SeekTo(std::FILE* file, uint64_t offset) {
#ifdef _WIN32
    return _fseeki64(file, static_cast<long long>(offset), SEEK_SET) == 0;
#else
    return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
#endif
}

}  // namespace

FileSource::FileSource(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) return;
    const auto fileSize = std::filesystem::file_size(path, ec);
    if (ec) return;
    file_ = OpenForReading(path);
    if (!file_) return;
    // Our own window does the buffering; the C library's would only copy twice.
    std::setvbuf(file_, nullptr, _IONBF, 0);
    size_ = fileSize;
}

FileSource::~FileSource() {
    if (file_) std::fclose(file_);
}

bool FileSource::fill(uint64_t offset, size_t count) {
    const size_t length = static_cast<size_t>(std::min<uint64_t>(std::max(count, kWindowSize), size_ - offset));
    window_.resize(length);
    if (!SeekTo(file_, offset) || std::fread(window_.data(), 1, length, file_) != length) {
        window_.clear();
        return false;
    }
    windowOffset_ = offset;
    return true;
}

bool FileSource::read(uint64_t offset, size_t count, uint8_t* out) {
    if (!file_ || !contains(offset, count)) return false;
    if (count == 0) return true;
    if (count >= kWindowSize) {
        // A large block (a preview image) goes straight to the caller.
        return SeekTo(file_, offset) && std::fread(out, 1, count, file_) == count;
    }
    const bool inWindow = offset >= windowOffset_ && offset - windowOffset_ <= window_.size() &&
                          count <= window_.size() - (offset - windowOffset_);
    if (!inWindow && !fill(offset, count)) return false;
    std::memcpy(out, window_.data() + (offset - windowOffset_), count);
    return true;
}

}  // namespace lx
