#include "PdfPageGeometry.h"

#include <gtest/gtest.h>

namespace {

TEST(PdfPageGeometry, FittedPageKeepsTheLongSideAtTheDefaultAndTakesTheImageProportions) {
    const struct {
        int defaultWidth, defaultHeight;
        uint32_t w, h;
        int pageWidth, pageHeight;
    } cases[] = {
        {595, 841, 4000, 3000, 793, 595},  // landscape: 4000 * 595 / 3000 = 793.33, truncated
        {595, 841, 3000, 4000, 595, 793},  // portrait
        {595, 841, 1000, 1000, 595, 595},  // square: the page height shrinks to the width
        {595, 841, 1000, 100, 841, 84},    // long strip: 100 * 841 / 1000 = 84.1
        {595, 841, 100, 1000, 84, 841},
        {595, 841, 595, 841, 595, 841},    // exactly A4: nothing changes
        {595, 841, 841, 595, 841, 595},
        {595, 841, 1, 65535, 0, 841},      // a needle truncates to a zero-width page
        {595, 841, 3, 2, 841, 560},        // 2 * 841 / 3 = 560.67: whole-number products, truncated
        {841, 595, 300, 400, 595, 793},    // a landscape default turns for a portrait image
        {595, 841, 0, 0, 595, 841},        // zero sides: a degenerate page, not a crash
        {595, 841, 0, 100, 0, 841},
        {595, 841, 100, 0, 841, 0},
    };
    for (const auto& c : cases) {
        const lx::PdfPageGeometry g = lx::ComputePageGeometry(c.defaultWidth, c.defaultHeight, c.w, c.h, true);
        EXPECT_EQ(g.pageWidth, c.pageWidth) << c.w << "x" << c.h;
        EXPECT_EQ(g.pageHeight, c.pageHeight) << c.w << "x" << c.h;
        EXPECT_EQ(g.imageX, 0.0);
        EXPECT_EQ(g.imageY, 0.0);
    }
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

}  // namespace
