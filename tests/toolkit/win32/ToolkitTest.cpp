// The toolkit's windows in real windows: message maps and who owns the objects, the
// splitter's layout and dragging, the status bar's panes, image lists cut from strips.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include "ImageStrip.h"
#include "Splitter.h"
#include "StatusBar.h"
#include "ThreadTestHelpers.h"
#include "Window.h"

using namespace lx;
using lxtest::RectInParent;

namespace {

int g_alive = 0;

class Probe : public MappedWindow<Probe> {
public:
    static std::span<const MessageEntry<Probe>> Messages();
    Probe() { ++g_alive; }
    ~Probe() override { --g_alive; }
    LRESULT OnAnswer(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam + lParam); }
    LRESULT OnCreate(WPARAM, LPARAM) { created = true; return 0; }
    bool created = false;
};

std::span<const MessageEntry<Probe>> Probe::Messages() {
    static const MessageEntry<Probe> table[] = {
        {WM_USER + 1, &Probe::OnAnswer},
        {WM_CREATE, &Probe::OnCreate},
    };
    return table;
}

HWND TopWindow() {
    return CreateWindowExW(0, L"STATIC", L"toolkit test", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 600, 400, nullptr,
                           nullptr, GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

TEST(ToolkitWindow, MapDispatchesAndTheRightSideOwnsTheObject) {
    ASSERT_TRUE(RegisterWindowClass(L"LxProbeOwned", nullptr));
    {
        Probe probe;
        ASSERT_NE(probe.Create(L"LxProbeOwned", L"", WS_POPUP, 0, 0, 0, 10, 10, nullptr, nullptr), nullptr);
        EXPECT_TRUE(probe.created);
        EXPECT_EQ(SendMessageW(probe.hwnd(), WM_USER + 1, 40, 2), 42);
        EXPECT_EQ(SendMessageW(probe.hwnd(), WM_USER + 2, 40, 2), 0);  // unmapped: default
        EXPECT_EQ(Window::FromHandle(probe.hwnd()), &probe);
        EXPECT_EQ(g_alive, 1);
        HWND hwnd = probe.hwnd();
        DestroyWindow(hwnd);
        EXPECT_EQ(probe.hwnd(), nullptr);
        EXPECT_EQ(g_alive, 1);  // the caller's object outlives its window
    }
    EXPECT_EQ(g_alive, 0);

    // Created by class name alone, as frames create controls: the window owns its object.
    ASSERT_TRUE(RegisterWindowClass(L"LxProbeSelf", [] { return static_cast<Window*>(new Probe); }));
    ASSERT_TRUE(RegisterWindowClass(L"LxProbeSelf", nullptr));  // again: still there
    HWND self = CreateWindowExW(0, L"LxProbeSelf", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(self, nullptr);
    EXPECT_EQ(g_alive, 1);
    EXPECT_EQ(SendMessageW(self, WM_USER + 1, 1, 2), 3);
    DestroyWindow(self);
    EXPECT_EQ(g_alive, 0);
}

TEST(ToolkitSplitter, PlacesPanesDragsWithinMinimumsAndShowsOnePane) {
    HWND top = TopWindow();
    Splitter splitter;
    ASSERT_TRUE(splitter.Create(top, 59648, Splitter::Bar::Vertical));
    SetWindowPos(splitter.hwnd(), nullptr, 0, 0, 400, 300, SWP_NOZORDER);
    HWND a = CreateWindowExW(0, L"STATIC", L"a", WS_CHILD | WS_VISIBLE, 0, 0, 1, 1, splitter.hwnd(), nullptr, nullptr, nullptr);
    HWND b = CreateWindowExW(0, L"STATIC", L"b", WS_CHILD | WS_VISIBLE, 0, 0, 1, 1, splitter.hwnd(), nullptr, nullptr, nullptr);
    splitter.SetPanes(a, b);
    splitter.SetMinimums(50, 60);
    splitter.SetPosition(100);
    EXPECT_EQ(RectInParent(a).right, 100);
    EXPECT_EQ(RectInParent(b).left, 104);
    EXPECT_EQ(RectInParent(b).right, 400);
    EXPECT_EQ(RectInParent(b).bottom, 300);

    // Drag the bar by its middle; the pane widths follow and the far minimum holds.
    SendMessageW(splitter.hwnd(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(102, 10));
    SendMessageW(splitter.hwnd(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(202, 10));
    EXPECT_EQ(splitter.Position(), 200);
    SendMessageW(splitter.hwnd(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(399, 10));
    SendMessageW(splitter.hwnd(), WM_LBUTTONUP, 0, MAKELPARAM(399, 10));
    EXPECT_EQ(splitter.Position(), 400 - 4 - 60);
    EXPECT_EQ(RectInParent(b).left, 340);
    // A press off the bar does not drag.
    SendMessageW(splitter.hwnd(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 10));
    SendMessageW(splitter.hwnd(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(150, 10));
    EXPECT_EQ(splitter.Position(), 336);

    splitter.ShowOnly(1);
    EXPECT_FALSE(IsWindowVisible(a));
    EXPECT_EQ(RectInParent(b).left, 0);
    EXPECT_EQ(RectInParent(b).right, 400);
    splitter.ShowOnly(-1);
    EXPECT_TRUE(IsWindowVisible(a));
    EXPECT_EQ(RectInParent(b).left, 340);
    // Keeping the second pane's size: the first takes the change as the splitter grows.
    splitter.SetSecondSize(100);
    SetWindowPos(splitter.hwnd(), nullptr, 0, 0, 500, 300, SWP_NOZORDER);
    EXPECT_EQ(RectInParent(b).left, 400);
    EXPECT_EQ(splitter.Position(), 396);
    DestroyWindow(top);
    EXPECT_EQ(splitter.hwnd(), nullptr);
}

TEST(ToolkitStatusBar, PanesAreSizedFromTheirSamplesAndCarryText) {
    INITCOMMONCONTROLSEX init{sizeof(init), ICC_BAR_CLASSES};
    InitCommonControlsEx(&init);
    HWND top = TopWindow();
    StatusBar bar;
    ASSERT_TRUE(bar.Create(top, 59393));
    bar.SetPanes({{0, L""}, {1004, L"X:9999 Y:9999 W:9999 H:9999"}, {1008, L"色数 99bpp"}});
    int edges[8] = {};
    ASSERT_EQ(SendMessageW(bar.hwnd(), SB_GETPARTS, 8, reinterpret_cast<LPARAM>(edges)), 3);
    EXPECT_EQ(edges[2], -1);
    RECT rc{};
    GetClientRect(bar.hwnd(), &rc);
    const int first = edges[0], second = edges[1] - edges[0];
    EXPECT_GT(first, 0);
    EXPECT_GT(second, 100);  // the long sample needs room
    EXPECT_GT(rc.right - edges[1], 0);
    EXPECT_LT(rc.right - edges[1], second);  // and the short one less

    EXPECT_TRUE(bar.SetText(1008, L"24bpp"));
    EXPECT_EQ(bar.Text(1008), L"24bpp");
    EXPECT_TRUE(bar.SetText(0, L""));
    EXPECT_FALSE(bar.SetText(1234, L"x"));
    EXPECT_EQ(bar.Text(1234), L"");
    DestroyWindow(top);
}

TEST(ToolkitImageStrip, CutsWholeImagesAndMasksTheTransparentColour) {
    // 50 x 16: three images of 16 and two stray columns. Image 1 is red with a magenta centre.
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 50, -16, 1, 32, BI_RGB};
    void* bits = nullptr;
    HBITMAP strip = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(strip, nullptr);
    auto* px = static_cast<uint32_t*>(bits);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 50; ++x) {
            const bool centre = x >= 16 + 6 && x < 16 + 10 && y >= 6 && y < 10;
            px[y * 50 + x] = centre ? 0xff00ff : (x / 16 == 1 ? 0xff0000 : 0x0000ff);
        }
    ImageList list = ImageListFromStrip(strip, 16, RGB(255, 0, 255));
    ASSERT_TRUE(list);
    EXPECT_EQ(ImageList_GetImageCount(list.get()), 3);
    int cx = 0, cy = 0;
    ImageList_GetIconSize(list.get(), &cx, &cy);
    EXPECT_EQ(cx, 16);
    EXPECT_EQ(cy, 16);

    HDC dc = CreateCompatibleDC(nullptr);
    BITMAPINFO target = info;
    target.bmiHeader.biWidth = 16;
    void* out = nullptr;
    HBITMAP canvas = CreateDIBSection(dc, &target, DIB_RGB_COLORS, &out, nullptr, 0);
    HGDIOBJ old = SelectObject(dc, canvas);
    RECT all{0, 0, 16, 16};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    ImageList_Draw(list.get(), 1, dc, 0, 0, ILD_TRANSPARENT);
    GdiFlush();
    const auto* drawn = static_cast<uint32_t*>(out);
    EXPECT_EQ(drawn[2 * 16 + 2] & 0xffffff, 0xff0000u);  // red image
    EXPECT_EQ(drawn[8 * 16 + 8] & 0xffffff, 0xffffffu);  // see-through centre
    SelectObject(dc, old);
    DeleteObject(canvas);
    DeleteDC(dc);

    EXPECT_FALSE(ImageListFromStrip(strip, 64, 0));  // narrower than one image
    EXPECT_FALSE(ImageListFromStrip(nullptr, 16, 0));
    DeleteObject(strip);
}
