// The viewer's bitmaps and icons as the module carries them: the tool-bar description of 408
// matches its image strip, the strips cut into the sizes their users expect, and the pane
// icons load at 16 x 16 with transparent corners.
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "ToolBarTemplate.h"

using namespace lx;

namespace {

HINSTANCE Module() { return GetModuleHandleW(nullptr); }

SIZE BitmapSize(int id) {
    HBITMAP bitmap = static_cast<HBITMAP>(LoadImageW(Module(), MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, 0));
    BITMAP info{};
    if (bitmap) GetObjectW(bitmap, sizeof(info), &info), DeleteObject(bitmap);
    return {info.bmWidth, info.bmHeight};
}

}  // namespace

TEST(ViewerImages, TheToolBarDescriptionListsTheViewerCommandsAndMatchesItsStrip) {
    HRSRC found = FindResourceW(Module(), MAKEINTRESOURCEW(408), MAKEINTRESOURCEW(241));
    ASSERT_NE(found, nullptr);
    const auto* data = static_cast<const uint8_t*>(LockResource(LoadResource(Module(), found)));
    const auto layout = ParseToolBarTemplate(data, SizeofResource(Module(), found));
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->imageWidth, 16);
    EXPECT_EQ(layout->imageHeight, 16);
    const std::vector<uint16_t> expected = {2006, 2005, 0,    2031, 2009, 0,    2014, 2015, 0,    2081, 2082, 0,   2064,
                                            2065, 0,    2123, 2124, 2121, 2122, 0,    2105, 5511, 0,    2109, 2107};
    EXPECT_EQ(layout->commands, expected);
    const SIZE strip = BitmapSize(408);
    EXPECT_EQ(strip.cx, static_cast<LONG>(16 * layout->ImageCount()));
    EXPECT_EQ(strip.cy, 16);
}

TEST(ViewerImages, ShadowAndAnimationStripsHoldWholePieces) {
    EXPECT_EQ(BitmapSize(412).cx, 25);
    EXPECT_EQ(BitmapSize(412).cy, 5);
    const SIZE busy = BitmapSize(420);
    EXPECT_EQ(busy.cy, 48);
    EXPECT_EQ(busy.cx % 48, 0);
    EXPECT_GE(busy.cx / 48, 8);
}

TEST(ViewerImages, PaneIconsLoadAtSixteenPixelsWithTransparency) {
    for (int id : {201, 204, 205}) {
        HICON icon = static_cast<HICON>(LoadImageW(Module(), MAKEINTRESOURCEW(id), IMAGE_ICON, 16, 16, 0));
        ASSERT_NE(icon, nullptr) << id;
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(icon, &info));
        BITMAP colour{};
        GetObjectW(info.hbmColor, sizeof(colour), &colour);
        EXPECT_EQ(colour.bmWidth, 16) << id;
        // The mask is set (transparent) somewhere: not every pixel is painted.
        HDC dc = CreateCompatibleDC(nullptr);
        HGDIOBJ old = SelectObject(dc, info.hbmMask);
        int transparent = 0;
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) transparent += GetPixel(dc, x, y) != 0;
        SelectObject(dc, old);
        DeleteDC(dc);
        EXPECT_GT(transparent, 0) << id;
        EXPECT_LT(transparent, 256) << id;
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        DestroyIcon(icon);
    }
}
