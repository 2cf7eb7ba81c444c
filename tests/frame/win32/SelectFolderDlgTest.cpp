// The folder selection dialog driven as a person uses it: a folder typed or picked, OK or
// Cancel, refusals that keep it open, and what it remembers between uses.
#include "SelectFolderDlg.h"

#include <gtest/gtest.h>
#include <shlwapi.h>

#include <filesystem>
#include <functional>
#include <thread>

#include "../../lib/nccore/win32/DialogDriver.h"
#include "FolderTree.h"
#include "SelectFolderDlgIds.h"
#include "SettingsStore.h"
#include "TestFiles.h"

namespace fs = std::filesystem;

namespace {

using namespace lxtest;

const wchar_t kCaption[] = L"指定フォルダを開く";
const wchar_t kSection[] = L"SelectFolder";

std::wstring TypedAndOk(HWND dialog, const std::wstring& text) {
    SetDlgItemTextW(dialog, IDC_SELECTFOLDER_COMBO, text.c_str());
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    return text;
}

std::vector<std::wstring> History() {
    HWND combo = CreateWindowW(L"COMBOBOX", L"", CBS_DROPDOWN, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
    lx::SettingsStore().LoadComboHistory(kSection, L"History", combo, 25);
    auto items = ComboItems(combo);
    DestroyWindow(combo);
    return items;
}

class SelectFolderDlgTest : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(folder_ / "inner");
        WriteFile(folder_ / "inner" / "photo.jpg", std::string("x"));
        SHDeleteKeyW(HKEY_CURRENT_USER, L"software\\Northcape\\Applets\\lxpicture\\SelectFolder");
    }
    // Runs the dialog with `act` on it; the chosen path ("" on cancel).
    std::wstring Choose(const std::function<void(HWND)>& act, const std::wstring& initial = L"") {
        DialogDriver driver(kCaption, act);
        const std::wstring chosen = lx::SelectFolderPath(nullptr, initial);
        EXPECT_TRUE(driver.Found());
        return chosen;
    }

    ScratchDir dir_{"selectfolder"};
    const fs::path folder_ = dir_.path();
};

}  // namespace

TEST_F(SelectFolderDlgTest, TypedTextsOpenTheirFolders) {
    SetEnvironmentVariableW(L"LX_ALBUM_TEST", WindowsPath(folder_).c_str());
    wchar_t driveC[MAX_PATH] = {};
    GetFullPathNameW(L"C:", MAX_PATH, driveC, nullptr);
    PathRemoveBackslashW(driveC);
    const std::wstring inner = WindowsPath(folder_ / "inner");
    struct Row {
        std::wstring typed, expected;
    };
    const Row rows[] = {
        {inner, inner},                                      // a folder opens that folder
        {inner + L"\\", inner},                              // with or without its separator
        {WindowsPath(folder_ / "inner" / "photo.jpg"), inner},  // a file opens its folder
        {L"%LX_ALBUM_TEST%\\inner", inner},                  // environment variables expanded
        {L"c:", driveC},                                     // the drive's current folder
    };
    for (const Row& row : rows) {
        std::wstring chosen = Choose([&](HWND dialog) { TypedAndOk(dialog, row.typed); }, WindowsPath(folder_));
        if (chosen.size() > 3) PathRemoveBackslashW(chosen.data()), chosen.resize(wcslen(chosen.c_str()));
        EXPECT_EQ(_wcsicmp(chosen.c_str(), row.expected.c_str()), 0) << row.typed << " gave " << chosen;
    }
    // Every chosen folder went to the history, each once, the latest first.
    const auto history = History();
    ASSERT_FALSE(history.empty());
    EXPECT_EQ(_wcsicmp(history.front().c_str(), driveC), 0);
    EXPECT_EQ(std::count_if(history.begin(), history.end(),
                            [&](const std::wstring& h) { return _wcsicmp(h.c_str(), inner.c_str()) == 0; }),
              1);
}

TEST_F(SelectFolderDlgTest, EmptyTextTakesTheTreeAndHistoryPicksMoveIt) {
    const std::wstring start = WindowsPath(folder_);
    // The tree opens on the initial folder, the text box starts empty: OK takes the tree's folder.
    std::wstring shownText = L"unset";
    EXPECT_EQ(Choose(
                  [&](HWND dialog) {
                      wchar_t text[520] = {};
                      GetDlgItemTextW(dialog, IDC_SELECTFOLDER_COMBO, text, 520);
                      shownText = text;
                      SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
                  },
                  start),
              start);
    EXPECT_EQ(shownText, L"");
    // Picking the history entry moves the tree there and shows it in the box.
    std::wstring treePath;
    Choose([&](HWND dialog) {
        HWND combo = GetDlgItem(dialog, IDC_SELECTFOLDER_COMBO);
        SendMessageW(combo, CB_SETCURSEL, 0, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_SELECTFOLDER_COMBO, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
        auto list = reinterpret_cast<PCIDLIST_ABSOLUTE>(SendDlgItemMessageW(dialog, IDC_SELECTFOLDER_TREE, lx::kFolderTreeSelected, 0, 0));
        wchar_t path[MAX_PATH] = {};
        if (list) SHGetPathFromIDListW(list, path);
        treePath = path;
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    EXPECT_EQ(_wcsicmp(treePath.c_str(), start.c_str()), 0) << treePath;
}

TEST_F(SelectFolderDlgTest, UnreachableNamesAreReportedAndTheDialogStays) {
    bool stayed = false, reported = false;
    EXPECT_EQ(Choose([&](HWND dialog) {
        // An invalid name (error 123) is reported in a message box owned by the dialog.
        std::thread closer([&] {
            reported = WaitFor([&] {
                HWND box = FindWindowExW(nullptr, nullptr, L"#32770", kCaption);
                if (box == dialog) box = FindWindowExW(nullptr, dialog, L"#32770", kCaption);
                return box && GetWindow(box, GW_OWNER) == dialog && PostMessageW(box, WM_COMMAND, IDOK, 0);
            });
        });
        TypedAndOk(dialog, WindowsPath(folder_) + L"\\bad<name>");
        closer.join();
        stayed = IsWindowVisible(dialog) != FALSE;
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    }, WindowsPath(folder_)), L"");
    EXPECT_TRUE(reported);
    EXPECT_TRUE(stayed);
    EXPECT_TRUE(History().empty()) << "cancel stores nothing";
}

TEST_F(SelectFolderDlgTest, PlacementIsKeptAndBroughtBackOnScreen) {
    Choose([](HWND dialog) {
        SetWindowPos(dialog, nullptr, 40, 30, 600, 500, SWP_NOZORDER);
        TypedAndOk(dialog, L"");
    }, WindowsPath(folder_));
    WINDOWPLACEMENT stored = {};
    ASSERT_EQ(lx::SettingsStore().ReadBlock(kSection, L"WndPos", &stored, sizeof stored), 44);
    EXPECT_EQ(stored.rcNormalPosition.right - stored.rcNormalPosition.left, 600);

    // A position from a monitor that is gone comes back whole onto the screen; the dialog is
    // never smaller than it opens.
    stored.rcNormalPosition = {5000, 4000, 5100, 4050};
    lx::SettingsStore().WriteBlock(kSection, L"WndPos", &stored, sizeof stored);
    RECT shown = {};
    Choose([&](HWND dialog) {
        GetWindowRect(dialog, &shown);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    RECT work;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_LE(shown.right, work.right);
    EXPECT_LE(shown.bottom, work.bottom);
    EXPECT_GE(shown.right - shown.left, 300) << "kept at least its opening size";
}
