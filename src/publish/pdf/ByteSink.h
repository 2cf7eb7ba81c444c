// Where a composed document goes: a plain sequence of byte writes. The composer stays free of
// any file API; natively the bytes go to a std::ofstream, on Windows the worker supplies a
// sink over the file it created itself.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <memory>

namespace lx {

class ByteSink {
public:
    virtual ~ByteSink() = default;
    // False when not every byte could be written.
    virtual bool Write(const void* data, size_t size) = 0;
};

// A file created (or emptied) for writing, closed when the sink ends.
class FileByteSink : public ByteSink {
public:
    explicit FileByteSink(const std::filesystem::path& path);
    bool IsOpen() const { return out_.is_open(); }
    bool Write(const void* data, size_t size) override;

private:
    std::ofstream out_;
};

// Creates the output file; null when it cannot be created.
std::unique_ptr<ByteSink> CreateFileByteSink(const std::filesystem::path& path);

}  // namespace lx
