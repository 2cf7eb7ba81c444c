#include "JpegTables.h"

#include <algorithm>

namespace lx {

namespace {

constexpr QuantTable kLuminanceQuant = {
    16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};

constexpr QuantTable kChrominanceQuant = {
    17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99,
    24, 26, 56, 99, 99, 99, 99, 99, 47, 66, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};

// The AC example tables list their first, most frequent symbols explicitly; every
// remaining run/size symbol has a 16-bit code and follows in ascending order.
HuffmanSpec MakeAcSpec(const std::array<uint8_t, 16>& counts, std::initializer_list<uint8_t> frequent) {
    HuffmanSpec spec;
    spec.counts = counts;
    bool listed[256] = {};
    int n = 0;
    for (uint8_t s : frequent) {
        spec.symbols[n++] = s;
        listed[s] = true;
    }
    for (int run = 0; run < 16; ++run) {
        for (int size = 0; size <= 10; ++size) {
            const bool valid = size != 0 || run == 0 || run == 15;  // EOB and ZRL
            const int symbol = run << 4 | size;
            if (valid && !listed[symbol]) spec.symbols[n++] = static_cast<uint8_t>(symbol);
        }
    }
    return spec;
}

HuffmanSpec MakeDcSpec(const std::array<uint8_t, 16>& counts) {
    HuffmanSpec spec;
    spec.counts = counts;
    for (int i = 0; i < 12; ++i) spec.symbols[i] = static_cast<uint8_t>(i);
    return spec;
}

}  // namespace

int HuffmanSpec::symbolCount() const {
    int n = 0;
    for (uint8_t c : counts) n += c;
    return n;
}

QuantTable ScaledQuantTable(int which, int quality) {
    quality = std::clamp(quality, 1, 100);
    const int percent = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    const QuantTable& base = which == 0 ? kLuminanceQuant : kChrominanceQuant;
    QuantTable table{};
    for (int i = 0; i < 64; ++i)
        table[i] = static_cast<uint16_t>(std::clamp((base[i] * percent + 50) / 100, 1, 255));
    return table;
}

const HuffmanSpec& StandardDcSpec(int which) {
    static const HuffmanSpec luminance = MakeDcSpec({0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0});
    static const HuffmanSpec chrominance = MakeDcSpec({0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0});
    return which == 0 ? luminance : chrominance;
}

const HuffmanSpec& StandardAcSpec(int which) {
    static const HuffmanSpec luminance = MakeAcSpec(
        {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7d},
        {0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13,
         0x51, 0x61, 0x07, 0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xa1, 0x08, 0x23, 0x42,
         0xb1, 0xc1, 0x15, 0x52, 0xd1, 0xf0, 0x24, 0x33, 0x62, 0x72, 0x82});
    static const HuffmanSpec chrominance = MakeAcSpec(
        {0, 2, 1, 2, 4, 4, 3, 4, 7, 5, 4, 4, 0, 1, 2, 0x77},
        {0x00, 0x01, 0x02, 0x03, 0x11, 0x04, 0x05, 0x21, 0x31, 0x06, 0x12, 0x41, 0x51,
         0x07, 0x61, 0x71, 0x13, 0x22, 0x32, 0x81, 0x08, 0x14, 0x42, 0x91, 0xa1, 0xb1,
         0xc1, 0x09, 0x23, 0x33, 0x52, 0xf0, 0x15, 0x62, 0x72, 0xd1, 0x0a, 0x16, 0x24,
         0x34, 0xe1, 0x25, 0xf1});
    return which == 0 ? luminance : chrominance;
}

}  // namespace lx
