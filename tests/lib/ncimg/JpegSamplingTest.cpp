// Colour conversion, alone and together with 4:2:0 downsampling: the vector path (groups
// of eight pixels) and the scalar one (the rest of a row) must agree exactly, and both
// must follow the JFIF equations.
#include "JpegSampling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

struct Ycc {
    std::vector<uint8_t> y, cb, cr;
};

Ycc Convert(const std::vector<uint8_t>& pixels, int pixelBytes, int width, int paddedWidth) {
    Ycc out{std::vector<uint8_t>(paddedWidth), std::vector<uint8_t>(paddedWidth), std::vector<uint8_t>(paddedWidth)};
    lx::ConvertRowToYcc(pixels.data(), pixelBytes, width, paddedWidth, out.y.data(), out.cb.data(), out.cr.data());
    return out;
}

// A row of random colours that starts with white and black (when it is that long).
std::vector<uint8_t> RandomRow(int width, int pixelBytes, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> row(static_cast<size_t>(width) * pixelBytes);
    for (auto& b : row) b = static_cast<uint8_t>(random());
    for (int c = 0; c < 3 && width >= 2; ++c) row[c] = 255, row[pixelBytes + c] = 0;
    return row;
}

TEST(JpegSampling, WholeRowsConvertAsSinglePixelsDo) {
    for (int pixelBytes : {3, 4})
        for (int width : {1, 9, 10, 17, 37, 64, 203}) {
            const std::vector<uint8_t> row = RandomRow(width, pixelBytes, static_cast<unsigned>(width * pixelBytes));
            const Ycc whole = Convert(row, pixelBytes, width, width);
            for (int x = 0; x < width; ++x) {
                const std::vector<uint8_t> one(row.begin() + x * pixelBytes, row.begin() + (x + 1) * pixelBytes);
                const Ycc single = Convert(one, pixelBytes, 1, 1);
                ASSERT_EQ(whole.y[x], single.y[0]) << pixelBytes << " bytes, width " << width << ", x " << x;
                ASSERT_EQ(whole.cb[x], single.cb[0]) << pixelBytes << " bytes, width " << width << ", x " << x;
                ASSERT_EQ(whole.cr[x], single.cr[0]) << pixelBytes << " bytes, width " << width << ", x " << x;
            }
        }
}

TEST(JpegSampling, ConversionFollowsTheJfifEquations) {
    const int width = 203;
    for (int pixelBytes : {3, 4}) {
        const std::vector<uint8_t> row = RandomRow(width, pixelBytes, 7u + pixelBytes);
        const Ycc ycc = Convert(row, pixelBytes, width, width + 5);
        for (int x = 0; x < width; ++x) {
            const double b = row[x * pixelBytes], g = row[x * pixelBytes + 1], r = row[x * pixelBytes + 2];
            EXPECT_NEAR(ycc.y[x], 0.299 * r + 0.587 * g + 0.114 * b, 0.51) << x;
            EXPECT_NEAR(ycc.cb[x], 128 - 0.168736 * r - 0.331264 * g + 0.5 * b, 0.51) << x;
            EXPECT_NEAR(ycc.cr[x], 128 + 0.5 * r - 0.418688 * g - 0.081312 * b, 0.51) << x;
        }
        // Grey stays grey, white stays 255, and the padding repeats the last sample.
        EXPECT_EQ(ycc.y[0], 255);
        EXPECT_EQ(ycc.cb[0], 128);
        EXPECT_EQ(ycc.cr[0], 128);
        EXPECT_EQ(ycc.y[1], 0);
        for (int x = width; x < width + 5; ++x) {
            EXPECT_EQ(ycc.y[x], ycc.y[width - 1]);
            EXPECT_EQ(ycc.cr[x], ycc.cr[width - 1]);
        }
    }
}

struct Subsampled {
    std::vector<uint8_t> yTop, yBottom, cb, cr;
};

Subsampled Convert420(const std::vector<uint8_t>& top, const std::vector<uint8_t>& bottom, int pixelBytes, int width,
                      int paddedWidth) {
    Subsampled out{std::vector<uint8_t>(paddedWidth), std::vector<uint8_t>(paddedWidth),
                   std::vector<uint8_t>(paddedWidth / 2), std::vector<uint8_t>(paddedWidth / 2)};
    lx::ConvertRowPairTo420(top.data(), bottom.data(), pixelBytes, width, paddedWidth, out.yTop.data(),
                            out.yBottom.data(), out.cb.data(), out.cr.data());
    return out;
}

TEST(JpegSampling, SubsampledPairsMatchSquaresConvertedAlone) {
    for (int pixelBytes : {3, 4})
        for (int width : {2, 9, 10, 17, 38, 203}) {
            const std::vector<uint8_t> top = RandomRow(width, pixelBytes, static_cast<unsigned>(width));
            const std::vector<uint8_t> bottom = RandomRow(width, pixelBytes, static_cast<unsigned>(width + 1000));
            const Subsampled whole = Convert420(top, bottom, pixelBytes, width, width + width % 2);
            // Luma is the plain conversion of each row.
            EXPECT_EQ(whole.yTop, Convert(top, pixelBytes, width, width + width % 2).y) << width;
            EXPECT_EQ(whole.yBottom, Convert(bottom, pixelBytes, width, width + width % 2).y) << width;
            for (int i = 0; 2 * i + 1 < width; ++i) {
                const auto square = [&](const std::vector<uint8_t>& row) {
                    return std::vector<uint8_t>(row.begin() + 2 * i * pixelBytes, row.begin() + (2 * i + 2) * pixelBytes);
                };
                const Subsampled alone = Convert420(square(top), square(bottom), pixelBytes, 2, 2);
                ASSERT_EQ(whole.cb[i], alone.cb[0]) << pixelBytes << " bytes, width " << width << ", square " << i;
                ASSERT_EQ(whole.cr[i], alone.cr[0]) << pixelBytes << " bytes, width " << width << ", square " << i;
            }
        }
}

TEST(JpegSampling, SubsampledChromaIsTheMeanOfItsSquare) {
    const int width = 37;  // odd: the last square is one column twice
    for (int pixelBytes : {3, 4}) {
        const std::vector<uint8_t> top = RandomRow(width, pixelBytes, 11u), bottom = RandomRow(width, pixelBytes, 12u);
        const Subsampled out = Convert420(top, bottom, pixelBytes, width, 48);
        for (int i = 0; i < (width + 1) / 2; ++i) {
            double cb = 0, cr = 0;
            for (int x : {2 * i, std::min(2 * i + 1, width - 1)})
                for (const std::vector<uint8_t>* row : {&top, &bottom}) {
                    const double b = (*row)[x * pixelBytes], g = (*row)[x * pixelBytes + 1], r = (*row)[x * pixelBytes + 2];
                    cb += (128 - 0.168736 * r - 0.331264 * g + 0.5 * b) / 4;
                    cr += (128 + 0.5 * r - 0.418688 * g - 0.081312 * b) / 4;
                }
            EXPECT_NEAR(out.cb[i], cb, 0.51) << i;
            EXPECT_NEAR(out.cr[i], cr, 0.51) << i;
        }
        for (int i = (width + 1) / 2; i < 24; ++i) {
            EXPECT_EQ(out.cb[i], out.cb[(width - 1) / 2]);
            EXPECT_EQ(out.cr[i], out.cr[(width - 1) / 2]);
        }
        EXPECT_EQ(out.yTop[47], out.yTop[width - 1]);
    }
}

}  // namespace
