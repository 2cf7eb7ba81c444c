#include "WholeFile.h"

#include <fstream>
#include <new>

namespace lx {

bool ReadWholeFile(const std::filesystem::path& path, std::vector<uint8_t>& bytes) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    // A page's stream length is copied out as 32 bits, so larger files cannot be embedded.
    if (size < 0 || uint64_t(size) > 0xFFFFFFFFull) return false;
    in.seekg(0, std::ios::beg);

    std::vector<uint8_t> data;
    try {
        data.resize(size_t(size));
    } catch (const std::bad_alloc&) {
        return false;
    }
    if (size > 0 && !in.read(reinterpret_cast<char*>(data.data()), size)) return false;
    bytes.swap(data);
    return true;
}

}  // namespace lx
