// The slide show as the host starts it: slideRunW of lxpicture.dll on a thread of its own,
// watched through its window (its text is the caption on show, the start button's text says
// whether it runs), driven with its commands, keys and mouse, over real files.
#include <windows.h>
#include <psapi.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "../lib/nccore/win32/DialogDriver.h"
#include "FrameOnThread.h"
#include "ImageCodecs.h"
#include "Painted.h"
#include "ModuleTest.h"
#include "TestFiles.h"

using namespace lx;
using lxtest::Dll;
using lxtest::WaitFor;

namespace {

constexpr wchar_t kFrameClass[] = L"LXSLIDESHOW_FRAME";
const wchar_t kSettingsKey[] = L"Software\\Northcape\\Applets\\lxpicture\\SlideShow";
const std::wstring kRunning = L"一時停止", kPaused = L"開始";  // the start button's text
const std::wstring kFailed = L"\n\nこの画像は表示できません。";

void WriteBitmap(const std::filesystem::path& path, int width, int height, uint32_t rgb = 0x808080) {
    ASSERT_NE(SaveBmpFile(path, lxtest::Painted(width, height, [=](int, int) { return rgb; })), 0);
}

// One show started through slideRunW with `path`; closed (if still open) at the end.
class Show : public lxtest::FrameOnThread {
public:
    explicit Show(const std::filesystem::path& path) : FrameOnThread("slideRunW", kFrameClass, L"\"" + path.wstring() + L"\"") {}
    bool WaitCaption(const std::wstring& caption, int ms = 20000) {
        return WaitFor([&] { return Title() == caption; }, ms);
    }
    HWND Child(int id) const { return GetDlgItem(frame(), id); }
    std::wstring StartButton() const { return lxtest::WindowText(Child(1002)); }
    // Carried out before this returns.
    void Command(UINT id, WORD code = 0) { SendMessageW(frame(), WM_COMMAND, MAKEWPARAM(id, code), 0); }
    // The pointer moved onto the button and clicked, as the user does.
    void Click(int id) {
        RECT r{};
        GetWindowRect(Child(id), &r);
        Mouse((r.left + r.right) / 2, (r.top + r.bottom) / 2, MOUSEEVENTF_MOVE);
        Mouse((r.left + r.right) / 2, (r.top + r.bottom) / 2, MOUSEEVENTF_LEFTDOWN);
        Mouse((r.left + r.right) / 2, (r.top + r.bottom) / 2, MOUSEEVENTF_LEFTUP);
    }
    void Press(WORD key) {
        SetForegroundWindow(frame());
        INPUT keys[2] = {{INPUT_KEYBOARD}, {INPUT_KEYBOARD}};
        keys[0].ki.wVk = keys[1].ki.wVk = key;
        keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
        SendInput(2, keys, sizeof(INPUT));
    }

private:
    static void Mouse(int x, int y, DWORD flags) {
        INPUT input{INPUT_MOUSE};
        input.mi.dx = x * 65535 / (GetSystemMetrics(SM_CXSCREEN) - 1);
        input.mi.dy = y * 65535 / (GetSystemMetrics(SM_CYSCREEN) - 1);
        input.mi.dwFlags = flags | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
        SendInput(1, &input, sizeof input);
        Sleep(50);
    }
};

class SlideShowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(Dll(), nullptr) << "cannot load " << LX_DLL_PATH;
        // One second per slide: the shortest the menu offers, so the tests wait little.
        const DWORD second = 1000;
        ASSERT_EQ(SHSetValueW(HKEY_CURRENT_USER, kSettingsKey, L"Interval", REG_DWORD, &second, sizeof second), 0);
    }
    void TearDown() override { SHDeleteKeyW(HKEY_CURRENT_USER, kSettingsKey); }
    // Ten seconds: no tick comes while a test steps by hand.
    void SlowDown() {
        const DWORD ten = 10000;
        SHSetValueW(HKEY_CURRENT_USER, kSettingsKey, L"Interval", REG_DWORD, &ten, sizeof ten);
    }
    void Pictures(std::initializer_list<const char*> names) {
        for (const char* name : names) WriteBitmap(dir_ / name, 40, 30);
    }
    lxtest::ScratchDir dir_{"slides"};
};

TEST_F(SlideShowTest, AFolderWithoutPicturesIsToldAndGetsNoWindow) {
    lxtest::WriteFile(dir_ / "notes.txt", std::string("not a picture"));
    std::filesystem::create_directory(dir_ / "folder.bmp");
    lxtest::WindowWatch watch;
    std::wstring line = (dir_ / "notes.txt").wstring();
    lxtest::Entry<lxtest::WideEntry>("slideRunW")(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
    const auto& seen = watch.Stop();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].className, L"#32770");
    EXPECT_EQ(seen[0].caption, L"スライド ショウ");
}

TEST_F(SlideShowTest, CoversTheScreenAndShowsAPhotographWithItsDescription) {
    std::filesystem::copy_file(lxtest::SourceDir() / "samples" / "tree.jpg", dir_ / "tree.jpg");
    Show show(dir_ / "tree.jpg");
    ASSERT_TRUE(show.frame());
    ASSERT_TRUE(show.WaitCaption(L"[1 / 1] tree.jpg\n\nTree at noon"));
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrW(show.frame(), GWL_STYLE)) & 0xFFFF0000u, 0x94000000u);
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrW(show.frame(), GWL_EXSTYLE)) & 0x88u, 0x88u);
    RECT r{}, screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    GetWindowRect(show.frame(), &r);
    EXPECT_TRUE(EqualRect(&r, &screen));
    for (int id : {1002, 1003, 1004, 1005}) EXPECT_TRUE(IsWindowVisible(show.Child(id))) << id;
    EXPECT_EQ(show.StartButton(), kRunning);
}

