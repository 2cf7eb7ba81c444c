// The entropy layer of the JPEG decoder: the bit reader over a scan's data, Huffman tables
// with a 9-bit lookahead, and the block decoders of sequential and progressive scans.
//
// Damaged data is handled as the common decoders do: when a scan's bits run into a marker
// or the end of the data, zeros are read from then on and the segment is marked
// insufficient, so the caller leaves the rest of its blocks empty. Restart markers are
// found again after garbage the same way (see JpegBitReader::restart).
#pragma once

#include "JpegTables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace lx {

// kZigzagToNatural followed by 16 entries of 63: a run that overshoots the block lands on
// the last coefficient instead of outside it.
extern const std::array<uint8_t, 80> kNaturalOrderPadded;

struct HuffmanDecoder {
    static constexpr int kLookBits = 9;
    // (length << 8) | symbol for every code of at most kLookBits bits, indexed by the next
    // kLookBits bits of the stream; 0 for longer codes.
    std::array<uint16_t, 1 << kLookBits> fast{};
    std::array<int32_t, 18> maxCode{};    // largest code of each length, -1 when none
    std::array<int32_t, 18> valueOffset{};  // symbol index = code + valueOffset[length]
    std::array<uint8_t, 256> symbols{};
    // For AC tables: (value << 16) | (run << 4) | bits, for every code whose coefficient value
    // also lies within the kLookBits bits (bits = code and value together); 0 otherwise.
    std::array<int32_t, 1 << kLookBits> acFast{};

    // False for a table whose counts overflow the code space (or, for DC, symbols above 15).
    bool build(const HuffmanSpec& spec, bool dc);
};

class JpegBitReader {
public:
    JpegBitReader(std::span<const uint8_t> data, size_t pos) : data_(data.data()), size_(data.size()), pos_(pos) {}

    // The position after the bytes taken so far: at the marker that ended the data, if any.
    size_t position() const { return pos_; }
    // True once a code or value needed bits past the segment's end.
    bool insufficient() const { return insufficient_ || bits_ < fakeBits_; }

    void ensure(int n) {
        if (bits_ < n) fill();
    }
    uint32_t peek(int n) const { return static_cast<uint32_t>(acc_ >> (bits_ - n)) & ((1u << n) - 1); }
    // Whether bits were taken past the data is checked once per block (noteEnd), not per code:
    // once bits_ falls below fakeBits_ it stays below until a restart.
    void skip(int n) { bits_ -= n; }
    void noteEnd() {
        if (bits_ < fakeBits_) insufficient_ = true;
    }
    uint32_t bits(int n) {
        ensure(n);
        const uint32_t v = n ? peek(n) : 0;
        skip(n);
        return v;
    }
    // A coefficient of size category s (1..16) read and sign-extended.
    int value(int s) {
        const int v = static_cast<int>(bits(s));
        return v < (1 << (s - 1)) ? v - (1 << s) + 1 : v;
    }
    int decode(const HuffmanDecoder& table) {
        ensure(32);
        const uint16_t hit = table.fast[peek(HuffmanDecoder::kLookBits)];
        if (hit) {
            skip(hit >> 8);
            return hit & 0xFF;
        }
        return decodeLong(table);
    }

    // Drops the rest of a restart interval and takes the restart marker `expected` (0..7),
    // resynchronising on damaged data: a marker of the next two intervals is left for
    // later (the intervals before it decode empty), an older one is skipped.
    void restart(int expected);

private:
    void fill();
    int decodeLong(const HuffmanDecoder& table);
    void seekMarker();

    const uint8_t* data_;
    size_t size_;
    size_t pos_;
    uint64_t acc_ = 0;
    int bits_ = 0;
    int fakeBits_ = 0;    // zero bits appended after the data ended
    int marker_ = -1;     // the marker that ended the data, once seen
    bool insufficient_ = false;
};

// One block of a sequential scan into `block` (natural order, zeroed by the caller); `dc` is
// the component's running DC value. False when the block has no AC coefficient (a flat
// block, which needs no transform). Without keepAc the AC coefficients are read past but not
// stored (the 1/8 size needs DC alone) and the block counts as flat.
bool DecodeSequentialBlock(JpegBitReader& in, const HuffmanDecoder& dcTable, const HuffmanDecoder& acTable, int& dc,
                           int16_t* block, bool keepAc = true);

// Progressive passes over one block: first DC scan, DC refinement, first AC scan (Ss..Se),
// AC refinement. `eobRun` is the scan's running end-of-band count.
void DecodeDcFirst(JpegBitReader& in, const HuffmanDecoder& dcTable, int& dc, int al, int16_t* block);
void DecodeDcRefine(JpegBitReader& in, int al, int16_t* block);
void DecodeAcFirst(JpegBitReader& in, const HuffmanDecoder& acTable, int ss, int se, int al, uint32_t& eobRun,
                   int16_t* block);
void DecodeAcRefine(JpegBitReader& in, const HuffmanDecoder& acTable, int ss, int se, int al, uint32_t& eobRun,
                    int16_t* block);

}  // namespace lx
