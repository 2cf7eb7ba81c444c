#include "BmpWriter.h"

#include <cstring>

namespace lx {

std::vector<uint8_t> EncodeBmp(const PackedDib& dib) {
    if (dib.empty()) return {};
    const auto& packed = dib.bytes();
    std::vector<uint8_t> out(14 + packed.size());
    out[0] = 'B', out[1] = 'M';
    WriteLe32(out.data() + 2, static_cast<uint32_t>(out.size()));
    WriteLe32(out.data() + 10, static_cast<uint32_t>(14 + dib.bitsOffset()));
    std::memcpy(out.data() + 14, packed.data(), packed.size());
    return out;
}

}  // namespace lx
