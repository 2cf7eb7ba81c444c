#include "StatusTexts.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

TEST(StatusTexts, FileNameIsTheTextAfterTheLastBackslash) {
    EXPECT_EQ(TitleFileName(L"C:\\photos\\2024\\写真.jpg"), L"写真.jpg");
    EXPECT_EQ(TitleFileName(L"plain.jpg"), L"plain.jpg");
    EXPECT_EQ(TitleFileName(L"C:\\dir\\"), L"");
}

TEST(StatusTexts, PaneTexts) {
    const struct {
        std::wstring text, expected;
    } cases[] = {
        {ZoomText(1000), L"100%"},
        {ZoomText(1250), L"125%"},
        {ZoomText(333), L"33.3%"},
        {ZoomText(125), L"12.5%"},
        {ZoomText(9999), L"999.9%"},
        {CursorText(12, 7), L"X:12 Y:7"},
        {CursorSelectionText(1, 2, 30, 40), L"X:1 Y:2 W:30 H:40"},
        {SelectionSizeText(640, 480), L"選択 640 x 480"},
        {ImageSizeText(6000, 4000), L"6000 x 4000"},
        {DepthText(24), L"24bpp"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.text, c.expected);
}

}  // namespace
}  // namespace lx
