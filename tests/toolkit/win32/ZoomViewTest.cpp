// The image view control in a real top-level window: messages and replies, the pixels it
// draws (read back through WM_PRINTCLIENT into a DIB section, and once from the screen),
// selection, the settings records, notifications and resource use.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

#include "DibGlobal.h"
#include "Painted.h"
#include "ThreadTestHelpers.h"
#include "ZoomView.h"

using namespace lx;

namespace {

constexpr int kViewWidth = 400, kViewHeight = 300;
constexpr UINT kViewId = 21;

std::vector<ZoomViewNotify> g_notes;

LRESULT CALLBACK ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NOTIFY) {
        const auto* note = reinterpret_cast<const ZoomViewNotify*>(lParam);
        if (note->header.idFrom == kViewId) g_notes.push_back(*note);
        return 0;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

using lxtest::Painted;

uint32_t Distinct(int x, int y) { return (x * 37 + y * 11) % 256 << 16 | (x * 5) % 256 << 8 | (y * 7) % 256; }

using lxtest::Shot;
Shot Capture(HWND view) { return lxtest::PrintClient(view); }

int Channel(uint32_t c, int shift) { return static_cast<int>((c >> shift) & 0xff); }

class ZoomViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(RegisterZoomViewClass());
        const wchar_t* className = lxtest::RegisterTestClass(L"LxZoomViewTestParent", ParentProc);
        RECT outer{0, 0, kViewWidth, kViewHeight};
        AdjustWindowRect(&outer, WS_OVERLAPPEDWINDOW, FALSE);
        frame_ = CreateWindowExW(0, className, L"zoom view test", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10,
                                 outer.right - outer.left, outer.bottom - outer.top, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        ASSERT_NE(frame_, nullptr);
        view_ = CreateWindowExW(0, kZoomViewClass, L"", WS_CHILD | WS_VISIBLE, 0, 0, kViewWidth, kViewHeight, frame_,
                                reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kViewId)), GetModuleHandleW(nullptr), nullptr);
        ASSERT_NE(view_, nullptr);
        EXPECT_EQ(Send(kZvInitialize), 1);
        g_notes.clear();
    }
    void TearDown() override {
        if (frame_) DestroyWindow(frame_);
    }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) { return SendMessageW(view_, message, wParam, lParam); }
    // Hands a new picture to the view and frees what comes back.
    void Show(const PackedDib& dib, UINT message = kZvSetImage) {
        HGLOBAL previous = reinterpret_cast<HGLOBAL>(Send(message, 1, reinterpret_cast<LPARAM>(DibToGlobal(dib))));
        if (previous) GlobalFree(previous);
    }
    RECT Selection() {
        RECT rc{-1, -1, -1, -1};
        Send(kZvGetSelection, 0, reinterpret_cast<LPARAM>(&rc));
        return rc;
    }
    void Select(RECT rc) { Send(kZvSetSelection, 0, reinterpret_cast<LPARAM>(&rc)); }
    ZoomViewSettings Read(uint32_t mask) {
        ZoomViewSettings settings{};
        settings.mask = mask;
        Send(kZvReadSettings, 0, reinterpret_cast<LPARAM>(&settings));
        return settings;
    }

    HWND frame_ = nullptr;
    HWND view_ = nullptr;
};

