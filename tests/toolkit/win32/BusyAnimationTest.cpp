// The busy animation over a grey window: it draws ring frames centred where it was started,
// keeps the background under them, stops drawing when paused, and ends its thread and frees
// its objects when destroyed.
#include <windows.h>

#include <gtest/gtest.h>

#include "BusyAnimation.h"
#include "ThreadTestHelpers.h"

using namespace lx;
using lxtest::PumpFor;
using lxtest::ThreadsOfThisProcess;

namespace {

LRESULT CALLBACK GreyProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_ERASEBKGND) {
        RECT rc;
        GetClientRect(hwnd, &rc);
        HBRUSH brush = CreateSolidBrush(0x464646);
        FillRect(reinterpret_cast<HDC>(wParam), &rc, brush);
        DeleteObject(brush);
        return 1;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

// The 48 x 48 square around `centre` as read from the window: 0xRRGGBB values.
std::vector<uint32_t> Square(HWND view, POINT centre) {
    std::vector<uint32_t> out;
    HDC dc = GetDC(view);
    for (int y = -24; y < 24; ++y)
        for (int x = -24; x < 24; ++x) {
            const COLORREF c = GetPixel(dc, centre.x + x, centre.y + y);
            out.push_back(static_cast<uint32_t>(GetRValue(c)) << 16 | GetGValue(c) << 8 | GetBValue(c));
        }
    ReleaseDC(view, dc);
    return out;
}

class BusyAnimationTest : public ::testing::Test {
protected:
    void SetUp() override {
        const wchar_t* className = lxtest::RegisterTestClass(L"LxBusyAnimationTestView", GreyProc);
        view_ = CreateWindowExW(0, className, L"busy", WS_POPUP | WS_VISIBLE, 50, 50, 300, 200, nullptr,
                                nullptr, GetModuleHandleW(nullptr), nullptr);
        ASSERT_NE(view_, nullptr);
        UpdateWindow(view_);
        PumpFor(100);
    }
    void TearDown() override { DestroyWindow(view_); }
    HWND view_ = nullptr;
};

}  // namespace

TEST_F(BusyAnimationTest, DrawsTurningFramesOverTheSavedBackgroundUntilPaused) {
    BusyAnimation busy;
    ASSERT_TRUE(busy.Create(view_, GetModuleHandleW(nullptr)));
    EXPECT_GE(busy.frameCount(), 8);
    EXPECT_TRUE(busy.paused());
    const POINT centre{150, 100};
    const std::vector<uint32_t> before = Square(view_, centre);
    ASSERT_EQ(before[0], 0x464646u) << "the display gives no pixels back: nothing here could be checked";

    busy.Start(centre);
    EXPECT_FALSE(busy.paused());
    PumpFor(120);
    const std::vector<uint32_t> one = Square(view_, centre);
    PumpFor(120);
    const std::vector<uint32_t> two = Square(view_, centre);
    int light = 0;
    for (uint32_t c : one) light += (c & 0xff) > 0x70;
    EXPECT_GT(light, 40) << "ring dots are drawn";
    EXPECT_NE(one, two) << "the ring turns";
    // Corners of the square lie outside the ring: the saved background shows there.
    EXPECT_EQ(one[0], 0x464646u);
    EXPECT_EQ(one.back(), 0x464646u);
    // Outside the square nothing is drawn.
    HDC dc = GetDC(view_);
    EXPECT_EQ(GetPixel(dc, centre.x + 30, centre.y), static_cast<COLORREF>(0x464646));
    ReleaseDC(view_, dc);

    busy.Pause();
    EXPECT_TRUE(busy.paused());
    PumpFor(120);
    const std::vector<uint32_t> paused = Square(view_, centre);
    PumpFor(150);
    EXPECT_EQ(Square(view_, centre), paused);
}

TEST_F(BusyAnimationTest, DestroyingEndsTheThreadAndAMissingBitmapCreatesNothing) {
    const int threads = ThreadsOfThisProcess();
    for (int i = 0; i < 20; ++i) {
        BusyAnimation busy;
        ASSERT_TRUE(busy.Create(view_, GetModuleHandleW(nullptr)));
        if (i % 2) busy.Start({20, 20});
    }
    EXPECT_EQ(ThreadsOfThisProcess(), threads);

    BusyAnimation none;
    EXPECT_FALSE(none.Create(view_, GetModuleHandleW(L"kernel32.dll")));  // has no bitmap 420
    EXPECT_FALSE(none.created());
    none.Start({10, 10});  // harmless without frames
    none.Pause();
}
