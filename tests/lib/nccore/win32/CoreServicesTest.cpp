#include "CoreServices.h"

#include "DialogDriver.h"
#include "ModuleResources.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

std::filesystem::path TestProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

// Waits for the stand-in tool to write what it was entered with.
std::wstring WaitForProbe(const std::filesystem::path& file) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (std::chrono::steady_clock::now() < end) {
        std::error_code ec;
        if (std::filesystem::exists(file, ec) && std::filesystem::file_size(file, ec) > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            std::ifstream in(file, std::ios::binary);
            std::string bytes((std::istreambuf_iterator<char>(in)), {});
            return std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return L"(nothing recorded)";
}

class RunModule : public ::testing::Test {
protected:
    void SetUp() override {
        probe_ = TestProgramFolder() / "runprobe.dll";
        ASSERT_TRUE(std::filesystem::exists(probe_)) << probe_;
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        out_ = std::filesystem::path(temp) /
               (L"lx-runprobe-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(GetTickCount()));
        SetEnvironmentVariableW(L"LX_RUN_PROBE_OUT", out_.c_str());
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove(out_, ec);
    }
    std::filesystem::path probe_;
    std::filesystem::path out_;
};

TEST_F(RunModule, EntersTheWideEntryWithAQuotedPath) {
    ASSERT_TRUE(lx::StartModuleEntry(probe_.wstring(), L"probeRun", lx::QuoteIfBlank(L"C:\\my photos\\a b.jpg")));
    EXPECT_EQ(WaitForProbe(out_), L"W|\"C:\\my photos\\a b.jpg\"");
}

TEST_F(RunModule, ADllStartsItselfFromTheHostProcess) {
    // As when the host has loaded the module: the DLL must name its own file, not the host's.
    HMODULE module = LoadLibraryW(probe_.c_str());
    ASSERT_NE(module, nullptr);
    auto relay = reinterpret_cast<void(CALLBACK*)(HWND, HINSTANCE, LPWSTR, int)>(
        reinterpret_cast<void*>(GetProcAddress(module, "probeRelayW")));
    ASSERT_NE(relay, nullptr);
    wchar_t argument[] = L"C:\\shots\\day one.png";
    relay(nullptr, nullptr, argument, SW_SHOWNORMAL);
    EXPECT_EQ(WaitForProbe(out_), L"W|\"C:\\shots\\day one.png\"");
    FreeLibrary(module);
}

TEST_F(RunModule, ADllStartedByRundll32StartsItselfAgain) {
    ASSERT_TRUE(lx::StartModuleEntry(probe_.wstring(), L"probeRelay", L"/clip"));
    EXPECT_EQ(WaitForProbe(out_), L"W|/clip");
}

TEST(RunModuleCommandLine, QuotesTheModuleAndPathsWithBlanks) {
    const std::wstring line = lx::ModuleEntryCommandLine(L"C:\\Program Files\\lxpicture.dll", L"slideRun", L"x.jpg");
    EXPECT_NE(line.find(L"rundll32.exe\" \"C:\\Program Files\\lxpicture.dll\",slideRun x.jpg"), std::wstring::npos)
        << line;
    for (auto [in, out] : std::vector<std::pair<std::wstring, std::wstring>>{
             {L"C:\\a\\b.jpg", L"C:\\a\\b.jpg"}, {L"C:\\a b\\c.jpg", L"\"C:\\a b\\c.jpg\""},
             {L"\"C:\\a b\\c.jpg\"", L"\"C:\\a b\\c.jpg\""}, {L"C:\\a\tb", L"\"C:\\a\tb\""}})
        EXPECT_EQ(lx::QuoteIfBlank(in), out);
    EXPECT_FALSE(lx::RunThisModule(nullptr, nullptr, L"x", L"/image"));
    EXPECT_FALSE(lx::StartModuleEntry(L"", L"pxfRun", L"x"));
}

TEST(ReplaceCharacter, TurnsBackslashesIntoSlashes) {
    wchar_t path[] = L"photos\\2024\\05\\a.jpg";
    EXPECT_EQ(lx::ReplaceCharacter(path, L'\\', L'/'), 3u);
    EXPECT_STREQ(path, L"photos/2024/05/a.jpg");
    wchar_t none[] = L"plain";
    EXPECT_EQ(lx::ReplaceCharacter(none, L'\\', L'/'), 0u);
    EXPECT_STREQ(none, L"plain");
    EXPECT_EQ(lx::ReplaceCharacter(nullptr, L'\\', L'/'), 0u);
}

TEST(ErrorDisplay, ShowsThePathAboveTheSystemText) {
    const std::wstring text = lx::SystemErrorText(ERROR_PATH_NOT_FOUND, L"Q:\\missing\\out");
    EXPECT_EQ(text.rfind(L"Q:\\missing\\out\r\n\r\n", 0), 0u) << text;
    EXPECT_GT(text.size(), std::wstring(L"Q:\\missing\\out\r\n\r\n").size() + 3);
    EXPECT_NE(text.back(), L'\n');
    EXPECT_EQ(lx::SystemErrorText(0x2FFFFFFF, nullptr), L"Error 805306367");
}

TEST(ErrorDisplay, ReturnsTheButtonPressed) {
    std::wstring seen;
    lxtest::DialogDriver driver(L"Quarry7", [&](HWND box) {
        seen = lxtest::AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDRETRY, BN_CLICKED), 0);
    });
    const int button = lx::ShowSystemError(nullptr, ERROR_ACCESS_DENIED, L"Quarry7", L"C:\\locked", MB_RETRYCANCEL | MB_ICONWARNING);
    EXPECT_EQ(button, IDRETRY);
    EXPECT_TRUE(driver.Found());
    EXPECT_NE(seen.find(L"C:\\locked"), std::wstring::npos) << seen;
}

