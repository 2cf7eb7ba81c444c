// The image viewer as the host starts it: imgRunW of lxpicture.dll on a thread of its own,
// driven from the test through its real windows and messages (commands, the delete question,
// the list control, the status bar), against real files and the real registry.
#include <windows.h>
#include <commctrl.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "../lib/nccore/win32/DialogDriver.h"
#include "ImageCodecs.h"
#include "Painted.h"
#include "FrameOnThread.h"
#include "ModuleTest.h"
#include "TestFiles.h"
#include "ThreadTestHelpers.h"

using namespace lx;
using lxtest::Dll;
using lxtest::ScratchDir;
using lxtest::WaitFor;

namespace {

constexpr wchar_t kFrameClass[] = L"LXIMAGEVIEW_FRAME";
constexpr int kZoomViewId = 21, kListId = 23, kInformationId = 6, kStatusId = 59393;
constexpr UINT kGetZoom = 1698;
const std::wstring kCaption = L"フォト イメージ";
const wchar_t kSettingsKey[] = L"Software\\Northcape\\Applets\\lxpicture\\MainViewer";


// 24-bit bitmap files of a given size, each a different grey.
void WriteBitmap(const std::filesystem::path& path, int width, int height, int grey = 128) {
    ASSERT_NE(SaveBmpFile(path, lxtest::Painted(width, height, [=](int, int) { return 0x010101u * grey; })), 0);
}

// One viewer started through imgRunW with `path`; closed (if still open) at the end.
class Viewer : public lxtest::FrameOnThread {
public:
    // `eightBit`: the line as rundll32 hands it to "imgRunW" named in full (eight-bit text).
    explicit Viewer(const std::filesystem::path& path, bool eightBit = false)
        : FrameOnThread("imgRunW", kFrameClass, L"\"" + path.wstring() + L"\"",
                        eightBit ? path.string() : std::string()) {}

    bool WaitTitle(const std::wstring& fileName, int ms = 20000) {
        return WaitFor([&] { return Title() == fileName + L" - " + kCaption; }, ms);
    }
    HWND List() const { return Child(kListId); }
    HWND View() const { return Child(kZoomViewId); }
    int ListCount() const { return static_cast<int>(SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0)); }
    int Selected() const { return static_cast<int>(SendMessageW(List(), LVM_GETNEXTITEM, -1, LVNI_SELECTED)); }
    int Zoom() const { return static_cast<int>(SendMessageW(View(), kGetZoom, 0, 0)); }
    HWND ToolBar() const { return Child(kToolBarId); }
    // Keys as the user presses them: a chord's keys go down and then up in the same order (a
    // quick hand lets go of Alt first); a character goes in as typed text, whatever the
    // keyboard layout.
    void Press(std::vector<WORD> chord, wchar_t character = 0) {
        SetForegroundWindow(frame());
        std::vector<INPUT> inputs;
        auto add = [&](WORD key, WORD scan, DWORD flags) {
            INPUT input{INPUT_KEYBOARD};
            input.ki = {key, scan, flags, 0, 0};
            if (key == VK_LEFT || key == VK_RIGHT) input.ki.dwFlags |= KEYEVENTF_EXTENDEDKEY;
            inputs.push_back(input);
        };
        for (WORD key : chord) add(key, 0, 0);
        for (WORD key : chord) add(key, 0, KEYEVENTF_KEYUP);
        if (character) {
            add(0, character, KEYEVENTF_UNICODE);
            add(0, character, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
        }
        SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    }
    RECT ScreenRect(HWND child) const {
        RECT r{};
        GetWindowRect(child, &r);
        return r;
    }

};

class ViewerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(Dll(), nullptr) << "cannot load " << LX_DLL_PATH;
        SHDeleteKeyW(HKEY_CURRENT_USER, kSettingsKey);
    }
    ScratchDir dir_{"viewer"};
};

