#include "FileBytes.h"

#include <fstream>
#include <new>
#include <system_error>

namespace lx {

std::optional<std::vector<uint8_t>> ReadWholeFile(const std::filesystem::path& path, uint64_t maxBytes) {
    // A folder opens as a stream too, and reports a size near the largest offset there is.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
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
