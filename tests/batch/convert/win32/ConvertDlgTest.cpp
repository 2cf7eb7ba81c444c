// The conversion dialog, its format option dialogs and the tool's settings, driven through
// their real windows from a second thread, with the real registry.
#include "ConvertDlg.h"

#include "../../../lib/nccore/win32/DialogDriver.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "ConvertDlgIds.h"
#include "ConvertImageTool.h"
#include "../ConvertTestSupport.h"
#include "SettingsStore.h"

namespace lx {
namespace {

using lxtest::DialogDriver;
using lxtest::ItemText;
using lxtest::WindowText;

const wchar_t* const kSection = MAKEINTRESOURCEW(4406);
const wchar_t* const kStatus = MAKEINTRESOURCEW(4612);
const wchar_t* const kHistory = MAKEINTRESOURCEW(4613);
const wchar_t* const kTitle = L"画像フォーマット変換";

HWND Item(HWND dialog, int id) { return GetDlgItem(dialog, id); }
bool Enabled(HWND dialog, int id) { return IsWindowEnabled(Item(dialog, id)) != FALSE; }
bool Checked(HWND dialog, int id) { return SendMessageW(Item(dialog, id), BM_GETCHECK, 0, 0) == BST_CHECKED; }
void Click(HWND dialog, int id) { SendMessageW(Item(dialog, id), BM_CLICK, 0, 0); }
void Press(HWND dialog, int id) { SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); }
void SetText(HWND dialog, int id, const wchar_t* text) { SetWindowTextW(Item(dialog, id), text); }
bool Open(HWND dialog) { return IsWindow(dialog) && IsWindowVisible(dialog); }

// The id of the control with the focus (the combo box's when the focus is in its edit field).
int FocusId(HWND dialog) {
    HWND focus = lxtest::FocusOf(dialog);
    if (GetParent(focus) != dialog) focus = GetParent(focus);
    return GetDlgCtrlID(focus);
}

void SelectRow(HWND dialog, int row) {
    LVITEMW item = {};
    item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(Item(dialog, IDC_CONVERT_FORMATS), LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&item));
}

// The enabled controls of the dialog's right half by name, "*" marking checked ones.
std::wstring Controls(HWND d) {
    static const std::pair<int, const wchar_t*> kNames[] = {
        {IDC_CONVERT_BY_LONG, L"long"}, {IDC_CONVERT_LONG_PIXELS, L"[long]"}, {IDC_CONVERT_BY_SHORT, L"short"},
        {IDC_CONVERT_SHORT_PIXELS, L"[short]"}, {IDC_CONVERT_BY_PERCENT, L"percent"}, {IDC_CONVERT_PERCENT, L"[%]"},
        {IDC_CONVERT_NO_ENLARGE, L"noEnlarge"}, {IDC_CONVERT_FORMAT_OPTIONS, L"options"}};
    std::wstring line;
    for (const auto& [id, name] : kNames)
        if (Enabled(d, id)) line += std::wstring(line.empty() ? L"" : L" ") + name + (Checked(d, id) ? L"*" : L"");
    return line;
}

// Presses `button` and returns the dialog it shows, found from the driver thread by its owner.
HWND OpenOwned(HWND dialog, int button) {
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
    std::pair<HWND, HWND> search{dialog, nullptr};
    for (int i = 0; i < 200 && search.second == nullptr; ++i) {
        Sleep(50);
        EnumWindows(
            [](HWND w, LPARAM p) -> BOOL {
                auto* s = reinterpret_cast<std::pair<HWND, HWND>*>(p);
                if (GetWindow(w, GW_OWNER) == s->first && IsWindowVisible(w)) s->second = w;
                return s->second == nullptr;
            },
            reinterpret_cast<LPARAM>(&search));
    }
    return search.second;
}

void Slide(HWND dialog, int id, int position) {
    SendMessageW(Item(dialog, id), TBM_SETPOS, TRUE, position);
    SendMessageW(dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position), reinterpret_cast<LPARAM>(Item(dialog, id)));
}

ConvertOptions SampleOptions() {
    ConvertOptions options = DefaultConvertOptions();
    options.saveType = 10;
    options.resizeMode = kResizePercent;
    options.size = 60;
    options.deleteSource = 1;
    SetOutputFolder(options, L"C:\\out");
    return options;
}

