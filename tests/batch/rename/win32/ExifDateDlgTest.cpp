// The rename dialog driven as a user would: the tool runs on the test's thread with the
// real dialog, list view, message boxes and progress dialog, while a second thread picks
// name items, reads the preview, presses buttons and answers questions. Photographs are
// the exiftool-made files in photos/, copied to a scratch folder under new names.
//
// LX_SHOT_HOLD_MS=N keeps the filled dialog on screen N milliseconds for a screenshot.
#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <thread>

#include "../../../lib/nccore/win32/DialogDriver.h"
#include "../FakeRenameWorld.h"
#include "ActivationScope.h"
#include "ExifDateDlgIds.h"
#include "ModuleResources.h"
#include "RenameChoices.h"
#include "RenameSystem.h"
#include "RenameTool.h"
#include "SettingsStore.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;

const wchar_t* const kDialogTitle = L"撮影日時で名前変更";
const wchar_t* const kMessageCaption = L"Exif変換";
const wchar_t* const kExif = MAKEINTRESOURCEW(4407);
const wchar_t* const kRename = MAKEINTRESOURCEW(4616);
constexpr DWORD kNoValue = 0xDEADBEEF;

using lxtest::FocusOf;
using lxtest::ItemText;
using lxtest::WaitFor;

HWND FindVisibleDialog(const wchar_t* title) {
    HWND window = FindWindowW(L"#32770", title);
    return window && IsWindowVisible(window) ? window : nullptr;
}

HWND WaitForDialog(const wchar_t* title) {
    HWND found = nullptr;
    WaitFor([&] { return (found = FindVisibleDialog(title)) != nullptr; });
    return found;
}

std::wstring ColumnTitle(HWND list, int column) {
    wchar_t text[128] = {};
    LVCOLUMNW lvc{};
    lvc.mask = LVCF_TEXT;
    lvc.pszText = text;
    lvc.cchTextMax = 128;
    ListView_GetColumn(list, column, &lvc);
    return text;
}

// The user's long date of a day, and with `second` >= 0 a blank and the user's time of day.
std::wstring LongDate(int year, int month, int day, int hour = 0, int minute = 0, int second = -1) {
    const SYSTEMTIME st{static_cast<WORD>(year), static_cast<WORD>(month), 0, static_cast<WORD>(day),
                        static_cast<WORD>(hour), static_cast<WORD>(minute), static_cast<WORD>(std::max(second, 0))};
    wchar_t date[128] = {}, time[64] = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_LONGDATE, &st, nullptr, date, 128);
    if (second >= 0) GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &st, nullptr, time, 64);
    return second >= 0 ? std::wstring(date) + L" " + time : date;
}

bool IsWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

std::wstring GroupHeader(HWND list, int groupId) {
    wchar_t text[128] = {};
    LVGROUP group{};
    group.cbSize = sizeof group;
    group.mask = LVGF_HEADER;
    group.pszHeader = text;
    group.cchHeader = 128;
    if (ListView_GetGroupInfo(list, groupId, &group) < 0) return L"(no group)";
    return text;
}

int GroupOfItem(HWND list, int item) {
    LVITEMW lvi{};
    lvi.mask = LVIF_GROUPID;
    lvi.iItem = item;
    ListView_GetItem(list, &lvi);
    return lvi.iGroupId;
}