bool operator==(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// A block that does not hold the pixels its header promises is held for the caller but
// shown as no picture at all.
TEST_F(ZoomViewTest, AnEmptyViewOrAMalformedBlockAnswersWithNoPictureAndShowsTheBackground) {
    EXPECT_EQ(Send(kZvGetImage), 0);
    EXPECT_EQ(Send(kZvGetZoom), 1000);
    EXPECT_EQ(Send(kZvCanZoom), MAKELONG(1, 1));
    HGLOBAL junk = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 64);
    auto* bytes = static_cast<uint8_t*>(GlobalLock(junk));
    bytes[0] = 40;
    bytes[4] = bytes[8] = 0xff;  // 255 x 255, far more pixels than the block holds
    bytes[12] = 1;
    bytes[14] = 24;
    GlobalUnlock(junk);
    for (HGLOBAL held : {static_cast<HGLOBAL>(nullptr), junk}) {
        EXPECT_EQ(Send(kZvSetImage, 1, reinterpret_cast<LPARAM>(held)), 0);
        EXPECT_EQ(reinterpret_cast<HGLOBAL>(Send(kZvGetImage)), held);  // still the caller's to get back
        RECT rc{1, 2, 3, 4};
        EXPECT_EQ(Send(kZvGetSelection, 0, reinterpret_cast<LPARAM>(&rc)), 0);
        EXPECT_TRUE((rc == RECT{0, 0, 0, 0}));
        // The background is what it was told, everywhere.
        EXPECT_EQ(Send(kZvSetBackground, 0, 0x123456), held ? 0x123456 : 0x464646);
        const Shot shot = Capture(view_);
        EXPECT_EQ(shot.at(0, 0), 0x563412u);  // COLORREF 0x00BBGGRR read back as 0xRRGGBB
        EXPECT_EQ(shot.at(kViewWidth / 2, kViewHeight / 2), 0x563412u);
        EXPECT_EQ(shot.at(kViewWidth - 1, kViewHeight - 1), 0x563412u);
    }
    EXPECT_EQ(reinterpret_cast<HGLOBAL>(Send(kZvSetImage, 1, 0)), junk);
    GlobalFree(junk);
}

TEST_F(ZoomViewTest, SetImageHandsBackThePreviousHandleAndCopiesWhenOnlyLent) {
    HGLOBAL first = DibToGlobal(Painted(4, 3, Distinct));
    HGLOBAL second = DibToGlobal(Painted(5, 5, Distinct));
    EXPECT_EQ(Send(kZvSetImage, 1, reinterpret_cast<LPARAM>(first)), 0);
    EXPECT_EQ(reinterpret_cast<HGLOBAL>(Send(kZvGetImage)), first);
    EXPECT_EQ(reinterpret_cast<HGLOBAL>(Send(kZvReplaceImage, 1, reinterpret_cast<LPARAM>(second))), first);
    GlobalFree(first);

    // wParam 0: the view keeps its own copy, the caller's block stays the caller's.
    HGLOBAL lent = DibToGlobal(Painted(6, 2, Distinct));
    EXPECT_EQ(reinterpret_cast<HGLOBAL>(Send(kZvSetImage, 0, reinterpret_cast<LPARAM>(lent))), second);
    GlobalFree(second);
    HGLOBAL held = reinterpret_cast<HGLOBAL>(Send(kZvGetImage));
    ASSERT_NE(held, nullptr);
    EXPECT_NE(held, lent);
    EXPECT_EQ(DibFromGlobal(held)->bytes(), DibFromGlobal(lent)->bytes());
    GlobalFree(lent);

    // Clearing hands the copy back too.
    EXPECT_EQ(reinterpret_cast<HGLOBAL>(Send(kZvSetImage, 1, 0)), held);
    GlobalFree(held);
    EXPECT_EQ(Send(kZvGetImage), 0);
}

