// The thumbnail list in a real window: what the listing thread finds and in which order it
// makes thumbnails (seen through a WH_GETMESSAGE hook on the posted "lxi_imageloaded"),
// natural sorting, Find, failed thumbnails, stopping while thumbnails are made, the drawing
// (read back through WM_PRINTCLIENT) and resources over many List/Clear cycles.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ImageCodecs.h"
#include "Painted.h"
#include "TestFiles.h"
#include "ThreadTestHelpers.h"
#include "ThumbnailLayout.h"
#include "ThumbnailListView.h"

using namespace lx;
using lxtest::Pump;
using lxtest::ThreadsOfThisProcess;

namespace {

constexpr int kListId = 23;
CThumbnaiListView* g_list = nullptr;
std::vector<int> g_loaded;  // lParam of every "lxi_imageloaded" the list's window took
UINT g_imageLoaded = 0;
HWND g_listWindow = nullptr;

LRESULT CALLBACK ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NOTIFY && g_list) {
        LRESULT result = 0;
        if (g_list->HandleNotify(reinterpret_cast<NMHDR*>(lParam), result)) return result;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK SeePosted(int code, WPARAM removed, LPARAM lParam) {
    const auto* msg = reinterpret_cast<const MSG*>(lParam);
    if (code == HC_ACTION && removed == PM_REMOVE && msg->message == g_imageLoaded && msg->hwnd == g_listWindow)
        g_loaded.push_back(static_cast<int>(msg->lParam));
    return CallNextHookEx(nullptr, code, removed, lParam);
}

// Runs the message loop until `thread` has ended, then empties the queue.
void PumpUntilEnded(HANDLE thread) {
    while (thread && MsgWaitForMultipleObjects(1, &thread, FALSE, 20000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) Pump();
    Pump();
}

std::vector<int> Range(int from, int to) {
    std::vector<int> v;
    for (int i = from; i < to; ++i) v.push_back(i);
    return v;
}

class ThumbnailListViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        const wchar_t* className = lxtest::RegisterTestClass(L"LxThumbListTestParent", ParentProc);
        frame_ = CreateWindowExW(0, className, L"thumbnail list test", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10,
                                 640, 480, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        ASSERT_NE(frame_, nullptr);
        list_ = std::make_unique<CThumbnaiListView>();
        g_list = list_.get();
        ASSERT_TRUE(list_->Create(frame_, kListId));
        RECT rc{};
        GetClientRect(frame_, &rc);
        MoveWindow(list_->hwnd(), 0, 0, rc.right, rc.bottom, TRUE);
        g_listWindow = list_->hwnd();
        g_imageLoaded = RegisterWindowMessageW(L"lxi_imageloaded");
        g_loaded.clear();
        hook_ = SetWindowsHookExW(WH_GETMESSAGE, SeePosted, nullptr, GetCurrentThreadId());
        ASSERT_NE(hook_, nullptr);
    }
    void TearDown() override {
        if (hook_) UnhookWindowsHookEx(hook_);
        list_.reset();
        g_list = nullptr;
        if (frame_) DestroyWindow(frame_);
        Pump();
    }

    std::wstring Path(const std::string& name) const { return (dir_ / name).wstring(); }
    void Image(const std::string& name, int width = 40, int height = 30, uint32_t rgb = 0x3366cc) {
        ASSERT_NE(SaveBmpFile(dir_ / name, lxtest::Painted(width, height, [&](int, int) { return rgb; })), 0);
    }
    // `count` bitmaps named img0.bmp ... so that natural order is numeric order.
    void Images(int count, int width = 40, int height = 30) {
        for (int i = 0; i < count; ++i) Image("img" + std::to_string(i) + ".bmp", width, height);
    }
    void ListAndWait(const std::wstring& path) {
        list_->List(path);
        PumpUntilEnded(list_->ListingThread());
    }

    lxtest::ScratchDir dir_{"thumblist"};
    HWND frame_ = nullptr;
    std::unique_ptr<CThumbnaiListView> list_;
    HHOOK hook_ = nullptr;
};

}  // namespace

