// The encoder's parts on their own: Huffman tables and the bit stream (which the reference
// decoder would forgive going wrong in some ways), and colour conversion, alone and with 4:2:0
// downsampling, where the vector path (groups of eight pixels) and the scalar one (the rest
// of a row) must agree exactly and both follow the JFIF equations.
#include "JpegHuffman.h"
#include "JpegSampling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <queue>
#include <random>
#include <vector>

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

namespace {

using Row = std::vector<uint8_t>;

struct Ycc {
    double y, cb, cr;
};

// The JFIF equations for one pixel stored blue, green, red.
Ycc Jfif(const uint8_t* p) {
    const double b = p[0], g = p[1], r = p[2];
    return {0.299 * r + 0.587 * g + 0.114 * b, 128 - 0.168736 * r - 0.331264 * g + 0.5 * b,
            128 + 0.5 * r - 0.418688 * g - 0.081312 * b};
}

// A row of random colours that starts with white and black (when it is that long).
Row RandomRow(int width, int pixelBytes, unsigned seed) {
    std::mt19937 random(seed);
    Row row(static_cast<size_t>(width) * pixelBytes);
    for (auto& b : row) b = static_cast<uint8_t>(random());
    for (int c = 0; c < 3 && width >= 2; ++c) row[c] = 255, row[pixelBytes + c] = 0;
    return row;
}

// Luma of the top and bottom rows, then the subsampled chroma (or, from Convert, the plain
// chroma in the last two).
struct Planes {
    Row yTop, yBottom, cb, cr;
};

Planes Convert(const Row& pixels, int pixelBytes, int width, int paddedWidth) {
    Planes out{Row(paddedWidth), {}, Row(paddedWidth), Row(paddedWidth)};
    lx::ConvertRowToYcc(pixels.data(), pixelBytes, width, paddedWidth, out.yTop.data(), out.cb.data(), out.cr.data());
    return out;
}

Planes Convert420(const Row& top, const Row& bottom, int pixelBytes, int width, int paddedWidth) {
    Planes out{Row(paddedWidth), Row(paddedWidth), Row(paddedWidth / 2), Row(paddedWidth / 2)};
    lx::ConvertRowPairTo420(top.data(), bottom.data(), pixelBytes, width, paddedWidth, out.yTop.data(),
                            out.yBottom.data(), out.cb.data(), out.cr.data());
    return out;
}

TEST(JpegSampling, RowsConvertByTheJfifEquationsAndAsSinglePixelsDo) {
    for (int pixelBytes : {3, 4})
        for (int width : {1, 9, 10, 17, 37, 64, 203}) {
            SCOPED_TRACE(std::to_string(pixelBytes) + " bytes, width " + std::to_string(width));
            const Row row = RandomRow(width, pixelBytes, static_cast<unsigned>(width * pixelBytes));
            const Planes whole = Convert(row, pixelBytes, width, width + 5);
            for (int x = 0; x < width; ++x) {
                const Row one(row.begin() + x * pixelBytes, row.begin() + (x + 1) * pixelBytes);
                const Planes single = Convert(one, pixelBytes, 1, 1);
                ASSERT_EQ(whole.yTop[x], single.yTop[0]) << x;
                ASSERT_EQ(whole.cb[x], single.cb[0]) << x;
                ASSERT_EQ(whole.cr[x], single.cr[0]) << x;
                const Ycc exact = Jfif(&row[x * pixelBytes]);
                EXPECT_NEAR(whole.yTop[x], exact.y, 0.51) << x;
                EXPECT_NEAR(whole.cb[x], exact.cb, 0.51) << x;
                EXPECT_NEAR(whole.cr[x], exact.cr, 0.51) << x;
            }
            // White stays 255 and grey, black 0, and the padding repeats the last sample.
            if (width >= 2) {
                EXPECT_EQ((Row{whole.yTop[0], whole.cb[0], whole.cr[0], whole.yTop[1]}), (Row{255, 128, 128, 0}));
            }
            for (int x = width; x < width + 5; ++x) {
                EXPECT_EQ(whole.yTop[x], whole.yTop[width - 1]);
                EXPECT_EQ(whole.cr[x], whole.cr[width - 1]);
            }
        }
}

TEST(JpegSampling, SubsampledChromaIsTheMeanOfItsSquareAsSquaresAloneGiveIt) {
    for (int pixelBytes : {3, 4})
        for (int width : {2, 9, 10, 17, 37, 38, 203}) {  // odd: the last square is one column twice
            SCOPED_TRACE(std::to_string(pixelBytes) + " bytes, width " + std::to_string(width));
            const Row top = RandomRow(width, pixelBytes, static_cast<unsigned>(width));
            const Row bottom = RandomRow(width, pixelBytes, static_cast<unsigned>(width + 1000));
            const int padded = (width + 15) / 16 * 16;
            const Planes whole = Convert420(top, bottom, pixelBytes, width, padded);
            // Luma is the plain conversion of each row.
            EXPECT_EQ(whole.yTop, Convert(top, pixelBytes, width, padded).yTop);
            EXPECT_EQ(whole.yBottom, Convert(bottom, pixelBytes, width, padded).yTop);
            for (int i = 0; i < (width + 1) / 2; ++i) {
                const int x0 = 2 * i, x1 = std::min(2 * i + 1, width - 1);
                double cb = 0, cr = 0;
                for (int x : {x0, x1})
                    for (const Row* row : {&top, &bottom}) {
                        cb += Jfif(&(*row)[x * pixelBytes]).cb / 4;
                        cr += Jfif(&(*row)[x * pixelBytes]).cr / 4;
                    }
                EXPECT_NEAR(whole.cb[i], cb, 0.51) << i;
                EXPECT_NEAR(whole.cr[i], cr, 0.51) << i;
                if (x1 == x0) continue;
                const auto square = [&](const Row& row) { return Row(row.begin() + x0 * pixelBytes, row.begin() + (x1 + 1) * pixelBytes); };
                const Planes alone = Convert420(square(top), square(bottom), pixelBytes, 2, 2);
                ASSERT_EQ(whole.cb[i], alone.cb[0]) << "square " << i;
                ASSERT_EQ(whole.cr[i], alone.cr[0]) << "square " << i;
            }
            for (int i = (width + 1) / 2; i < padded / 2; ++i) {
                EXPECT_EQ(whole.cb[i], whole.cb[(width - 1) / 2]);
                EXPECT_EQ(whole.cr[i], whole.cr[(width - 1) / 2]);
            }
            EXPECT_EQ(whole.yTop[padded - 1], whole.yTop[width - 1]);
        }
}

}  // namespace