// From 100 % up every image pixel covers zoom / 1000 screen pixels; a picture smaller than
// the view is centred, a larger one scrolled.
TEST_F(ZoomViewTest, FromFullSizeUpEveryPixelIsRepeatedCentredAlsoOnTheScreen) {
    const PackedDib dib = Painted(60, 50, Distinct);
    auto expectPixels = [&](int scale) {
        EXPECT_EQ(Send(kZvSetZoom, 1000 * scale), 1000 * scale);
        const Shot shot = Capture(view_);
        const ZoomViewSettings at = Read(kSettingsScroll);
        const int ox = std::max(0, (shot.width - 60 * scale) / 2) - at.scrollX;
        const int oy = std::max(0, (shot.height - 50 * scale) / 2) - at.scrollY;
        int wrong = 0;
        for (int y = std::max(oy, 0); y < std::min(shot.height, oy + 50 * scale); ++y)
            for (int x = std::max(ox, 0); x < std::min(shot.width, ox + 60 * scale); ++x)
                wrong += shot.at(x, y) != (dib.pixel((x - ox) / scale, (y - oy) / scale) & 0xffffff);
        EXPECT_EQ(wrong, 0) << scale;
        if (ox > 0) EXPECT_EQ(shot.at(ox - 1, oy), 0x464646u) << scale;
    };
    Show(dib);
    for (int scale : {1, 2, 3, 8}) expectPixels(scale);

    // The window on the screen shows the same.
    Send(kZvSetZoom, 1000);
    SetForegroundWindow(frame_);
    RedrawWindow(view_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    HDC dc = GetDC(view_);
    const COLORREF corner = GetPixel(dc, (kViewWidth - 60) / 2 + 3, (kViewHeight - 50) / 2 + 2);
    ReleaseDC(view_, dc);
    const uint32_t want = dib.pixel(3, 2);
    EXPECT_EQ(RGB(Channel(want, 16), Channel(want, 8), Channel(want, 0)), corner);
}

TEST_F(ZoomViewTest, HalfSizeShowsTheAverageNotAPointSampleAlsoOfPalettePictures) {
    // Alternating black and white columns; rows of 2x2 blocks with one odd pixel each. The
    // reduction's kernel reaches about eight source pixels beyond its own; within that of the
    // sides it sees the repeated edge column (black on the left, white on the right) too.
    const PackedDib dib = Painted(200, 100, [](int x, int y) -> uint32_t {
        if (y < 50) return (x % 2) ? 0xffffff : 0x000000;
        return (x % 2 == 0 && y % 2 == 0) ? 0xc80000 : 0x000000;  // one red in four: 50 red
    });
    Show(dib);
    EXPECT_EQ(Send(kZvSetZoom, 500), 500);
    const Shot shot = Capture(view_);
    const int ox = (kViewWidth - 100) / 2, oy = (kViewHeight - 50) / 2;
    for (int x = 2; x < 98; x += 5) {
        const uint32_t grey = shot.at(ox + x, oy + 10);
        const int tolerance = x < 6 || x > 93 ? 8 : 3;
        EXPECT_NEAR(Channel(grey, 16), 128, tolerance) << x;
        EXPECT_NEAR(Channel(grey, 0), 128, tolerance) << x;
        const uint32_t dim = shot.at(ox + x, oy + 37);
        EXPECT_NEAR(Channel(dim, 16), 50, 3) << x;
        EXPECT_EQ(Channel(dim, 8), 0) << x;
    }
    EXPECT_EQ(shot.at(ox - 1, oy + 10), 0x464646u);
    EXPECT_EQ(shot.at(ox + 100, oy + 10), 0x464646u);

    // A palette picture shows its colours, at full size and reduced.
    PackedDib indexed = PackedDib::Create(64, 32, 8);
    for (int i = 0; i < 256; ++i) indexed.palette()[i] = Rgbq{static_cast<uint8_t>(i), 0, static_cast<uint8_t>(255 - i), 0};
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x) indexed.row(y)[x] = static_cast<uint8_t>(x < 32 ? 10 : 200);
    Show(indexed);
    for (int zoom : {1000, 500}) {
        Send(kZvSetZoom, zoom);
        const Shot palette = Capture(view_);
        const int px = (kViewWidth - 64 * zoom / 1000) / 2, py = (kViewHeight - 32 * zoom / 1000) / 2;
        EXPECT_EQ(palette.at(px + 5 * zoom / 1000, py + 3), 0xf5000au) << zoom;   // red 245, blue 10
        EXPECT_EQ(palette.at(px + 56 * zoom / 1000, py + 3), 0x3700c8u) << zoom;  // red 55, blue 200
    }
}