// A picture larger than the screen is shown whole and centred over black (where a smaller
// one goes is PlaceSlide's, SlidePictureTest).
TEST_F(SlideShowTest, ALargePictureIsFittedToTheScreenAndCentred) {
    const int w = GetSystemMetrics(SM_CXSCREEN), h = GetSystemMetrics(SM_CYSCREEN);
    WriteBitmap(dir_ / "p.bmp", 3 * w, h, 0x00FF00);
    Show show(dir_ / "p.bmp");
    ASSERT_TRUE(show.WaitCaption(L"[1 / 1] p.bmp"));
    const int top = (h - h / 3) / 2;
    const struct {
        int x, y;
        COLORREF colour;
    } samples[] = {{w / 2, h / 2, 0x00FF00}, {1, top + 1, 0x00FF00},     {w - 2, top + h / 3 - 2, 0x00FF00},
                   {w / 2, top - 3, 0},      {w / 2, top + h / 3 + 2, 0}};
    HDC screen = GetDC(nullptr);
    for (const auto& s : samples) EXPECT_EQ(GetPixel(screen, s.x, s.y) & 0xFFFFFF, s.colour) << s.x << "," << s.y;
    ReleaseDC(nullptr, screen);
}

TEST_F(SlideShowTest, PreviousRightAfterTheStartShowsTheSlideBeforeAndPauses) {
    Pictures({"a.bmp", "b.bmp", "c.bmp"});
    SlowDown();
    Show show(dir_ / "b.bmp");
    ASSERT_TRUE(show.WaitCaption(L"[2 / 3] b.bmp"));
    show.Click(1003);
    EXPECT_TRUE(show.WaitCaption(L"[1 / 3] a.bmp", 5000));
    EXPECT_EQ(show.StartButton(), kPaused);
    // A button's message other than a click does nothing; the menu's "next" steps.
    show.Command(1004, 1);
    show.Command(2205);
    EXPECT_EQ(show.Title(), L"[2 / 3] b.bmp");
    show.Press(VK_F5);  // resumes with the next slide
    EXPECT_TRUE(show.WaitCaption(L"[3 / 3] c.bmp", 5000));
    EXPECT_TRUE(WaitFor([&] { return show.StartButton() == kRunning; }, 5000));
    show.Press(VK_SPACE);
    EXPECT_TRUE(WaitFor([&] { return show.StartButton() == kPaused; }, 5000));
    // The display time chosen from the menu is kept.
    show.Command(2214);
    DWORD stored = 0, size = sizeof stored;
    SHGetValueW(HKEY_CURRENT_USER, kSettingsKey, L"Interval", nullptr, &stored, &size);
    EXPECT_EQ(stored, 5000u);
    show.Press(VK_ESCAPE);
    EXPECT_TRUE(show.WaitEnded());
}

TEST_F(SlideShowTest, ManySlideChangesKeepMemoryAndHandlesFlat) {
    for (int i = 1; i <= 14; ++i) WriteBitmap(dir_ / ("m" + std::to_string(i) + ".bmp"), 1200, 900, 0x101010 * i);
    SlowDown();
    Show show(dir_ / "m1.bmp");
    ASSERT_TRUE(show.WaitCaption(L"[1 / 14] m1.bmp"));
    auto step = [&](int times) {
        for (int i = 0; i < times; ++i) show.Command(i % 3 ? 2205 : 2204);
    };
    step(30);  // the cache full, and every kind of step taken
    PROCESS_MEMORY_COUNTERS before{sizeof before}, after{sizeof after};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &before, sizeof before);
    const DWORD gdiBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD handlesBefore = 0, handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handlesBefore);
    step(150);
    K32GetProcessMemoryInfo(GetCurrentProcess(), &after, sizeof after);
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    // Each slide is about 3 MB: one kept too many per step would add hundreds.
    EXPECT_LT(static_cast<long long>(after.PagefileUsage) - static_cast<long long>(before.PagefileUsage), 40LL << 20);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdiBefore + 10);
    EXPECT_LE(handlesAfter, handlesBefore + 10);
}

TEST_F(SlideShowTest, ABrokenFileInTheMiddleIsPassedOverWithANote) {
    Pictures({"a.bmp", "c.bmp"});
    lxtest::WriteFile(dir_ / "b.bmp", std::string("not a picture"));
    Show show(dir_ / "a.bmp");
    ASSERT_TRUE(show.WaitCaption(L"[1 / 3] a.bmp"));
    std::vector<std::wstring> seen{show.Title()};
    WaitFor([&] {
        if (seen.back() != show.Title()) seen.push_back(show.Title());
        return seen.back() == L"[3 / 3] c.bmp";
    });
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"[1 / 3] a.bmp", L"[2 / 3] b.bmp" + kFailed, L"[3 / 3] c.bmp"}));
    EXPECT_EQ(show.StartButton(), kRunning);
}

}  // namespace
