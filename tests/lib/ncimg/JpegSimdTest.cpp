// The JPEG encoder's AVX2 and AVX-512 paths against its plain ones, which JpegWriterTest
// holds to the reference tools: the same input must give the same output to the bit,
// extremes included. Each level the processor has is compared; on one without AVX2 there is
// only the plain path, and nothing to compare.
#include "JpegCoefficients.h"
#include "JpegDct.h"
#include "JpegSampling.h"
#include "JpegScans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using lx::JpegSimd;

namespace {

// The levels above the plain one that this processor runs.
std::vector<JpegSimd> WiderLevels() {
    std::vector<JpegSimd> levels;
    for (int l = 1; l <= static_cast<int>(lx::BestJpegSimd()); ++l) levels.push_back(static_cast<JpegSimd>(l));
    return levels;
}

#define REQUIRE_WIDER_LEVELS() \
    if (WiderLevels().empty()) GTEST_SKIP() << "no AVX2 on this processor: one path only"

// Samples in one of several patterns: random, all black, all white, black and white at
// random, and the checkerboard (rows `stride` apart) that gives the largest high-frequency
// coefficients.
std::vector<uint8_t> Samples(size_t count, int pattern, std::mt19937& random, size_t stride = 1) {
    std::vector<uint8_t> v(count);
    for (size_t i = 0; i < count; ++i) {
        const uint32_t r = random();
        switch (pattern) {
            case 0: v[i] = static_cast<uint8_t>(r); break;
            case 1: v[i] = 0; break;
            case 2: v[i] = 255; break;
            case 3: v[i] = r & 1 ? 255 : 0; break;
            default: v[i] = (i % stride + i / stride) & 1 ? 255 : 0; break;
        }
    }
    return v;
}

constexpr int kPatterns = 5;

}  // namespace

TEST(JpegSimd, DctAndQuantisationMatchThePlainPath) {
    REQUIRE_WIDER_LEVELS();
    std::mt19937 random(3);
    // An odd count (the last block alone on the two-block path) and an odd stride.
    constexpr int kBlocks = 301, kStride = 8 * kBlocks + 3;
    for (int quality : {1, 30, 75, 99, 100})  // 100: every divisor 1, the largest values
        for (int table : {0, 1})
            for (int pattern = 0; pattern < kPatterns; ++pattern) {
                SCOPED_TRACE("quality " + std::to_string(quality) + ", pattern " + std::to_string(pattern));
                const lx::DctQuantizer q = lx::MakeDctQuantizer(lx::ScaledQuantTable(table, quality));
                const std::vector<uint8_t> samples = Samples(8 * kStride, pattern, random, kStride);
                std::vector<int16_t> plain(64 * kBlocks, -1);
                lx::ForwardDctQuantizeRow(samples.data(), kStride, kBlocks, q, plain.data(), JpegSimd::Baseline);
                for (JpegSimd level : WiderLevels()) {
                    std::vector<int16_t> wide(64 * kBlocks, -2);
                    lx::ForwardDctQuantizeRow(samples.data(), kStride, kBlocks, q, wide.data(), level);
                    ASSERT_EQ(plain, wide) << "level " << static_cast<int>(level);
                }
            }
}

TEST(JpegSimd, SmoothingMatchesThePlainPath) {
    REQUIRE_WIDER_LEVELS();
    std::mt19937 random(4);
    // Widths around the vector steps (16 samples, 8 halved outputs) and their edges.
    for (int width : {2, 3, 16, 17, 18, 19, 33, 34, 35, 36, 50, 129})
        for (int smoothing : {1, 10, 37, 100})
            for (int pattern = 0; pattern < kPatterns; ++pattern) {
                SCOPED_TRACE("width " + std::to_string(width) + ", smoothing " + std::to_string(smoothing) +
                             ", pattern " + std::to_string(pattern));
                std::vector<uint8_t> rows[4];
                for (int r = 0; r < 4; ++r) rows[r] = Samples(width, r == 1 ? pattern : (pattern + r) % kPatterns, random);
                std::vector<uint8_t> plain(width, 1), halfPlain(width / 2, 1);
                const int half = width / 2;
                lx::SmoothRow(rows[0].data(), rows[1].data(), rows[2].data(), width, smoothing, plain.data(),
                              JpegSimd::Baseline);
                lx::SmoothDownsampleRow(rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data(), half,
                                        smoothing, halfPlain.data(), JpegSimd::Baseline);
                for (JpegSimd level : WiderLevels()) {
                    std::vector<uint8_t> wide(width, 2), halfWide(half, 2);
                    lx::SmoothRow(rows[0].data(), rows[1].data(), rows[2].data(), width, smoothing, wide.data(), level);
                    lx::SmoothDownsampleRow(rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data(), half,
                                            smoothing, halfWide.data(), level);
                    ASSERT_EQ(plain, wide) << "level " << static_cast<int>(level);
                    ASSERT_EQ(halfPlain, halfWide) << "level " << static_cast<int>(level);
                }
            }
}

// Coefficients of every size category, long runs of zeros (codes for sixteen zeros), blocks
// ending in a non-zero coefficient (no end-of-block code) and empty ones.
TEST(JpegSimd, SequentialCodingMatchesThePlainPath) {
    REQUIRE_WIDER_LEVELS();
    std::mt19937 random(6);
    lx::JpegFrame frame = lx::PlanFrame(100, 50, false, true);
    for (lx::JpegComponent& comp : frame.components)
        for (int by = 0; by < comp.blocksDown; ++by)
            for (int bx = 0; bx < comp.blocksAcross; ++bx) {
                int16_t* block = comp.block(bx, by);
                const uint32_t kind = random() % 4;
                for (int k = 0; k < 64; ++k) {
                    const int size = static_cast<int>(random() % (k == 0 ? 12 : 11));
                    const int magnitude = size ? (1 << (size - 1)) + static_cast<int>(random() % (1u << (size - 1))) : 0;
                    const bool keep = kind == 0 || (kind == 1 && random() % 8 == 0) || (kind == 2 && k % 23 == 0);
                    block[k] = static_cast<int16_t>(keep ? (random() & 1 ? magnitude : -magnitude) : 0);
                }
                if (kind == 3) block[63] = static_cast<int16_t>(-1);
            }
    lx::ScanCodes codes;
    for (int s = 0; s < 2; ++s) {
        codes.dc[s] = lx::MakeCodes(lx::StandardDcSpec(s));
        codes.ac[s] = lx::MakeCodes(lx::StandardAcSpec(s));
    }
    auto code = [&](JpegSimd level) {
        lx::BitStream bits;
        lx::DcPredictors predictors;
        lx::EncodeSequential(frame, 0, frame.mcusDown, predictors, codes, bits, level);
        std::vector<uint8_t> bytes;
        bits.appendStuffed(bytes);
        return bytes;
    };
    const std::vector<uint8_t> plain = code(JpegSimd::Baseline);
    EXPECT_GT(plain.size(), 4000u);
    for (JpegSimd level : WiderLevels()) EXPECT_EQ(plain, code(level)) << "level " << static_cast<int>(level);
}
