#include "JpegHuffman.h"

#include <gtest/gtest.h>

#include <functional>
#include <queue>
#include <random>

using lx::BitStream;
using lx::HuffmanSpec;
using lx::SymbolCounts;

namespace {

std::vector<uint8_t> Stuffed(const BitStream& bits) {
    std::vector<uint8_t> out;
    bits.appendStuffed(out);
    return out;
}

// Sum over the code lengths of 2^-length, scaled by 2^16: a prefix code needs at most
// 65536; JPEG also keeps the all-ones code free, so strictly less.
uint32_t KraftSum(const HuffmanSpec& spec) {
    uint32_t sum = 0;
    for (int length = 1; length <= 16; ++length) sum += spec.counts[length - 1] << (16 - length);
    return sum;
}

uint64_t CodedBits(const HuffmanSpec& spec, const SymbolCounts& counts) {
    const lx::HuffmanCodes codes = lx::MakeCodes(spec);
    uint64_t bits = 0;
    for (int s = 0; s < 256; ++s) bits += static_cast<uint64_t>(counts[s]) * codes.length[s];
    return bits;
}

// Cost of a textbook Huffman code over the counts plus one reserved symbol of count 1,
// when no code gets longer than 16 bits.
uint64_t TextbookBits(const SymbolCounts& counts) {
    std::priority_queue<uint64_t, std::vector<uint64_t>, std::greater<>> queue;
    uint64_t reserved = 1, total = 0;
    queue.push(reserved);
    for (uint32_t c : counts)
        if (c) queue.push(c);
    while (queue.size() > 1) {
        const uint64_t a = queue.top();
        queue.pop();
        const uint64_t b = queue.top();
        queue.pop();
        total += a + b;  // every merge adds one bit to each symbol below it
        queue.push(a + b);
    }
    return total;
}

}  // namespace

TEST(JpegHuffman, ExampleLuminanceDcCodesAreCanonical) {
    const lx::HuffmanCodes codes = lx::MakeCodes(lx::StandardDcSpec(0));
    const int lengths[12] = {2, 3, 3, 3, 3, 3, 4, 5, 6, 7, 8, 9};
    for (int s = 0; s < 12; ++s) EXPECT_EQ(codes.length[s], lengths[s]) << s;
    EXPECT_EQ(codes.code[0], 0b00);
    EXPECT_EQ(codes.code[1], 0b010);
    EXPECT_EQ(codes.code[5], 0b110);
    EXPECT_EQ(codes.code[6], 0b1110);
    EXPECT_EQ(codes.code[11], 0b111111110);
    EXPECT_EQ(codes.length[12], 0);
    EXPECT_EQ(lx::StandardAcSpec(0).symbolCount(), 162);
    EXPECT_EQ(lx::StandardAcSpec(1).symbolCount(), 162);
}

TEST(JpegHuffman, OptimalTablesCostNoMoreThanTextbookHuffman) {
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        SymbolCounts counts{};
        const int used = 1 + static_cast<int>(random() % 60);
        for (int i = 0; i < used; ++i) counts[random() % 256] += 1 + random() % 1000;
        const HuffmanSpec spec = lx::OptimalSpec(counts);
        EXPECT_LT(KraftSum(spec), 65536u);
        // Dropping the reserved symbol can only save bits.
        EXPECT_LE(CodedBits(spec, counts), TextbookBits(counts)) << round;
        const lx::HuffmanCodes codes = lx::MakeCodes(spec);
        for (int s = 0; s < 256; ++s) EXPECT_EQ(codes.length[s] != 0, counts[s] != 0) << s;
    }
}

TEST(JpegHuffman, LongCodesAreLimitedToSixteenBits) {
    // Fibonacci counts make the textbook tree as deep as there are symbols.
    SymbolCounts counts{};
    uint32_t a = 1, b = 1;
    for (int s = 0; s < 30; ++s) {
        counts[s] = a;
        const uint32_t next = a + b;
        a = b;
        b = next;
    }
    const HuffmanSpec spec = lx::OptimalSpec(counts);
    EXPECT_EQ(spec.symbolCount(), 30);
    EXPECT_LT(KraftSum(spec), 65536u);
    const lx::HuffmanCodes codes = lx::MakeCodes(spec);
    for (int s = 2; s < 30; ++s) EXPECT_LE(codes.length[s], codes.length[s - 1]) << s;  // commoner, shorter
}

TEST(JpegHuffman, DegenerateCountsStillGiveAUsableTable) {
    SymbolCounts none{};
    EXPECT_EQ(lx::OptimalSpec(none).symbolCount(), 1);
    SymbolCounts one{};
    one[0x37] = 99;
    const HuffmanSpec spec = lx::OptimalSpec(one);
    ASSERT_EQ(spec.symbolCount(), 1);
    EXPECT_EQ(spec.counts[0], 1);  // one bit, "0": the all-ones code stays unused
    EXPECT_EQ(spec.symbols[0], 0x37);
}

TEST(JpegHuffman, StuffingFollowsEveryFfAndPaddingIsOnes) {
    BitStream bits;
    bits.put(0xff, 8);
    bits.put(1, 1);
    EXPECT_EQ(Stuffed(bits), (std::vector<uint8_t>{0xff, 0x00, 0xff, 0x00}));
    BitStream zeros;
    zeros.put(0, 3);
    EXPECT_EQ(Stuffed(zeros), (std::vector<uint8_t>{0x1f}));
    BitStream words;
    for (int i = 0; i < 5; ++i) words.put(0xffffffffu, 32);
    words.put(0x12, 8);
    const auto out = Stuffed(words);
    ASSERT_EQ(out.size(), 41u);
    EXPECT_EQ(out[39], 0x00);
    EXPECT_EQ(out.back(), 0x12);
}

TEST(JpegHuffman, StreamsJoinAtAnyBitPosition) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        BitStream whole, first, second;
        const int n = static_cast<int>(random() % 300);
        const int split = n ? static_cast<int>(random() % n) : 0;
        for (int i = 0; i < n; ++i) {
            const int count = 1 + static_cast<int>(random() % 32);
            const uint32_t value = static_cast<uint32_t>(random()) & (count == 32 ? ~0u : (1u << count) - 1);
            whole.put(value, count);
            (i < split ? first : second).put(value, count);
        }
        first.append(second);
        EXPECT_EQ(first.bitCount(), whole.bitCount());
        EXPECT_EQ(Stuffed(first), Stuffed(whole)) << round;
    }
}
