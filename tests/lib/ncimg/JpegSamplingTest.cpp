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