TEST_F(ZoomViewTest, ZoomCommandsStepFitAndClamp) {
    Show(Painted(800, 600, Distinct));
    EXPECT_EQ(Send(kZvZoomCommand, kZoomIn), 1250);
    EXPECT_EQ(Send(kZvZoomCommand, kZoomOut), 1000);
    EXPECT_EQ(Send(kZvZoomCommand, kZoomOriginal), 1000);
    EXPECT_EQ(Send(kZvZoomCommand, kZoomWhole), 500);  // 800 x 600 into 400 x 300
    EXPECT_EQ(Send(kZvZoomCommand, 99), 500);  // unknown command changes nothing

    EXPECT_EQ(Send(kZvSetZoom, 1000000), kZoomMax);
    EXPECT_EQ(Send(kZvCanZoom), MAKELONG(0, 1));
    EXPECT_EQ(Send(kZvSetZoom, 1), kZoomMin);
    EXPECT_EQ(Send(kZvCanZoom), MAKELONG(1, 0));

    // A picture taller than wide, fitted to its width in a view that must then scroll.
    Show(Painted(200, 1000, Distinct));
    const int zoom = static_cast<int>(Send(kZvZoomCommand, kZoomFitWidth));
    EXPECT_EQ(zoom, (kViewWidth - GetSystemMetrics(SM_CXVSCROLL)) * 1000 / 200);
    SCROLLINFO info{sizeof(info), SIF_ALL};
    EXPECT_TRUE(GetScrollInfo(view_, SB_VERT, &info));
    EXPECT_GT(info.nMax, 0);
    EXPECT_TRUE(!(GetWindowLongPtrW(view_, GWL_STYLE) & WS_HSCROLL));

    // Every change reached the parent.
    ASSERT_FALSE(g_notes.empty());
    EXPECT_EQ(g_notes.back().header.code, static_cast<UINT>(kZvnZoomChanged));
    EXPECT_EQ(g_notes.back().zoom, zoom);
}

TEST_F(ZoomViewTest, SelectionRoundTripsClipsAndIsReported) {
    Show(Painted(100, 80, Distinct));
    Select({10, 20, 30, 40});
    EXPECT_TRUE((Selection() == RECT{10, 20, 30, 40}));
    ASSERT_FALSE(g_notes.empty());
    EXPECT_EQ(g_notes.back().header.code, static_cast<UINT>(kZvnSelectionSize));
    EXPECT_TRUE((g_notes.back().selection == RECT{10, 20, 30, 40}));

    Select({90, 70, -10, 500});  // clipped as ZoomGeometry's ClipSelection says
    EXPECT_TRUE((Selection() == RECT{0, 70, 90, 80}));
    EXPECT_EQ(Send(kZvSetSelection, 0, 0), 1);  // no rectangle at all: none

    // A smaller picture cuts the selection down to itself.
    Select({50, 50, 100, 80});
    Show(Painted(60, 60, Distinct));
    EXPECT_TRUE((Selection() == RECT{50, 50, 60, 60}));
}

TEST_F(ZoomViewTest, DraggingSelectsInImagePixelsAndTheHandScrolls) {
    Show(Painted(100, 100, Distinct));
    Send(kZvSetZoom, 2000);  // 200 x 200, centred at (100, 50)
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(100 + 20, 50 + 40));
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(100 + 61, 50 + 81));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(100 + 61, 50 + 81));
    EXPECT_TRUE((Selection() == RECT{10, 20, 31, 41}));
    bool sawCursor = false;
    for (const ZoomViewNotify& note : g_notes) sawCursor |= note.header.code == kZvnCursor && note.cursor.x == 30 && note.cursor.y == 40;
    EXPECT_TRUE(sawCursor);

    // A click, even one that wobbles within its pixel, selects nothing and clears the rest.
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(100 + 20, 50 + 40));
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(100 + 21, 50 + 41));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(100 + 21, 50 + 41));
    EXPECT_TRUE((Selection() == RECT{0, 0, 0, 0}));

    // The hand tool drags the picture: at 400 % it is 400 x 400 in a smaller window.
    ZoomViewSettings settings;
    settings.mask = kSettingsTool;
    settings.tool = kToolHand;
    EXPECT_EQ(Send(kZvApplySettings, 0, reinterpret_cast<LPARAM>(&settings)), 1);
    Send(kZvSetZoom, 4000);
    const ZoomViewSettings before = Read(kSettingsScroll);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 150));
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(190, 120));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(190, 120));
    ZoomViewSettings after = Read(kSettingsScroll);
    EXPECT_EQ(after.scrollX, before.scrollX + 10);
    EXPECT_EQ(after.scrollY, before.scrollY + 30);

    // Keys scroll too, and End goes to the far end of the 400-pixel picture.
    Send(WM_KEYDOWN, VK_RIGHT);
    Send(WM_KEYDOWN, VK_END);
    after = Read(kSettingsScroll);
    EXPECT_GT(after.scrollX, before.scrollX + 10);
    RECT client{};
    GetClientRect(view_, &client);
    EXPECT_EQ(after.scrollY, 400 - client.bottom);
}

