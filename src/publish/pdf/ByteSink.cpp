#include "ByteSink.h"

namespace lx {

FileByteSink::FileByteSink(const std::filesystem::path& path)
    : out_(path, std::ios::binary | std::ios::out | std::ios::trunc) {}

bool FileByteSink::Write(const void* data, size_t size) {
    out_.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    return bool(out_);
}

std::unique_ptr<ByteSink> CreateFileByteSink(const std::filesystem::path& path) {
    auto sink = std::make_unique<FileByteSink>(path);
    if (!sink->IsOpen()) return nullptr;
    return sink;
}

}  // namespace lx
