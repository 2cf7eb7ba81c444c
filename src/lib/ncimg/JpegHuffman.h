// Huffman coding for the JPEG encoder: code tables made from a DHT-style description,
// optimal descriptions built from symbol counts (the procedure of the JPEG standard's
// annex K.2, codes at most 16 bits long, the all-ones code left unused), and the bit
// stream that scans are written into.
//
// A BitStream holds plain bits without byte stuffing, so that streams written by
// several threads can be joined at any bit position; AppendStuffed() turns the result
// into entropy-coded bytes (0xFF followed by 0x00, last byte padded with one-bits).
#pragma once

#include "JpegTables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace lx {

struct HuffmanCodes {
    std::array<uint16_t, 256> code{};
    std::array<uint8_t, 256> length{};  // 0: the symbol has no code
};

HuffmanCodes MakeCodes(const HuffmanSpec& spec);

using SymbolCounts = std::array<uint32_t, 256>;

// The optimal table for the counted symbols. Symbols that never occur get no code;
// when nothing was counted at all the table still holds one code, so it stays valid.
HuffmanSpec OptimalSpec(const SymbolCounts& counts);

// Number of bits needed for a coefficient magnitude (its JPEG "size" category). The
// low one-bit keeps zero defined without a branch.
inline int BitLength(uint32_t magnitude) {
    return 63 - __builtin_clzll(uint64_t{magnitude} << 1 | 1);
}

class BitStream {
public:
    // Appends bits with the stream's unfinished word held in the writer itself: a writer
    // that lives in one function's loop keeps it in registers instead of storing and
    // reloading it with every code. The stream takes the word back when the writer ends.
    // A writer has room for kWriterWords whole words (one block's codes at most) without
    // checking for more.
    static constexpr size_t kWriterWords = 32;
    class Writer {
    public:
        explicit Writer(BitStream& stream)
            : stream_(stream), next_(stream.room()), acc_(stream.acc_), free_(stream.free_) {}
        ~Writer() {
            stream_.used_ = static_cast<size_t>(next_ - stream_.words_.get());
            stream_.acc_ = acc_;
            stream_.free_ = free_;
        }
        Writer(const Writer&) = delete;
        Writer& operator=(const Writer&) = delete;

        // Appends the low `count` bits of `bits` (count at most 32, higher bits zero).
        void put(uint32_t bits, int count) {
            if (count < free_) {
                free_ -= count;
                acc_ |= static_cast<uint64_t>(bits) << free_;
                return;
            }
            const int over = count - free_;
            *next_++ = acc_ | static_cast<uint64_t>(bits) >> over;
            free_ = 64 - over;
            acc_ = over ? static_cast<uint64_t>(bits) << free_ : 0;
        }

    private:
        BitStream& stream_;
        uint64_t* next_;
        uint64_t acc_;
        int free_;
    };

    void put(uint32_t bits, int count) { Writer(*this).put(bits, count); }
    void append(const BitStream& other);
    uint64_t bitCount() const { return (drained_ + used_) * 64 + (64 - free_); }
    void reserveBytes(size_t bytes) { grow(bytes / 8 + kWriterWords); }
    // Writes the bits as entropy-coded segment bytes, the last byte padded.
    void appendStuffed(std::vector<uint8_t>& out) const;
    // Writes the whole words so far as entropy-coded bytes and lets them go; the bits
    // still to come keep their place behind them.
    void drainStuffed(std::vector<uint8_t>& out);

private:
    uint64_t* room() {
        if (capacity_ - used_ < kWriterWords) grow(2 * capacity_ + kWriterWords);
        return words_.get() + used_;
    }
    void grow(size_t capacity);

    // Whole words, not value-initialised: every word is written before it is read.
    std::unique_ptr<uint64_t[]> words_;
    size_t capacity_ = 0, used_ = 0;
    size_t drained_ = 0;  // words already handed out by drainStuffed
    uint64_t acc_ = 0;
    int free_ = 64;
};

}  // namespace lx