// Selects entry `index` of a combo box as a user would, so the dialog hears of the change.
void Choose(HWND dialog, int comboId, int index) {
    HWND combo = GetDlgItem(dialog, comboId);
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(comboId, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
}

int Selection(HWND dialog, int comboId) {
    return static_cast<int>(SendDlgItemMessageW(dialog, comboId, CB_GETCURSEL, 0, 0));
}

// The texts of one column of the file list, top to bottom.
std::vector<std::wstring> Column(HWND dialog, int column) {
    HWND list = GetDlgItem(dialog, IDC_EXIFDATE_LIST);
    std::vector<std::wstring> texts;
    for (int i = 0; i < ListView_GetItemCount(list); ++i) texts.push_back(ItemText(list, i, column));
    return texts;
}

std::vector<std::wstring> NewNames(HWND dialog) { return Column(dialog, 2); }

void Press(HWND window, int button) { PostMessageW(window, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0); }

void HoldForScreenshot() {
    if (const char* hold = std::getenv("LX_SHOT_HOLD_MS")) Sleep(static_cast<DWORD>(std::atoi(hold)));
}

class ExifDateDlgTest : public ::testing::Test {
protected:
    void SetUp() override { savedSetting = settings.ReadNumber(kExif, kRename, kNoValue); }
    void TearDown() override {
        if (savedSetting == kNoValue) {
            RegDeleteKeyValueW(HKEY_CURRENT_USER, L"software\\Northcape\\Applets\\lxpicture\\Exif", L"Rename");
        } else {
            settings.WriteNumber(kExif, kRename, savedSetting);
        }
    }

    // Copies photos/<source> into the scratch folder as `name`; returns its full path.
    std::wstring Photo(const std::string& source, const std::string& name) {
        const fs::path from = lxtest::SourceDir() / "tests/batch/rename/win32/photos" / source;
        fs::copy_file(from, dir / name);
        return (dir / name).wstring();
    }

    std::set<std::wstring> Names() const {
        std::set<std::wstring> names;
        for (const auto& entry : fs::directory_iterator(dir.path())) names.insert(entry.path().filename().wstring());
        return names;
    }

    std::multiset<std::vector<uint8_t>> Contents() const {
        std::multiset<std::vector<uint8_t>> contents;
        for (const auto& entry : fs::directory_iterator(dir.path())) contents.insert(lxtest::ReadFile(entry.path()));
        return contents;
    }

    // Runs the tool on `files` here while `drive` works its dialogs from another thread. If
    // the driver gives up, whatever is left open is cancelled so the tool returns.
    void RunTool(const std::vector<std::wstring>& files, const std::function<void()>& drive) {
        lx::ActivationScope v6;  // grouped list views, as the host has them
        std::thread driver([&] {
            drive();
            for (const wchar_t* title : {kMessageCaption, kDialogTitle}) {
                if (WaitFor([&] { return !FindVisibleDialog(title); }, 5000)) continue;
                ADD_FAILURE() << "a window was left open";
                Press(FindVisibleDialog(title), IDCANCEL);
            }
        });
        lx::RunRenameToExifDateTool(nullptr, files);
        driver.join();
    }

    lx::SettingsStore settings;
    DWORD savedSetting = kNoValue;
    lxtest::ScratchDir dir{"rename-dlg"};
};

TEST(ExifDateStrings, TextsComeFromTheStringTable) {
    EXPECT_EQ(lx::LoadResString(4108), L"撮影日時情報を持つExifファイルがありません。");
    EXPECT_EQ(lx::LoadResString(4111),
              L"選択されたファイルの名前をExif情報の撮影日時を用いて名前変更します。\n実行しますか？");
    EXPECT_EQ(lx::LoadResString(4112), L"（なし）");
    EXPECT_EQ(lx::LoadResString(4115), L"Nnnmmdd（和暦）");
    EXPECT_EQ(lx::LoadResString(4123), L"ドキュメントの名前");
    EXPECT_EQ(lx::LoadResString(4126), L"変更後の名前");
}

TEST_F(ExifDateDlgTest, ListsPreviewsRenamesAndStoresTheChoices) {
    settings.WriteNumber(kExif, kRename, lx::PackRenameChoices({1, 0, 7, 0}));
    const std::vector<std::wstring> files = {Photo("jun05.jpg", "jun05.jpg"), Photo("may07-a.jpg", "IMG10.jpg"),
                                             Photo("plain.jpg", "plain.jpg"), Photo("may07-b.jpg", "IMG2.jpg"),
                                             Photo("mar1990.jpg", "old.jpg")};
    RunTool(files, [&] {
        HWND dialog = WaitForDialog(kDialogTitle);
        ASSERT_TRUE(dialog);
        HWND list = GetDlgItem(dialog, IDC_EXIFDATE_LIST);
        ASSERT_EQ(ListView_GetItemCount(list), 4);
        EXPECT_EQ((std::vector<std::wstring>{ColumnTitle(list, 0), ColumnTitle(list, 1), ColumnTitle(list, 2)}),
                  (std::vector<std::wstring>{L"変更前の名前", L"撮影日時", L"変更後の名前"}));
        EXPECT_EQ(ListView_GetColumnWidth(list, 2), 200);
        // Oldest first; of the two taken in the same second, IMG2 before IMG10.
        EXPECT_EQ(Column(dialog, 0), (std::vector<std::wstring>{L"old.jpg", L"IMG2.jpg", L"IMG10.jpg", L"jun05.jpg"}));
        // Shooting time column: the user's long date, a blank, the user's time of day.
        EXPECT_EQ(ItemText(list, 1, 1), LongDate(2024, 5, 7, 10, 20, 30));
        // One group per day, headed by the long date, items in the group of their day. Wine's
        // list view keeps no groups at all (it reports none); Windows' must have all three.
        if (ListView_GetGroupCount(list) != 0 || !IsWine()) {
            EXPECT_EQ(ListView_GetGroupCount(list), 3);
            EXPECT_EQ(GroupHeader(list, 1990304), LongDate(1990, 3, 4));
            EXPECT_EQ(GroupHeader(list, 2024507), LongDate(2024, 5, 7));
            EXPECT_EQ(GroupHeader(list, 2024605), LongDate(2024, 6, 5));
            EXPECT_EQ(GroupOfItem(list, 0), 1990304);
            EXPECT_EQ(GroupOfItem(list, 2), 2024507);
            EXPECT_EQ(GroupOfItem(list, 3), 2024605);
        }
        // The stored choices are selected and already previewed.
        EXPECT_EQ(Selection(dialog, IDC_EXIFDATE_ITEM1), 1);
        EXPECT_EQ(Selection(dialog, IDC_EXIFDATE_ITEM3), 7);
        EXPECT_EQ(NewNames(dialog), (std::vector<std::wstring>{L"19900304_1.jpg", L"20240507_2.jpg",
                                                               L"20240507_3.jpg", L"20240605_4.jpg"}));
        Choose(dialog, IDC_EXIFDATE_ITEM1, 3);
        Choose(dialog, IDC_EXIFDATE_ITEM3, 11);
        Choose(dialog, IDC_EXIFDATE_RESET, 2);
        EXPECT_EQ(NewNames(dialog), (std::vector<std::wstring>{L"H020304_old.jpg", L"H360507_IMG2.jpg",
                                                               L"H360507_IMG10.jpg", L"H360605_jun05.jpg"}));
        Choose(dialog, IDC_EXIFDATE_ITEM3, 8);
        EXPECT_EQ(NewNames(dialog), (std::vector<std::wstring>{L"H020304_01.jpg", L"H360507_01.jpg",
                                                               L"H360507_02.jpg", L"H360605_01.jpg"}));
        HoldForScreenshot();
        Press(dialog, IDOK);
        HWND question = WaitForDialog(kMessageCaption);
        ASSERT_TRUE(question);
        EXPECT_NE(lxtest::AllChildTexts(question).find(L"実行しますか？"), std::wstring::npos);
        Press(question, IDYES);
        EXPECT_TRUE(WaitFor([&] { return !IsWindow(dialog); }));
    });
    EXPECT_EQ(Names(), (std::set<std::wstring>{L"H020304_01.jpg", L"H360507_01.jpg", L"H360507_02.jpg",
                                               L"H360605_01.jpg", L"plain.jpg"}));
    EXPECT_EQ(settings.ReadNumber(kExif, kRename, 0), lx::PackRenameChoices({3, 0, 8, 2}));
}

// Cancel, the close box, and an OK that finds no item chosen or is answered No, leave every
// file and the stored choices as they were.
TEST_F(ExifDateDlgTest, CancelCloseBoxAndARefusedOkChangeNoFileAndNoSetting) {
    const uint32_t stored = lx::PackRenameChoices({2, 0, 0, 1});
    settings.WriteNumber(kExif, kRename, stored);
    const std::vector<std::wstring> files = {Photo("may07-a.jpg", "a.jpg")};
    for (const char* way : {"cancel", "close box", "ok"}) {
        RunTool(files, [&] {
            HWND dialog = WaitForDialog(kDialogTitle);
            ASSERT_TRUE(dialog);
            EXPECT_EQ(Selection(dialog, IDC_EXIFDATE_ITEM1), 2);
            EXPECT_EQ(Selection(dialog, IDC_EXIFDATE_RESET), 1);
            Choose(dialog, IDC_EXIFDATE_ITEM1, 5);
            if (way[0] == 'c') {
                if (way[1] == 'l') PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
                else Press(dialog, IDCANCEL);
                EXPECT_TRUE(WaitFor([&] { return !IsWindow(dialog); }));
                return;
            }
            Choose(dialog, IDC_EXIFDATE_ITEM1, 0);
            EXPECT_EQ(NewNames(dialog), (std::vector<std::wstring>{L""}));
            HWND list = GetDlgItem(dialog, IDC_EXIFDATE_LIST);
            SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list), TRUE);
            ASSERT_EQ(FocusOf(dialog), list);
            Press(dialog, IDOK);  // all three items are "（なし）": a beep, no question
            Sleep(500);
            EXPECT_FALSE(FindVisibleDialog(kMessageCaption));
            ASSERT_TRUE(IsWindow(dialog));
            EXPECT_EQ(FocusOf(dialog), GetDlgItem(dialog, IDC_EXIFDATE_ITEM1));
            Choose(dialog, IDC_EXIFDATE_ITEM2, 4);
            Press(dialog, IDOK);
            HWND question = WaitForDialog(kMessageCaption);
            ASSERT_TRUE(question);
            Press(question, IDNO);
            EXPECT_TRUE(WaitFor([&] { return !FindVisibleDialog(kMessageCaption); }));
            EXPECT_TRUE(IsWindow(dialog));
            Press(dialog, IDCANCEL);
            EXPECT_TRUE(WaitFor([&] { return !IsWindow(dialog); }));
        });
        EXPECT_EQ(Names(), (std::set<std::wstring>{L"a.jpg"})) << way;
        EXPECT_EQ(settings.ReadNumber(kExif, kRename, 0), stored) << way;
    }
}

