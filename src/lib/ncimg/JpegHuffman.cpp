#include "JpegHuffman.h"

#include <algorithm>
#include <cstring>

namespace lx {

HuffmanCodes MakeCodes(const HuffmanSpec& spec) {
    HuffmanCodes codes;
    uint32_t code = 0;
    int k = 0;
    for (int length = 1; length <= 16; ++length) {
        for (int i = 0; i < spec.counts[length - 1]; ++i, ++k) {
            codes.code[spec.symbols[k]] = static_cast<uint16_t>(code++);
            codes.length[spec.symbols[k]] = static_cast<uint8_t>(length);
        }
        code <<= 1;
    }
    return codes;
}

HuffmanSpec OptimalSpec(const SymbolCounts& counts) {
    // Index 256 is a reserved symbol counted once: it takes the all-ones code of the
    // longest length, which the standard forbids real symbols to use.
    constexpr int kReserved = 256;
    std::array<uint64_t, 257> freq{};
    std::copy(counts.begin(), counts.end(), freq.begin());
    freq[kReserved] = 1;
    if (std::all_of(counts.begin(), counts.end(), [](uint32_t c) { return c == 0; })) freq[0] = 1;
    std::array<int, 257> codeSize{};
    std::array<int, 257> next;
    next.fill(-1);

    for (;;) {
        // The two least frequent live entries; ties go to the higher symbol.
        int c1 = -1, c2 = -1;
        for (int i = 0; i <= kReserved; ++i)
            if (freq[i] && (c1 < 0 || freq[i] <= freq[c1])) c1 = i;
        for (int i = 0; i <= kReserved; ++i)
            if (freq[i] && i != c1 && (c2 < 0 || freq[i] <= freq[c2])) c2 = i;
        if (c2 < 0) break;
        freq[c1] += freq[c2];
        freq[c2] = 0;
        // Every symbol in both merged trees moves one level deeper.
        int i = c1;
        for (;; i = next[i]) {
            ++codeSize[i];
            if (next[i] < 0) break;
        }
        next[i] = c2;
        for (i = c2; i >= 0; i = next[i]) ++codeSize[i];
    }

    std::array<int, 33> bits{};
    for (int i = 0; i <= kReserved; ++i)
        if (codeSize[i]) ++bits[std::min(codeSize[i], 32)];
    // Shorten codes longer than 16 bits: of two leaves at the deepest level, one moves up
    // into their parent's place and the other joins a leaf split off a shorter level.
    for (int i = 32; i > 16; --i) {
        while (bits[i] > 0) {
            int j = i - 2;
            while (bits[j] == 0) --j;
            bits[i] -= 2;
            bits[i - 1] += 1;
            bits[j + 1] += 2;
            bits[j] -= 1;
        }
    }
    int longest = 16;
    while (longest > 0 && bits[longest] == 0) --longest;
    if (longest > 0) --bits[longest];  // drop the reserved symbol's code

    HuffmanSpec spec;
    for (int length = 1; length <= 16; ++length) spec.counts[length - 1] = static_cast<uint8_t>(bits[length]);
    int k = 0;
    for (int length = 1; length <= 32; ++length)
        for (int s = 0; s < kReserved; ++s)
            if (codeSize[s] == length) spec.symbols[k++] = static_cast<uint8_t>(s);
    return spec;
}

void BitStream::grow(size_t capacity) {
    if (capacity <= capacity_) return;
    std::unique_ptr<uint64_t[]> words(new uint64_t[capacity]);
    if (used_) std::memcpy(words.get(), words_.get(), used_ * sizeof(uint64_t));
    words_ = std::move(words);
    capacity_ = capacity;
}

void BitStream::append(const BitStream& other) {
    grow(used_ + other.used_ + kWriterWords);
    Writer out(*this);
    for (size_t i = 0; i < other.used_; ++i) {
        const uint64_t w = other.words_[i];
        out.put(static_cast<uint32_t>(w >> 32), 32);
        out.put(static_cast<uint32_t>(w), 32);
    }
    const int tail = 64 - other.free_;
    if (tail > 32) {
        out.put(static_cast<uint32_t>(other.acc_ >> 32), 32);
        out.put(static_cast<uint32_t>(other.acc_ >> other.free_) & ((1u << (tail - 32)) - 1), tail - 32);
    } else if (tail > 0) {
        out.put(static_cast<uint32_t>(other.acc_ >> (64 - tail)), tail);
    }
}

namespace {

// Room for the worst case (every byte stuffed) is made first and cut back to what was
// used; the words go out through a plain pointer.
uint8_t* StuffWords(const uint64_t* words, size_t count, uint8_t* p) {
    for (size_t i = 0; i < count; ++i) {
        const uint64_t w = words[i];
        // A word without any 0xFF byte needs no stuffing and goes out whole, first byte first.
        const uint64_t inverted = ~w;
        const bool hasFf = ((inverted - 0x0101010101010101ull) & ~inverted & 0x8080808080808080ull) != 0;
        const uint64_t bigEndian = __builtin_bswap64(w);
        std::memcpy(p, &bigEndian, 8);
        if (!hasFf) {
            p += 8;
        } else {
            for (int shift = 56; shift >= 0; shift -= 8) {
                *p = static_cast<uint8_t>(w >> shift);
                if (*p++ == 0xff) *p++ = 0;
            }
        }
    }
    return p;
}

}  // namespace

void BitStream::drainStuffed(std::vector<uint8_t>& out) {
    const size_t start = out.size();
    out.resize(start + used_ * 16);
    out.resize(static_cast<size_t>(StuffWords(words_.get(), used_, out.data() + start) - out.data()));
    drained_ += used_;
    used_ = 0;
}

void BitStream::appendStuffed(std::vector<uint8_t>& out) const {
    const size_t start = out.size();
    out.resize(start + used_ * 16 + 16);
    uint8_t* p = StuffWords(words_.get(), used_, out.data() + start);
    const int tail = 64 - free_;
    if (tail > 0) {
        // Pad the last byte with one-bits.
        const int padded = (tail + 7) / 8 * 8;
        const uint64_t w = acc_ | (((uint64_t{1} << (padded - tail)) - 1) << (64 - padded));
        for (int i = 0; i < padded / 8; ++i) {
            *p = static_cast<uint8_t>(w >> (56 - 8 * i));
            if (*p++ == 0xff) *p++ = 0;
        }
    }
    out.resize(static_cast<size_t>(p - out.data()));
}

}  // namespace lx
