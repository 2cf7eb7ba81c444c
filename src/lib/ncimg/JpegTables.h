// The fixed tables of baseline JPEG: the zigzag scan order, the example quantisation
// tables and their quality scaling, and the example Huffman tables.
//
// Quantisation tables are kept in natural (row-major) order; the encoder writes them out
// in zigzag order as the DQT marker wants. Quality follows the convention of the common
// JPEG tools: 50 is the example table itself, lower qualities scale it up, higher ones
// down, and every entry is clamped to 1..255 so the file stays baseline.
#pragma once

#include <array>
#include <cstdint>

namespace lx {

// kZigzagToNatural[k] is the row-major index of the k-th coefficient in scan order.
inline constexpr std::array<uint8_t, 64> kZigzagToNatural = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

using QuantTable = std::array<uint16_t, 64>;  // natural order

// The luminance (0) or chrominance (1) example table scaled for quality 1..100
// (values outside are clamped into that range).
QuantTable ScaledQuantTable(int which, int quality);

// A Huffman table as the DHT marker holds it: counts of codes per length 1..16, then the
// symbols in order of increasing code length.
struct HuffmanSpec {
    std::array<uint8_t, 16> counts{};
    std::array<uint8_t, 256> symbols{};
    int symbolCount() const;
};

// The example tables: DC or AC, luminance (0) or chrominance (1).
const HuffmanSpec& StandardDcSpec(int which);
const HuffmanSpec& StandardAcSpec(int which);

}  // namespace lx