TEST_F(ThumbnailListViewTest, ThumbnailsStartSixteenBeforeTheOpenedFileAndWrapAround) {
    Images(100);
    ListAndWait(Path("img50.bmp"));
    ASSERT_EQ(list_->Count(), 100);
    EXPECT_EQ(list_->SelectedIndex(), 50);
    EXPECT_EQ(list_->PathAt(50), Path("img50.bmp"));
    std::vector<int> expected = Range(34, 100);
    const std::vector<int> head = Range(0, 34);
    expected.insert(expected.end(), head.begin(), head.end());
    EXPECT_EQ(g_loaded, expected);
    for (int i = 0; i < 100; ++i) {
        const ViewerListItem* item = list_->ItemAt(i);
        ASSERT_NE(item->thumbnail, nullptr) << i;
        EXPECT_EQ(item->thumbWidth, 40);
        EXPECT_EQ(item->thumbHeight, 30);
        EXPECT_EQ(item->fileType, 1u);
        EXPECT_EQ(item->flags, 0u);
    }
}

TEST_F(ThumbnailListViewTest, AFileAmongTheFirstSixteenOrAFolderStartsAtZero) {
    Images(30);
    ListAndWait(Path("img10.bmp"));
    EXPECT_EQ(list_->SelectedIndex(), 10);
    EXPECT_EQ(g_loaded, Range(0, 30));

    g_loaded.clear();
    ListAndWait(dir_.path().wstring());
    ASSERT_EQ(list_->Count(), 30);
    EXPECT_EQ(list_->SelectedIndex(), 0);
    EXPECT_EQ(ListView_GetSelectedCount(list_->hwnd()), 1u);
    EXPECT_EQ(g_loaded, Range(0, 30));

    // Neither file nor folder: an empty list.
    ListAndWait(Path("absent.bmp"));
    EXPECT_EQ(list_->Count(), 0);
    EXPECT_EQ(list_->ListingThread(), nullptr);
}

TEST_F(ThumbnailListViewTest, NaturalOrderOnlyImageNamesAndCaseInsensitiveFind) {
    for (const char* name : {"a10.jpg", "a9.jpg", "A1.jpg", "notes.txt", "c.jpg.bak", "noextension"})
        lxtest::WriteFile(dir_ / name, std::string("x"));
    std::filesystem::create_directories(dir_ / "folder.jpg");
    Image("folder.jpg/inside.bmp");
    ListAndWait(Path("a9.jpg"));
    ASSERT_EQ(list_->Count(), 3);
    EXPECT_EQ(list_->PathAt(0), Path("A1.jpg"));
    EXPECT_EQ(list_->PathAt(1), Path("a9.jpg"));
    EXPECT_EQ(list_->PathAt(2), Path("a10.jpg"));
    EXPECT_EQ(list_->SelectedIndex(), 1);
    EXPECT_EQ(list_->PathAt(3), L"");
    EXPECT_EQ(list_->ItemAt(0)->fileType, 2u);
    EXPECT_EQ(std::wstring(list_->ItemAt(0)->findData.cFileName), L"A1.jpg");

    EXPECT_EQ(list_->Find(Path("A10.JPG")), 2);
    EXPECT_EQ(list_->SelectedIndex(), 2);
    EXPECT_EQ(list_->Find(Path("a11.jpg")), -1);
    EXPECT_EQ(list_->SelectedIndex(), 2);
    // None of these decode (one byte each): all marked failed, none posted.
    EXPECT_TRUE(g_loaded.empty());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(list_->ItemAt(i)->flags & kThumbnailFailed, kThumbnailFailed);
}

