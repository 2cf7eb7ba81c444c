#include "PdfPageGeometry.h"

#include <gtest/gtest.h>

namespace {

struct Fitted {
    uint32_t w, h;
    int pageWidth, pageHeight;
};

TEST(PdfPageGeometry, FittedPageKeepsTheLongSideAtA4AndTakesTheImageProportions) {
    const Fitted cases[] = {
        {4000, 3000, 793, 595},  // landscape: 4000 * 595 / 3000 = 793.33, truncated
        {3000, 4000, 595, 793},  // portrait: 4000 * 595 / 3000 = 793.33
        {1000, 1000, 595, 595},  // square: the page height shrinks to the width
        {1000, 100, 841, 84},    // long strip: 100 * 841 / 1000 = 84.1
        {100, 1000, 84, 841},
        {595, 841, 595, 841},    // exactly A4: nothing changes
        {841, 595, 841, 595},
        {1, 65535, 0, 841},      // a needle truncates to a zero-width page
    };
    for (const Fitted& c : cases) {
        const lx::PdfPageGeometry g = lx::ComputePageGeometry(595, 841, c.w, c.h, true);
        EXPECT_EQ(g.pageWidth, c.pageWidth) << c.w << "x" << c.h;
        EXPECT_EQ(g.pageHeight, c.pageHeight) << c.w << "x" << c.h;
        EXPECT_EQ(g.imageX, 0.0);
        EXPECT_EQ(g.imageY, 0.0);
    }
}

TEST(PdfPageGeometry, ProductsAreWholeNumbersBeforeTheDivision) {
        const lx::PdfPageGeometry g = lx::ComputePageGeometry(595, 841, 3, 2, true);
    EXPECT_EQ(g.pageWidth, 841);
    EXPECT_EQ(g.pageHeight, 560);  // 2 * 841 / 3 = 560.67, truncated rather than rounded
}

TEST(PdfPageGeometry, UnfittedPageCentresTheImage) {
    // Landscape 4000x3000 on 841x595: the image is relatively taller, so it is centred across.
    lx::PdfPageGeometry g = lx::ComputePageGeometry(595, 841, 4000, 3000, false);
    EXPECT_EQ(g.pageWidth, 841);
    EXPECT_EQ(g.pageHeight, 595);
    EXPECT_DOUBLE_EQ(g.imageX, (841 - 4000.0 * 595 / 3000) * 0.5);
    EXPECT_EQ(g.imageY, 0.0);

    g = lx::ComputePageGeometry(595, 841, 1000, 1000, false);
    EXPECT_EQ(g.pageWidth, 595);
    EXPECT_EQ(g.pageHeight, 841);
    EXPECT_EQ(g.imageX, 0.0);
    EXPECT_DOUBLE_EQ(g.imageY, (841 - 595.0) * 0.5);
}

TEST(PdfPageGeometry, TurnsALandscapeDefaultForPortraitImages) {
    const lx::PdfPageGeometry g = lx::ComputePageGeometry(841, 595, 300, 400, true);
    EXPECT_EQ(g.pageWidth, 595);
    EXPECT_EQ(g.pageHeight, 793);
}

TEST(PdfPageGeometry, ZeroSidesGiveADegeneratePageNotACrash) {
    EXPECT_EQ(lx::ComputePageGeometry(595, 841, 0, 0, true).pageWidth, 595);
    EXPECT_EQ(lx::ComputePageGeometry(595, 841, 0, 0, true).pageHeight, 841);
    EXPECT_EQ(lx::ComputePageGeometry(595, 841, 0, 100, true).pageWidth, 0);
    EXPECT_EQ(lx::ComputePageGeometry(595, 841, 100, 0, true).pageHeight, 0);
}

}  // namespace