TEST(ConvertDlgTest, ShowsTheOptionsCentredEnablesByModeAndRefusesBadInput) {
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    options.size = 75;  // not in the percent list: typed into the combo
    std::vector<std::wstring> seen;
    RECT box{}, work{};
    DialogDriver driver(kTitle, [&](HWND d) {
        GetWindowRect(d, &box);
        HWND list = Item(d, IDC_CONVERT_FORMATS), percent = Item(d, IDC_CONVERT_PERCENT);
        seen = {std::to_wstring(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)),
                std::to_wstring(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)),
                ItemText(list, 9, 0) + L"|" + ItemText(list, 9, 1), std::to_wstring(SendMessageW(percent, CB_GETCOUNT, 0, 0)),
                WindowText(percent) + L" " + std::to_wstring(SendMessageW(percent, CB_GETCURSEL, 0, 0)),
                WindowText(Item(d, IDC_CONVERT_FOLDER)), Checked(d, IDC_CONVERT_DELETE_SOURCE) ? L"delete" : L"keep",
                Controls(d)};
        for (int row : {0, 6, 9, 1}) {
            SelectRow(d, row);
            seen.push_back(Controls(d));
        }
        for (int id : {IDC_CONVERT_RESIZE, IDC_CONVERT_RESIZE, IDC_CONVERT_BY_SHORT, IDC_CONVERT_BY_LONG}) {
            Click(d, id);
            seen.push_back(Controls(d));
        }
        const std::pair<int, const wchar_t*> refused[] = {
            {IDC_CONVERT_LONG_PIXELS, L"0"}, {IDC_CONVERT_LONG_PIXELS, L"-5"}, {IDC_CONVERT_FOLDER, L""}};
        for (const auto& [id, text] : refused) {
            SetText(d, IDC_CONVERT_LONG_PIXELS, L"800");
            SetText(d, IDC_CONVERT_FOLDER, L"C:\\conv-out");
            SetText(d, id, text);
            Press(d, IDOK);
            seen.push_back(std::wstring(text) + (Open(d) ? L" refused at " : L" taken at ") + std::to_wstring(FocusId(d)));
        }
        SetText(d, IDC_CONVERT_FOLDER, L"C:\\conv-out");
        Click(d, IDC_CONVERT_NO_ENLARGE);
        Press(d, IDOK);
    });
    ASSERT_EQ(CConvertDlg(options, settings).DoModal(nullptr), IDOK);
    const std::vector<std::wstring> expected = {
        L"10", L"7", L"JPEG2000|JPEG-2000 ISO/IEC 15444-1", L"10", L"75 -1", L"C:\\out", L"delete",
        L"long short percent* [%]",  // PNG, row 7, has no format options
        L"long short percent* [%] options", L"long short percent* [%] options", L"long short percent* [%] options",
        L"long short percent* [%]",
        L"", L"long short percent* [%]",  // scaling off and on again
        // One radio checked at a time, its field enabled; noEnlarge only for the pixel modes.
        L"long short* [short] percent noEnlarge", L"long* [long] short percent noEnlarge",
        L"0 refused at 1145", L"-5 refused at 1145", L" refused at 1137"};
    EXPECT_EQ(seen, expected);
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_NEAR(box.left + box.right, work.left + work.right, 2) << "an unowned dialog is centred";
    EXPECT_NEAR(box.top + box.bottom, work.top + work.bottom, 2);
    EXPECT_EQ(lxtest::Fields(options), L"1 0 800 1 1 1 'C:\\conv-out' 0 94 0 1 94 0 0 8 0 0");  // BMP, row 1
    wchar_t history[kFolderHistoryEntries * kPathChars] = {};
    ASSERT_GT(settings.ReadBlock(kSection, kHistory, history, sizeof history), 0);
    EXPECT_STREQ(history, L"C:\\conv-out") << "the folder heads the history";
}

TEST(ConvertDlgTest, FormatOptionDialogsEditTheirFieldsAndShowTheirValues) {
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    options.saveType = 2;
    std::vector<std::wstring> seen;
    auto note = [&](HWND dialog, int label) { seen.push_back(WindowText(Item(dialog, label))); };
    DialogDriver driver(kTitle, [&](HWND d) {
        if (HWND jpeg = OpenOwned(d, IDC_CONVERT_FORMAT_OPTIONS)) {
            seen.push_back(Checked(jpeg, IDC_OPTION_STANDARD) ? L"standard" : L"not standard");
            note(jpeg, IDC_OPTION_QUALITY_VALUE);
            note(jpeg, IDC_OPTION_SMOOTHING_VALUE);  // 0 before the first edit shows as the minimum
            Slide(jpeg, IDC_OPTION_QUALITY, 70);
            Slide(jpeg, IDC_OPTION_SMOOTHING, 20);
            note(jpeg, IDC_OPTION_QUALITY_VALUE);
            note(jpeg, IDC_OPTION_SMOOTHING_VALUE);
            Click(jpeg, IDC_OPTION_PROGRESSIVE);
            Press(jpeg, IDOK);
        }
        SelectRow(d, 6);
        if (HWND fpx = OpenOwned(d, IDC_CONVERT_FORMAT_OPTIONS)) {
            note(fpx, IDC_OPTION_QUALITY_VALUE);
            for (int i = 0; i < 3; ++i) {
                Click(fpx, IDC_OPTION_FPX_JPEG);
                seen.push_back(Enabled(fpx, IDC_OPTION_QUALITY) ? L"quality on" : L"quality off");
            }
            Press(fpx, IDOK);
        }
        SelectRow(d, 9);
        if (HWND jp2 = OpenOwned(d, IDC_CONVERT_FORMAT_OPTIONS)) {
            note(jp2, IDC_OPTION_RATIO_LABEL);
            Slide(jp2, IDC_OPTION_QUALITY, 25);
            note(jp2, IDC_OPTION_RATIO_LABEL);
            Press(jp2, IDOK);
        }
        SelectRow(d, 0);
        Press(d, IDOK);
    });
    ASSERT_EQ(CConvertDlg(options, settings).DoModal(nullptr), IDOK);
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"standard", L"94", L"1", L"70", L"20", L"94", L"quality off", L"quality on",
                                               L"quality off", L"1/8", L"1/25"}));
    EXPECT_EQ(lxtest::Fields(options), L"2 2 60 1 0 1 'C:\\out' 2 70 20 0 94 0 0 25 0 0");
}