TEST_F(ZoomViewTest, SettingsRecordsRoundTripAndAShortOneIsNotOverrun) {
    Show(Painted(1000, 1000, Distinct));
    Send(kZvSetZoom, 2000);
    ZoomViewSettings record = Read(0xffffffff);
    EXPECT_EQ(record.zoom, 2000);  // byte 48: the header asserts the layout

    // As a stored record: another zoom, a grid and a scroll position come back as set.
    record.zoom = 3000;
    record.scrollX = 500;
    record.scrollY = 700;
    record.gridShown = 1;
    record.gridStep = 8;
    ASSERT_EQ(Send(kZvApplySettings, 0, reinterpret_cast<LPARAM>(&record)), 1);
    EXPECT_EQ(Send(kZvGetZoom), 3000);
    const ZoomViewSettings back = Read(0xffffffff);
    EXPECT_EQ(std::memcmp(&back, &record, sizeof(record)), 0);

    // A record that says it is short is not written past its end.
    struct {
        ZoomViewSettings record;
        uint32_t guard;
    } shortOne{};
    shortOne.record.size = 28;
    shortOne.record.mask = 0xffffffff;
    shortOne.record.zoom = 0x5a5a5a5a;
    shortOne.guard = 0xa5a5a5a5;
    Send(kZvReadSettings, 0, reinterpret_cast<LPARAM>(&shortOne.record));
    EXPECT_EQ(shortOne.record.zoom, 0x5a5a5a5a);
    EXPECT_EQ(shortOne.record.background, 0x464646u);
    EXPECT_EQ(Send(kZvApplySettings, 0, 0), 0);
}

TEST_F(ZoomViewTest, GridLinesAppearInTheirColourWhenAsked) {
    Show(Painted(40, 40, [](int, int) { return 0xffffffu; }));
    Send(kZvSetZoom, 4000);  // 160 x 160 at (120, 70)
    ZoomViewSettings grid{};
    grid.mask = kSettingsGridShown | kSettingsGridStep | kSettingsGridColour;
    grid.gridShown = 1;
    grid.gridStep = 10;
    grid.gridColour = RGB(0, 255, 0);
    Send(kZvApplySettings, 0, reinterpret_cast<LPARAM>(&grid));
    const Shot shot = Capture(view_);
    EXPECT_EQ(shot.at(120 + 40, 70 + 5), 0x00ff00u);  // column 10 starts at client 40
    EXPECT_EQ(shot.at(120 + 41, 70 + 5), 0xffffffu);
    EXPECT_EQ(shot.at(120 + 5, 70 + 80), 0x00ff00u);  // row 20
}

TEST_F(ZoomViewTest, ReplacingKeepsThePositionSettingScrollsHome) {
    Show(Painted(1000, 1000, Distinct));
    Send(kZvSetZoom, 2000);
    ZoomViewSettings at{};
    at.mask = kSettingsScroll;
    at.scrollX = 300;
    at.scrollY = 200;
    Send(kZvApplySettings, 0, reinterpret_cast<LPARAM>(&at));
    Show(Painted(1000, 1000, Distinct), kZvReplaceImage);  // an edit of the same picture
    ZoomViewSettings now = Read(kSettingsScroll | kSettingsZoom);
    EXPECT_EQ(now.scrollX, 300);
    EXPECT_EQ(now.scrollY, 200);
    EXPECT_EQ(now.zoom, 2000);
    const ZoomViewSettings kept = now;
    Show(Painted(1000, 1000, Distinct), kZvSetImage);  // another picture
    now = Read(now.mask);
    EXPECT_EQ(now.scrollX, 0);
    EXPECT_EQ(now.scrollY, 0);
    EXPECT_EQ(now.zoom, 2000);
    // The viewer's round for a same-size picture: the record read before brings it back.
    Send(kZvApplySettings, 0, reinterpret_cast<LPARAM>(&kept));
    now = Read(now.mask);
    EXPECT_EQ(now.scrollX, 300);
    EXPECT_EQ(now.scrollY, 200);
}