TEST_F(ExifDateDlgTest, NoPhotographWithShootingTimeShowsMessage4108) {
    const std::vector<std::wstring> files = {Photo("plain.jpg", "plain.jpg"), (dir / "missing.jpg").wstring()};
    RunTool(files, [&] {
        HWND message = WaitForDialog(kMessageCaption);
        ASSERT_TRUE(message);
        EXPECT_NE(lxtest::AllChildTexts(message).find(L"撮影日時情報を持つExifファイルがありません。"), std::wstring::npos);
        EXPECT_FALSE(FindVisibleDialog(kDialogTitle));
        Press(message, IDOK);
    });
    EXPECT_EQ(Names(), (std::set<std::wstring>{L"plain.jpg"}));
}

// Without the dialog, over the same Windows file system: a move never replaces a file.
TEST_F(ExifDateDlgTest, LockedFileAndTakenNameLoseNothing) {
    const std::vector<std::wstring> files = {Photo("may07-a.jpg", "a.jpg"), Photo("may07-b.jpg", "b.jpg"),
                                             Photo("jun05.jpg", "c.jpg")};
    Photo("plain.jpg", "20240605.jpg");  // the name c.jpg should get
    const auto before = Contents();
    HANDLE lock = CreateFileW(files[0].c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    lxtest::RecordingSink sink;
    EXPECT_EQ(lx::RunRenameToExifDate(lx::RenameChoices{lx::kItemDate8}, files, sink).renamed, 2);
    CloseHandle(lock);
    EXPECT_EQ(Contents(), before);
    const std::set<std::wstring> names = Names();
    EXPECT_TRUE(names.count(L"20240605.jpg"));
    EXPECT_TRUE(names.count(L"20240605(1).jpg"));
    EXPECT_TRUE(names.count(L"20240507.jpg") || names.count(L"20240507(1).jpg"));
}

TEST_F(ExifDateDlgTest, UnattendedRunRenamesReportsAndLeavesTheSettingAlone) {
    settings.WriteNumber(kExif, kRename, 0x01020304);
    const std::wstring a = Photo("may07-a.jpg", "a.jpg");
    const std::wstring plain = Photo("plain.jpg", "plain.jpg");
    lxtest::RecordingSink sink;
    lx::RenameChoices choices;
    choices.item1 = lx::kItemDate6;
    choices.item2 = lx::kItemHourMinuteSec;
    choices.resetRule = lx::kResetOnDay;
    lx::RunRenameToExifDate(choices, {a, plain}, sink);
    EXPECT_EQ(sink.messages, std::vector<unsigned>{4111});
    ASSERT_GE(sink.events.size(), 2u);
    EXPECT_EQ(sink.events[1], L"start Exif変換 | 撮影日時に変換しています...");
    EXPECT_EQ(sink.reports, std::vector<std::wstring>{a + L" -> " + (dir / "240507_102030.jpg").wstring()});
    EXPECT_EQ(Names(), (std::set<std::wstring>{L"240507_102030.jpg", L"plain.jpg"}));
    EXPECT_EQ(settings.ReadNumber(kExif, kRename, 0), 0x01020304u);

    lxtest::RecordingSink none;
    lx::RunRenameToExifDate(lx::RenameChoices{lx::kItemDate8}, {plain}, none);
    EXPECT_EQ(none.messages, std::vector<unsigned>{4108});
}

}  // namespace