// The folder picker starts at the typed folder, or at the nearest folder of it that exists.
TEST(ConvertDlgTest, BrowseStartsAtTheTypedFolder) {
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    // Not under the temporary folder: the picker's tree leaves out hidden folders on the way.
    const std::filesystem::path dir = L"C:\\lxtest-convert-browse-" + std::to_wstring(GetCurrentProcessId());
    std::filesystem::create_directories(dir / "photos");
    std::vector<std::wstring> selected;
    DialogDriver driver(kTitle, [&](HWND d) {
        for (const char* typed : {"photos", "photos/new"}) {
            SetText(d, IDC_CONVERT_FOLDER, (dir / typed).make_preferred().wstring().c_str());
            HWND browse = OpenOwned(d, IDC_CONVERT_BROWSE);
            HWND tree = FindWindowExW(browse, nullptr, WC_TREEVIEWW, nullptr);
            wchar_t text[128] = {};
            for (int wait = 0; wait < 40 && std::wstring(text) != L"photos"; ++wait) {  // the tree fills itself late
                Sleep(100);
                TVITEMW item = {TVIF_TEXT, TreeView_GetSelection(tree)};
                item.pszText = text;
                item.cchTextMax = 128;
                TreeView_GetItem(tree, &item);
            }
            selected.push_back(text);
            Press(browse, IDCANCEL);
            while (IsWindow(browse)) Sleep(50);
        }
        Press(d, IDCANCEL);
    });
    CConvertDlg(options, settings).DoModal(nullptr);
    std::filesystem::remove_all(dir);
    EXPECT_EQ(selected, (std::vector<std::wstring>{L"photos", L"photos"}));
}

// The whole tool: settings are read at the start and written only when the dialog is confirmed;
// the scaling radio clicked last is the one that counts.
TEST(ConvertDlgTest, ToolWritesItsSettingsOnlyOnOkAndScalesByTheChosenRadio) {
    SettingsStore settings;
    EXPECT_FALSE(ConvertImageFiles(nullptr, {}));
    lxtest::ScratchDir dir("convert-tool");
    const std::filesystem::path source = dir / "a.bmp", out = dir / "out";
    lxtest::WriteBitmapFile(source, 400, 300);
    ConvertOptions stored = SampleOptions();
    stored.saveType = 2;
    stored.resizeMode = kResizeLongSide;
    stored.size = 800;
    stored.deleteSource = 0;
    SetOutputFolder(stored, out.wstring());
    ASSERT_TRUE(settings.WriteBlock(kSection, kStatus, &stored, sizeof stored));
    {
        DialogDriver driver(kTitle, DialogDriver::Press(IDCANCEL));
        EXPECT_FALSE(ConvertImageFiles(nullptr, {source.wstring()}));
    }
    ConvertOptions read = DefaultConvertOptions();
    ASSERT_EQ(settings.ReadBlock(kSection, kStatus, &read, sizeof read), 1104);
    EXPECT_EQ(lxtest::Fields(read), lxtest::Fields(stored));
    EXPECT_FALSE(std::filesystem::exists(out));

    std::wstring radios;
    {
        DialogDriver driver(kTitle, [&](HWND d) {
            Click(d, IDC_CONVERT_BY_PERCENT);  // 100 % is selected in the list
            for (int id : {IDC_CONVERT_BY_LONG, IDC_CONVERT_BY_SHORT, IDC_CONVERT_BY_PERCENT})
                radios += Checked(d, id) ? L"x" : L"-";
            Press(d, IDOK);
        });
        EXPECT_TRUE(ConvertImageFiles(nullptr, {source.wstring()}));
    }
    EXPECT_EQ(radios, L"--x");
    ASSERT_EQ(settings.ReadBlock(kSection, kStatus, &read, sizeof read), 1104);
    EXPECT_EQ(lxtest::Fields(read), L"2 2 100 1 0 0 '" + out.wstring() + L"' 0 94 0 1 94 0 0 8 0 0");
    EXPECT_EQ(lxtest::Identify(out / "a.jpg"), "JPEG 400 300");
    EXPECT_TRUE(std::filesystem::exists(source));
}

}  // namespace
}  // namespace lx