TEST_F(ZoomViewTest, AfterAFitResizingFitsAgainWhenTheOptionAsks) {
    Show(Painted(800, 600, Distinct));
    EXPECT_EQ(Send(kZvSetOptions, kOptionRefitOnResize), 0);
    EXPECT_EQ(Send(kZvGetOptions), kOptionRefitOnResize);
    EXPECT_EQ(Send(kZvZoomCommand, kZoomWhole), 500);
    SetWindowPos(view_, nullptr, 0, 0, 200, 150, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(Send(kZvGetZoom), 250);
    // Without the option the zoom stays where it was.
    Send(kZvSetOptions, 0);
    SetWindowPos(view_, nullptr, 0, 0, 400, 300, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(Send(kZvGetZoom), 250);
    // A small picture is blown up to the window only with the enlarging bit.
    Show(Painted(40, 30, Distinct));
    EXPECT_EQ(Send(kZvZoomCommand, kZoomWhole), 1000);
    Send(kZvSetOptions, kOptionFitEnlarges | kOptionRefitOnResize);
    EXPECT_EQ(Send(kZvZoomCommand, kZoomWhole), 10000);
}

// Blocks come in either row order; the view shows both upright, reduced or not, and a
// reduced picture larger than the view shows the part scrolled to.
TEST_F(ZoomViewTest, TopDownAndBottomUpBlocksShowUprightAlsoReducedAndScrolled) {
    const auto squares = [](int x, int y) { return Distinct(x / 32, y / 32); };  // flat 32 x 32 squares
    const PackedDib dib = Painted(1200, 900, squares);
    const struct {
        bool topDown;
        int zoom, scrollX, scrollY;
    } cases[] = {{false, 1000, 0, 0}, {true, 1000, 0, 0}, {false, 500, 150, 100}, {true, 500, 150, 100},
                 {true, 500, 200, 150}};
    for (const auto& c : cases) {
        HGLOBAL block = DibToGlobal(dib);
        if (c.topDown) {
            // The same rows stored top row first, the height negative.
            auto* bytes = static_cast<uint8_t*>(GlobalLock(block));
            WriteLe32(bytes + 8, static_cast<uint32_t>(-dib.height()));
            for (int y = 0; y < dib.height(); ++y)
                std::memcpy(bytes + dib.bitsOffset() + y * dib.stride(), dib.row(y), dib.stride());
            GlobalUnlock(block);
        }
        if (HGLOBAL previous = reinterpret_cast<HGLOBAL>(Send(kZvSetImage, 1, reinterpret_cast<LPARAM>(block))))
            GlobalFree(previous);
        Send(kZvSetZoom, c.zoom);
        ZoomViewSettings at{};
        at.mask = kSettingsScroll;
        at.scrollX = c.scrollX;
        at.scrollY = c.scrollY;
        Send(kZvApplySettings, 0, reinterpret_cast<LPARAM>(&at));
        const Shot shot = Capture(view_);
        const int scale = 1000 / c.zoom;
        int wrong = 0, seen = 0;
        // The centre of every square seen, where any reduction leaves the square's colour.
        for (int y = 0; y < kViewHeight - 20; ++y)
            for (int x = 0; x < kViewWidth - 20; ++x) {
                const int ix = (x + c.scrollX) * scale, iy = (y + c.scrollY) * scale;
                if (ix % 32 != 16 || iy % 32 != 16) continue;
                ++seen;
                wrong += shot.at(x, y) != squares(ix, iy);
            }
        EXPECT_GT(seen, 20);
        EXPECT_EQ(wrong, 0) << c.topDown << " " << c.zoom << " " << c.scrollX;
    }
}

// Windows counts GDI and USER objects and kernel handles; Wine reports 0 for those counts, so
// there the private memory stands in: every picture, cached reduction and DIB section is
// hundreds of kilobytes, and 200 lost ones would be over a hundred megabytes.
TEST_F(ZoomViewTest, APictureIsHeldOnceAndResourcesStayFlatOver200Pictures) {
    // While the view shows a picture it keeps one copy: the block it was handed.
    const PackedDib big = Painted(2000, 1500, Distinct);  // 9 MB
    const long long held = lxtest::PrivateBytes();
    Show(big);
    Capture(view_);
    EXPECT_LT(lxtest::PrivateBytes() - held, static_cast<long long>(big.bytes().size() * 3 / 2));

    const PackedDib a = Painted(600, 400, Distinct), b = Painted(500, 420, Distinct);
    auto cycle = [&](int i) {
        Show(i % 2 ? a : b, i % 3 ? kZvSetImage : kZvReplaceImage);
        Send(kZvSetZoom, i % 4 ? 500 : 2000);
        Select({1, 1, 5, 5});
        Capture(view_);
    };
    for (int i = 0; i < 6; ++i) cycle(i);
    const DWORD gdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    const DWORD user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    const long long memory = lxtest::PrivateBytes();
    ASSERT_GT(memory, 0);
    for (int i = 0; i < 200; ++i) cycle(i);
    DWORD handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdi + 2);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), user + 2);
    EXPECT_LE(handlesAfter, handles + 2);
    EXPECT_LT(lxtest::PrivateBytes(), memory + (16 << 20));
}