TEST_F(ViewerTest, OpensTheFileAndListsItsFolderInLogicalOrder) {
    WriteBitmap(dir_ / "a10.bmp", 30, 20);
    WriteBitmap(dir_ / "a9.bmp", 64, 48);
    WriteBitmap(dir_ / "A1.bmp", 30, 20);
    lxtest::WriteFile(dir_ / "notes.txt", std::string("not a picture"));
    std::filesystem::create_directory(dir_ / "folder.bmp");  // a folder with a picture's name
    Viewer viewer(dir_ / "a9.bmp");
    ASSERT_TRUE(viewer.frame());
    ASSERT_TRUE(viewer.WaitTitle(L"a9.bmp"));
    ASSERT_TRUE(WaitFor([&] { return viewer.ListCount() == 3; }));
    EXPECT_EQ(viewer.Selected(), 1);  // A1, a9, a10
    EXPECT_EQ(viewer.StatusText(4), L"64 x 48");
    EXPECT_EQ(viewer.StatusText(5), L"24bpp");
    EXPECT_EQ(viewer.Zoom(), 1000);  // small picture: original size
    // The pointer's place: only over the picture, and gone with the picture. The real pointer
    // goes there too: a window of another test appearing under it makes the system send the
    // view a move to wherever it really is.
    RECT view{};
    GetClientRect(viewer.View(), &view);
    auto pointAt = [&](int x, int y) {
        POINT screen{x, y};
        ClientToScreen(viewer.View(), &screen);
        SetCursorPos(screen.x, screen.y);
        SendMessageW(viewer.View(), WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
    };
    pointAt(2, 2);
    EXPECT_EQ(viewer.StatusText(1), L"");
    pointAt(view.right / 2, view.bottom / 2);
    EXPECT_NE(viewer.StatusText(1), L"");
    viewer.Command(2015);
    EXPECT_TRUE(viewer.WaitTitle(L"a10.bmp"));
    EXPECT_EQ(viewer.StatusText(1), L"");
    viewer.Command(2015);
    EXPECT_TRUE(viewer.WaitTitle(L"A1.bmp"));  // wraps to the first
    viewer.Command(2014);
    EXPECT_TRUE(viewer.WaitTitle(L"a10.bmp"));  // and back over the start to the last
    // The information pane reports the file, every name and value whole, and its default
    // width shows a name beside a date.
    HWND info = viewer.Child(kInformationId);
    ASSERT_TRUE(info);
    ASSERT_TRUE(WaitFor([&] { return ListView_GetItemCount(info) >= 4; }));
    for (int row = 0; row < ListView_GetItemCount(info); ++row)
        for (int column = 0; column < 2; ++column) {
            wchar_t text[200] = {};
            ListView_GetItemText(info, row, column, text, 200);
            EXPECT_GT(ListView_GetColumnWidth(info, column), ListView_GetStringWidth(info, text)) << row << " " << column;
        }
    wchar_t date[200] = {};
    ListView_GetItemText(info, 3, 1, date, 200);
    RECT pane{};
    GetClientRect(info, &pane);
    EXPECT_GE(pane.right, ListView_GetColumnWidth(info, 0) + ListView_GetStringWidth(info, date) + 8);
}

TEST_F(ViewerTest, DeleteMovesForwardExceptAtTheEndAndTheLastFileClosesTheViewer) {
    for (int i = 0; i < 4; ++i) WriteBitmap(dir_ / ("p" + std::to_string(i) + ".bmp"), 40, 30, 40 * i);
    Viewer viewer(dir_ / "p3.bmp");
    ASSERT_TRUE(viewer.WaitTitle(L"p3.bmp"));
    ASSERT_TRUE(WaitFor([&] { return viewer.ListCount() == 4; }));
    viewer.Command(2009);
    ASSERT_FALSE(viewer.Answer(IDYES).empty());
    EXPECT_TRUE(viewer.WaitTitle(L"p2.bmp"));  // the last went: the one before it
    EXPECT_EQ(viewer.ListCount(), 3);
    EXPECT_FALSE(std::filesystem::exists(dir_ / "p3.bmp"));
    viewer.Command(2014);
    ASSERT_TRUE(viewer.WaitTitle(L"p1.bmp"));
    viewer.Command(2009);
    ASSERT_FALSE(viewer.Answer(IDYES).empty());
    EXPECT_TRUE(viewer.WaitTitle(L"p2.bmp"));  // another went: the one that moved into its place
    EXPECT_EQ(viewer.ListCount(), 2);
    EXPECT_EQ(viewer.Selected(), 1);
    viewer.Command(2009);
    ASSERT_FALSE(viewer.Answer(IDYES).empty());
    ASSERT_TRUE(viewer.WaitTitle(L"p0.bmp"));
    EXPECT_EQ(viewer.ListCount(), 1);
    // One file left: nowhere to step.
    viewer.Command(2015);
    viewer.Command(2014);
    Sleep(300);
    EXPECT_EQ(viewer.Title(), L"p0.bmp - " + kCaption);
    // "No" keeps the file and the viewer; "Yes" deletes it and closes the viewer.
    viewer.Command(2009);
    ASSERT_FALSE(viewer.Answer(IDNO).empty());
    EXPECT_TRUE(std::filesystem::exists(dir_ / "p0.bmp"));
    EXPECT_FALSE(viewer.ended());
    viewer.Command(2009);
    ASSERT_FALSE(viewer.Answer(IDYES).empty());
    EXPECT_TRUE(viewer.WaitEnded());
    EXPECT_FALSE(std::filesystem::exists(dir_ / "p0.bmp"));
}

TEST_F(ViewerTest, ASecondOpenDuringALoadIsRefused) {
    for (int i = 0; i < 3; ++i) WriteBitmap(dir_ / ("big" + std::to_string(i) + ".bmp"), 4000, 3000, 60 * i);
    Viewer viewer(dir_ / "big0.bmp");
    ASSERT_TRUE(viewer.WaitTitle(L"big0.bmp", 60000));
    ASSERT_TRUE(WaitFor([&] { return viewer.ListCount() == 3; }));
    // Both commands queue up; the second comes while the first load runs and is refused.
    viewer.Command(2015);
    viewer.Command(2015);
    ASSERT_TRUE(viewer.WaitTitle(L"big1.bmp", 60000));
    Sleep(1500);
    EXPECT_EQ(viewer.Title(), L"big1.bmp - " + kCaption);
}

TEST_F(ViewerTest, SameSizeImagesKeepTheZoomAndASmallOneShowsAtOriginalSize) {
    WriteBitmap(dir_ / "s0.bmp", 3000, 2000, 10);
    WriteBitmap(dir_ / "s1.bmp", 3000, 2000, 90);
    WriteBitmap(dir_ / "s2.bmp", 50, 40);
    Viewer viewer(dir_ / "s0.bmp");
    ASSERT_TRUE(viewer.WaitTitle(L"s0.bmp", 60000));
    const int fitted = viewer.Zoom();
    EXPECT_LT(fitted, 1000);  // larger than the view: the whole picture
    viewer.Command(2123);
    ASSERT_TRUE(WaitFor([&] { return viewer.Zoom() > fitted; }));
    const int zoomed = viewer.Zoom();
    viewer.Command(2015);
    ASSERT_TRUE(viewer.WaitTitle(L"s1.bmp", 60000));
    EXPECT_EQ(viewer.Zoom(), zoomed);
    viewer.Command(2015);
    ASSERT_TRUE(viewer.WaitTitle(L"s2.bmp", 60000));
    EXPECT_EQ(viewer.Zoom(), 1000);
}

// The list keeps the size of one column (or row) of cells whatever else changes, and the
// layout is stored on close; a stored record of another length is ignored.
TEST_F(ViewerTest, TheListKeepsItsSizeThroughPlacementAndPaneChangesAndCloseStoresIt) {
    WriteBitmap(dir_ / "a.bmp", 40, 30);
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    const int32_t below[6] = {0, 1, 1, 150, 120, 0};  // no information pane, list below
    int32_t stored[6] = {};
    auto readRecord = [&] {
        DWORD size = sizeof stored, placement = 0;
        EXPECT_EQ(RegQueryValueExW(key, L"ImageInfo", nullptr, nullptr, reinterpret_cast<BYTE*>(stored), &size), 0);
        EXPECT_EQ(size, 24u);
        EXPECT_EQ(RegQueryValueExW(key, L"WndPos", nullptr, nullptr, nullptr, &placement), 0);
        EXPECT_EQ(placement, 44u);
    };
    auto width = [](RECT r) { return r.right - r.left; };
    auto height = [](RECT r) { return r.bottom - r.top; };
    for (DWORD length : {23u, 24u}) {
        RegSetValueExW(key, L"ImageInfo", 0, REG_BINARY, reinterpret_cast<const BYTE*>(below), length);
        Viewer viewer(dir_ / "a.bmp");
        ASSERT_TRUE(viewer.WaitTitle(L"a.bmp"));
        auto view = [&] { return viewer.ScreenRect(viewer.View()); };
        auto list = [&] { return viewer.ScreenRect(viewer.List()); };
        if (length == 24) {
            EXPECT_GE(list().top, view().bottom);  // the record: the list below
            EXPECT_NEAR(height(list()), 120, 2);
            EXPECT_FALSE(IsWindowVisible(viewer.Child(kInformationId)));
            viewer.CommandNow(2106);  // back to the right
            EXPECT_GE(list().left, view().right);
            break;
        }
        EXPECT_GE(list().left, view().right);  // defaults: the list at the right
        EXPECT_TRUE(IsWindowVisible(viewer.Child(kInformationId)));
        const int atRight = width(list());
        EXPECT_LT(atRight, 200);
        viewer.CommandNow(2106);  // below: one row of cells; the picture keeps the rest
        ASSERT_GE(list().top, view().bottom);
        EXPECT_LT(height(list()), 200);
        EXPECT_GT(height(view()), height(list()));
        viewer.CommandNow(2106);
        ASSERT_GE(list().left, view().right);
        EXPECT_EQ(width(list()), atRight);
        const int viewWidth = width(view());
        viewer.CommandNow(5511);  // the room of the information pane goes to the picture
        EXPECT_GT(width(view()), viewWidth);
        EXPECT_EQ(width(list()), atRight);
        viewer.Command(2001);
        ASSERT_TRUE(viewer.WaitEnded());
        readRecord();
        EXPECT_EQ(stored[0], 0);
        EXPECT_EQ(stored[2], 0);
        EXPECT_EQ(stored[4], atRight);
    }
    readRecord();
    EXPECT_EQ(stored[0], 0);  // information pane still hidden
    EXPECT_EQ(stored[2], 0);  // list now at the right
    RegCloseKey(key);
}

TEST_F(ViewerTest, ClosingWhileThumbnailsAreMadeEndsCleanly) {
    for (int i = 0; i < 150; ++i) WriteBitmap(dir_ / ("t" + std::to_string(i) + ".bmp"), 400, 300, i);
    for (int round = 0; round < 3; ++round) {
        Viewer viewer(dir_ / "t75.bmp");
        ASSERT_TRUE(viewer.frame());
        WaitFor([&] { return viewer.ListCount() > 0; }, 5000);
        PostMessageW(viewer.frame(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(viewer.WaitEnded(30000));
    }
}

TEST_F(ViewerTest, TwoHundredImageChangesKeepMemoryAndHandlesFlat) {
    WriteBitmap(dir_ / "m0.bmp", 1200, 900, 30);
    WriteBitmap(dir_ / "m1.bmp", 900, 1200, 200);
    Viewer viewer(dir_ / "m0.bmp");
    ASSERT_TRUE(viewer.WaitTitle(L"m0.bmp"));
    ASSERT_TRUE(WaitFor([&] { return viewer.ListCount() == 2; }));
    auto change = [&](int times) {
        for (int i = 0; i < times; ++i) {
            viewer.Command(2015);
            ASSERT_TRUE(viewer.WaitTitle(i % 2 ? L"m0.bmp" : L"m1.bmp"));
        }
    };
    change(20);
    const long long before = lxtest::PrivateBytes();
    const DWORD gdiBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD handlesBefore = 0, handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handlesBefore);
    change(200);
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    // Each picture is about 3 MB: a leak of one per change would add 600 MB.
    EXPECT_LT(lxtest::PrivateBytes() - before, 40LL << 20);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdiBefore + 10);
    EXPECT_LE(handlesAfter, handlesBefore + 10);
}

TEST_F(ViewerTest, KeysKeepWorkingAfterAltArrowsAndTheMainKeyboardStarZooms) {
    WriteBitmap(dir_ / "k0.bmp", 40, 30);
    WriteBitmap(dir_ / "k1.bmp", 40, 30, 200);
    Viewer viewer(dir_ / "k0.bmp");
    ASSERT_TRUE(viewer.WaitTitle(L"k0.bmp"));
    ASSERT_TRUE(WaitFor([&] { return viewer.ListCount() == 2; }));
    const struct {
        const char* keys;
        std::vector<WORD> chord;
        wchar_t character;
        std::function<bool()> done;
    } steps[] = {
        {"numeric pad -", {VK_SUBTRACT}, 0, [&] { return viewer.Zoom() < 1000; }},
        {"*", {}, L'*', [&] { return viewer.Zoom() == 1000; }},
        {"Alt+Right", {VK_MENU, VK_RIGHT}, 0, [&] { return viewer.Title() == L"k1.bmp - " + kCaption; }},
        {"- after Alt+Right", {VK_SUBTRACT}, 0, [&] { return viewer.Zoom() < 1000; }},
    };
    for (const auto& step : steps) {
        viewer.Press(step.chord, step.character);
        EXPECT_TRUE(WaitFor(step.done, 3000)) << step.keys;
    }
}

// Started with the eight-bit line rundll32 passes; a load result that is not the one awaited
// is freed and not shown; Ctrl+E opens the file in an editor of its own process and the viewer
// stays; the slide show takes over the viewer's file.
TEST_F(ViewerTest, AnEightBitLineAStaleResultAndHandOvers) {
    WriteBitmap(dir_ / "h.bmp", 40, 30);
    WriteBitmap(dir_ / "i.bmp", 40, 30);
    {
        Viewer viewer(dir_ / "h.bmp", true);
        ASSERT_TRUE(viewer.WaitTitle(L"h.bmp"));
        PackedDib other = PackedDib::Create(99, 77, 24);
        HGLOBAL stale = GlobalAlloc(GMEM_MOVEABLE, other.bytes().size());
        std::memcpy(GlobalLock(stale), other.bytes().data(), other.bytes().size());
        GlobalUnlock(stale);
        PostMessageW(viewer.frame(), RegisterWindowMessageW(L"wm_gmil_loadimagecompleted"), 12345,
                     reinterpret_cast<LPARAM>(stale));
        EXPECT_TRUE(WaitFor([&] { return GlobalSize(stale) == 0; }, 5000));  // freed by the frame
        EXPECT_EQ(viewer.StatusText(4), L"40 x 30");
        EXPECT_TRUE(viewer.ToolEnabled(2109));  // the editor
        viewer.Command(2109);
        HWND editor = nullptr;
        WaitFor([&] { return (editor = FindWindowW(L"LXPHOTOEDIT_FRAME", nullptr)) != nullptr || viewer.ended(); },
                60000);
        ASSERT_NE(editor, nullptr);
        EXPECT_TRUE(WaitFor([&] { return lxtest::WindowText(editor) == L"h.bmp - " + kCaption; }));
        PostMessageW(editor, WM_CLOSE, 0, 0);
        WaitFor([&] { return !IsWindow(editor); });
        EXPECT_FALSE(viewer.ended());
        EXPECT_EQ(viewer.StatusText(4), L"40 x 30");
    }
    Viewer viewer(dir_ / "i.bmp");
    ASSERT_TRUE(viewer.WaitTitle(L"i.bmp"));
    ASSERT_TRUE(WaitFor([&] { return viewer.ToolEnabled(2107); }));
    viewer.Press({VK_F5});
    EXPECT_TRUE(viewer.WaitEnded());
    // The show runs in a process of its own, from the viewer's file.
    HWND show = nullptr;
    EXPECT_TRUE(WaitFor([&] {
        show = FindWindowW(L"LXSLIDESHOW_FRAME", nullptr);
        return show && lxtest::WindowText(show).rfind(L"[2 / 2] i.bmp", 0) == 0;
    }, 60000));
    if (show) PostMessageW(show, WM_CLOSE, 0, 0);
    WaitFor([&] { return FindWindowW(L"LXSLIDESHOW_FRAME", nullptr) == nullptr; });
}

TEST_F(ViewerTest, StatusBarHelpsWithMenusAndButtonsAndTellsOfAFolderInFull) {
    WriteBitmap(dir_ / "f.bmp", 40, 30);
    Viewer viewer(dir_.path());  // a folder: nothing to show
    ASSERT_TRUE(viewer.frame());
    const std::wstring none = L"閲覧可能な画像ファイルがありません。";
    ASSERT_TRUE(WaitFor([&] { return viewer.StatusText(0) == none; }));
    HWND status = viewer.Child(kStatusId);
    RECT pane{};
    SendMessageW(status, SB_GETRECT, 0, reinterpret_cast<LPARAM>(&pane));
    HDC dc = GetDC(status);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(status, WM_GETFONT, 0, 0)));
    SIZE text{};
    GetTextExtentPoint32W(dc, none.c_str(), static_cast<int>(none.size()), &text);
    SelectObject(dc, old);
    ReleaseDC(status, dc);
    EXPECT_GT(pane.right - pane.left, text.cx) << "the message is cut";
    for (UINT id : {2005u, 2009u, 2031u, 2014u, 2015u, 2081u, 2082u, 2107u, 2109u}) EXPECT_FALSE(viewer.ToolEnabled(id)) << id;
    EXPECT_TRUE(viewer.ToolEnabled(2006));

    // A highlighted menu item, then a button under the pointer, show their help line.
    HMENU menu = CreatePopupMenu();
    SendMessageW(viewer.frame(), WM_MENUSELECT, MAKEWPARAM(2123, MF_HILITE), reinterpret_cast<LPARAM>(menu));
    DestroyMenu(menu);
    EXPECT_EQ(viewer.StatusText(0), L"拡大表示します");
    SendMessageW(viewer.frame(), WM_MENUSELECT, MAKEWPARAM(0, 0xFFFF), 0);  // the menu closed
    EXPECT_EQ(viewer.StatusText(0), none);
    RECT button{};
    SendMessageW(viewer.ToolBar(), TB_GETRECT, 2006, reinterpret_cast<LPARAM>(&button));
    SendMessageW(viewer.ToolBar(), WM_MOUSEMOVE, 0, MAKELPARAM(button.left + 4, button.top + 4));
    EXPECT_EQ(viewer.StatusText(0), L"画像ファイルを開きます");
}

}  // namespace