TEST(ModuleResources, LoadsJapaneseTextsAndTellsIdsFromTexts) {
    EXPECT_EQ(lx::LoadResString(4), L"\u30d5\u30a9\u30c8 \u30ec\u30bf\u30c3\u30c1");
    EXPECT_EQ(lx::LoadResString(4401), L"MainViewer");
    EXPECT_EQ(lx::LoadResString(65000), L"");
    EXPECT_EQ(lx::TextOrResString(MAKEINTRESOURCEW(4612)), L"Status");
    EXPECT_EQ(lx::TextOrResString(L"plain"), L"plain");
    EXPECT_EQ(lx::TextOrResString(nullptr), L"");
}

// The stand-in module carries tool bar 300: images 16 x 16, commands 2001, separator, 2002,
// 2003, over a strip of three squares (red, green, blue) framed in magenta.
class ResourceModule : public ::testing::Test {
protected:
    void SetUp() override {
        module_ = LoadLibraryW((TestProgramFolder() / "runprobe.dll").c_str());
        ASSERT_NE(module_, nullptr);
    }
    void TearDown() override { FreeLibrary(module_); }
    HMODULE module_ = nullptr;
};

TEST_F(ResourceModule, ImageListStripIsCutIntoImagesWithTheMaskColour) {
    HIMAGELIST list = lx::LoadImageListStrip(module_, 16, 300, 1, 0xff00ff);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(ImageList_GetImageCount(list), 3);
    int cx = 0, cy = 0;
    ImageList_GetIconSize(list, &cx, &cy);
    EXPECT_EQ(cx, 16);
    EXPECT_EQ(cy, 16);
    // Drawn over white, the magenta frame is transparent and the square keeps its colour.
    HDC screen = GetDC(nullptr);
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP target = CreateCompatibleBitmap(screen, 16, 16);
    ReleaseDC(nullptr, screen);
    HGDIOBJ old = SelectObject(dc, target);
    RECT all = {0, 0, 16, 16};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    ImageList_Draw(list, 1, dc, 0, 0, ILD_TRANSPARENT);
    EXPECT_EQ(GetPixel(dc, 0, 0), RGB(255, 255, 255));
    EXPECT_EQ(GetPixel(dc, 8, 8), RGB(0, 255, 0));
    SelectObject(dc, old);
    DeleteObject(target);
    DeleteDC(dc);
    ImageList_Destroy(list);

    EXPECT_EQ(lx::LoadImageListStrip(module_, 16, 31999, 1, CLR_NONE), nullptr);
}

TEST_F(ResourceModule, ToolBarComesFromTheResource) {
    HWND parent = CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr,
                                  nullptr, nullptr);
    HWND bar = lx::CreateToolBarFromResource(parent, module_, 300, WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT, 59392);
    ASSERT_NE(bar, nullptr);
    ASSERT_EQ(SendMessageW(bar, TB_BUTTONCOUNT, 0, 0), 4);
    EXPECT_EQ(GetDlgCtrlID(bar), 59392);
    // Each button as "command/image", separators as "-": they take no image of the strip.
    std::wstring buttons;
    for (int i = 0; i < 4; ++i) {
        TBBUTTON button = {};
        SendMessageW(bar, TB_GETBUTTON, i, reinterpret_cast<LPARAM>(&button));
        buttons += (button.fsStyle & BTNS_SEP) ? L"- "
                                               : std::to_wstring(button.idCommand) + L"/" + std::to_wstring(button.iBitmap) + L" ";
    }
    EXPECT_EQ(buttons, L"2001/0 - 2002/1 2003/2 ");
    EXPECT_EQ(lx::CreateToolBarFromResource(parent, module_, 31999, WS_CHILD, 1), nullptr);
    const uint16_t broken[] = {1, 16, 16, 9, 2001};  // claims nine items, holds one
    EXPECT_EQ(lx::CreateToolBarFromTemplate(parent, module_, 300, broken, sizeof(broken), WS_CHILD, 1), nullptr);
    DestroyWindow(parent);
}

}  // namespace