// The floating picture's own loop reads the posted input: a drag moves it by whole image
// pixels (at 200 % two screen pixels make one), Enter takes the place, Esc gives up.
TEST_F(ZoomViewTest, AFloatingPictureIsDraggedIntoPlaceOrGivenUp) {
    Show(Painted(100, 80, Distinct));
    Send(kZvSetZoom, 2000);
    HIMAGELIST list = ImageList_Create(20, 20, ILC_COLOR24 | ILC_MASK, 1, 1);
    HDC screen = GetDC(nullptr);
    HBITMAP tile = CreateCompatibleBitmap(screen, 20, 20);
    ReleaseDC(nullptr, screen);
    ImageList_AddMasked(list, tile, RGB(255, 255, 255));
    DeleteObject(tile);
    const struct {
        std::vector<std::pair<UINT, LPARAM>> input;
        WPARAM lastKey;
        LRESULT result;
        POINT place;
    } cases[] = {
        {{}, VK_RETURN, 1, {5, 6}},
        {{{WM_LBUTTONDOWN, MAKELPARAM(40, 40)}, {WM_MOUSEMOVE, MAKELPARAM(60, 30)}, {WM_LBUTTONUP, MAKELPARAM(60, 30)}},
         VK_RETURN, 1, {15, 1}},
        {{{WM_LBUTTONDOWN, MAKELPARAM(40, 40)}, {WM_MOUSEMOVE, MAKELPARAM(60, 30)}}, VK_ESCAPE, 0, {5, 6}},
    };
    for (const auto& c : cases) {
        for (const auto& [message, at] : c.input) PostMessageW(view_, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, at);
        PostMessageW(view_, WM_KEYDOWN, c.lastKey, 0);
        POINT place{5, 6};
        EXPECT_EQ(Send(kZvFloatImage, reinterpret_cast<WPARAM>(list), reinterpret_cast<LPARAM>(&place)), c.result);
        EXPECT_EQ(place.x, c.place.x);
        EXPECT_EQ(place.y, c.place.y);
    }
    EXPECT_EQ(Send(kZvFloatImage, 0, 0), 0);
    ImageList_Destroy(list);
}

}  // namespace
