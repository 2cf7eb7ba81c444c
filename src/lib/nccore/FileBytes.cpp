#include "FileBytes.h"

#include <fstream>
#include <new>

namespace lx {

std::optional<std::vector<uint8_t>> ReadWholeFile(const std::filesystem::path& path, uint64_t maxBytes) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) return std::nullopt;
    const std::streamoff size = in.tellg();
    if (size < 0 || static_cast<uint64_t>(size) > maxBytes) return std::nullopt;
    in.seekg(0);
    std::vector<uint8_t> bytes;
    try {
        bytes.resize(static_cast<size_t>(size));
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    if (size > 0 && !in.read(reinterpret_cast<char*>(bytes.data()), size)) return std::nullopt;
    return bytes;
}

}  // namespace lx