TEST_F(ThumbnailListViewTest, AFailedThumbnailIsNotTriedAgainWhenAPassResumes) {
    // Enough large pictures that the pass is still running when an item is removed.
    lxtest::WriteFile(dir_ / "a-bad.bmp", std::string("BM but nothing else"));
    Images(150, 1200, 900);
    list_->List(Path("a-bad.bmp"));
    HANDLE first = list_->ListingThread();
    ASSERT_NE(first, nullptr);
    // Wait until the bad file (item 0, made first) is behind the thread.
    while (std::find(g_loaded.begin(), g_loaded.end(), 1) == g_loaded.end() &&
           MsgWaitForMultipleObjects(1, &first, FALSE, 20000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
        Pump();
    ASSERT_EQ(WaitForSingleObject(first, 0), static_cast<DWORD>(WAIT_TIMEOUT)) << "the pass ended too early";
    EXPECT_EQ(list_->ItemAt(0)->flags & kThumbnailFailed, kThumbnailFailed);
    // The file becomes readable; a retry would now succeed and post index 0.
    Image("a-bad.bmp");
    list_->RemoveAt(150);
    ASSERT_EQ(list_->Count(), 150);
    HANDLE second = list_->ListingThread();
    ASSERT_NE(second, nullptr);
    PumpUntilEnded(second);
    EXPECT_EQ(std::count(g_loaded.begin(), g_loaded.end(), 0), 0);
    EXPECT_EQ(list_->ItemAt(0)->thumbnail, nullptr);
    for (int i = 1; i < 150; ++i) EXPECT_NE(list_->ItemAt(i)->thumbnail, nullptr) << i;
}

// Clear, and destroying the window, end the thread before they free the items it works on.
TEST_F(ThumbnailListViewTest, ClearAndDestroyEndTheThreadBeforeFreeingAndQuickCyclesAreSafe) {
    Images(120, 800, 600);
    const int threadsBefore = ThreadsOfThisProcess();
    auto listThenEnd = [&](const std::function<void()>& end) {
        g_loaded.clear();
        list_->List(Path("img60.bmp"));
        while (g_loaded.size() < 3 && MsgWaitForMultipleObjects(0, nullptr, FALSE, 20000, QS_ALLINPUT) == WAIT_OBJECT_0)
            Pump();
        HANDLE copy = nullptr;
        ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), list_->ListingThread(), GetCurrentProcess(), &copy,
                                    SYNCHRONIZE, FALSE, 0));
        EXPECT_EQ(WaitForSingleObject(copy, 0), static_cast<DWORD>(WAIT_TIMEOUT));
        end();
        EXPECT_EQ(WaitForSingleObject(copy, 0), static_cast<DWORD>(WAIT_OBJECT_0));
        CloseHandle(copy);
        EXPECT_EQ(list_->Count(), 0);
        EXPECT_EQ(list_->ListingThread(), nullptr);
    };
    listThenEnd([&] { list_->Clear(); });
    EXPECT_EQ(ListView_GetItemCount(list_->hwnd()), 0);

    // Listing again and again without waiting: each List ends the previous thread, also
    // while it is still enumerating or inside its hand-over to the window.
    for (int i = 0; i < 60; ++i) {
        list_->List(Path("img" + std::to_string(i) + ".bmp"));
        if (i % 3 == 0) Pump();
    }
    list_->Clear();
    Pump();
    EXPECT_EQ(ThreadsOfThisProcess(), threadsBefore);

    listThenEnd([&] { DestroyWindow(list_->hwnd()); });
    EXPECT_EQ(list_->hwnd(), nullptr);
}

TEST_F(ThumbnailListViewTest, MemoryStaysFlatOverManyListings) {
    Images(20, 200, 150);
    for (int i = 0; i < 5; ++i) ListAndWait(Path("img5.bmp"));  // warm up the heap and the codecs
    const long long before = lxtest::PrivateBytes();
    for (int i = 0; i < 100; ++i) ListAndWait(Path("img5.bmp"));
    list_->Clear();
    const long long growth = lxtest::PrivateBytes() - before;
    // Leaking the thumbnails alone (20 of about 11 KB each per listing) would add over 20 MB.
    EXPECT_LT(growth, 2 * 1024 * 1024) << growth;
}

TEST_F(ThumbnailListViewTest, DrawsTheSelectionBoxThumbnailGreyBoxAndShadow) {
    Image("a.bmp", 144, 72, 0xff0000);  // thumbnail 72 x 36, pure red
    lxtest::WriteFile(dir_ / "b.bmp", std::string("broken"));
    ListAndWait(Path("a.bmp"));
    ASSERT_EQ(list_->Count(), 2);
    ASSERT_NE(list_->ItemAt(0)->thumbnail, nullptr);
    ASSERT_EQ(list_->ItemAt(1)->thumbnail, nullptr);
    const SIZE cell = list_->ItemSize();
    EXPECT_GE(cell.cx, CThumbnaiListView::kCellWidth);
    EXPECT_GT(cell.cy, 0);

    const lxtest::Shot shot = lxtest::PrintClient(list_->hwnd());
    auto at = [&](int x, int y) { return shot.at(x, y); };

    // The shadow pieces as the resource holds them, to compare drawn pixels with.
    HBITMAP strip = static_cast<HBITMAP>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(412), IMAGE_BITMAP, 0, 0, 0));
    ASSERT_NE(strip, nullptr);
    HDC stripDc = CreateCompatibleDC(nullptr);
    HGDIOBJ oldStrip = SelectObject(stripDc, strip);
    auto piece = [&](int index, int x, int y) {
        const COLORREF c = GetPixel(stripDc, index * kShadowPiece + x, y);
        return static_cast<uint32_t>(GetRValue(c)) << 16 | GetGValue(c) << 8 | GetBValue(c);
    };

    RECT icon{};
    ASSERT_TRUE(list_->PictureArea(0, icon));
    const ItemBoxes a = LayOutItem({icon.left, icon.top, icon.right, icon.bottom}, {72, 36});
    // Thumbnail at the picture box's corner, red throughout.
    EXPECT_EQ(at(a.thumbnail.left, a.thumbnail.top), 0xff0000u);
    EXPECT_EQ(at(a.thumbnail.right - 1, a.thumbnail.bottom - 1), 0xff0000u);
    // Selected: the background box is white along its left strip, rounded at its corner.
    EXPECT_EQ(at(a.background.left + 1, a.background.top + 18), 0xffffffu);
    EXPECT_EQ(at(a.thumbnail.left + 30, a.background.top + 1), 0xffffffu);
    EXPECT_NE(at(a.background.left, a.background.top), 0xffffffu);
    // Shadow: the bottom and right edges repeat pieces 3 and 4, the corners are 0, 1, 2.
    EXPECT_EQ(at(a.picture.left + 12, a.picture.bottom - 3), piece(kShadowBottom, 2, 2));
    EXPECT_EQ(at(a.picture.right - 4, a.picture.top + 17), piece(kShadowRight, 1, 2));
    EXPECT_EQ(at(a.picture.right - 1, a.picture.bottom - 1), piece(kShadowBottomRight, 4, 4));
    EXPECT_EQ(at(a.picture.left + 4, a.picture.bottom - 2), piece(kShadowBottomLeft, 4, 3));
    // Outside the box but inside the cell, the list's grey.
    EXPECT_EQ(at(a.background.left - 2, a.background.top + 10), 0x696969u);

    // The failed item: unselected grey background, the placeholder box in the shadow colour.
    ASSERT_TRUE(list_->PictureArea(1, icon));
    const ItemBoxes b = LayOutItem({icon.left, icon.top, icon.right, icon.bottom}, {72, 72});
    const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW);
    const uint32_t grey = static_cast<uint32_t>(GetRValue(shadow)) << 16 | GetGValue(shadow) << 8 | GetBValue(shadow);
    EXPECT_EQ(at(b.thumbnail.left + 36, b.thumbnail.top + 36), grey);
    EXPECT_EQ(at(b.background.left + 1, b.background.top + 30), 0x696969u);
    EXPECT_EQ(at(b.picture.left + 12, b.picture.bottom - 3), piece(kShadowBottom, 2, 2));

    SelectObject(stripDc, oldStrip);
    DeleteDC(stripDc);
    DeleteObject(strip);
}

TEST_F(ThumbnailListViewTest, TheWheelScrollsOneCellPerNotchAndTheDragImageIsNotYetSupplied) {
    Images(100);
    ListAndWait(dir_.path().wstring());
    ASSERT_TRUE(GetWindowLongW(list_->hwnd(), GWL_STYLE) & WS_VSCROLL);
    // Where the first item is in client coordinates tells how far the view has scrolled.
    auto firstTop = [&] {
        RECT rc{};
        ListView_GetItemRect(list_->hwnd(), 0, &rc, LVIR_BOUNDS);
        return static_cast<int>(rc.top);
    };
    const int top = firstTop();
    const int cell = list_->ItemSize().cy;
    SendMessageW(list_->hwnd(), WM_MOUSEWHEEL, static_cast<WPARAM>(static_cast<DWORD>(-2 * WHEEL_DELTA) << 16), MAKELPARAM(100, 100));
    EXPECT_EQ(firstTop(), top - 2 * cell);
    SendMessageW(list_->hwnd(), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), MAKELPARAM(100, 100));
    EXPECT_EQ(firstTop(), top - cell);
    EXPECT_EQ(SendMessageW(list_->hwnd(), RegisterWindowMessageW(L"ShellGetDragImage"), 0, 0), 0);
}
