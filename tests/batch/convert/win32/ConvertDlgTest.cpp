// The conversion dialog, its format option dialogs and the tool's settings, driven through
// their real windows from a second thread, with the real registry.
#include "ConvertDlg.h"

#include "../../../lib/nccore/win32/DialogDriver.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "ConvertDlgIds.h"
#include "ConvertImageTool.h"
#include "ImageLoad.h"
#include "ImageSave.h"
#include "SettingsStore.h"
#include "TestFiles.h"

namespace lx {
namespace {

using lxtest::DialogDriver;

const wchar_t* const kSection = MAKEINTRESOURCEW(4406);
const wchar_t* const kStatus = MAKEINTRESOURCEW(4612);
const wchar_t* const kHistory = MAKEINTRESOURCEW(4613);

// Keeps the tool's stored values as they were before the test.
class SavedConverterSettings {
public:
    SavedConverterSettings() {
        status_.resize(static_cast<size_t>(store_.ReadBlock(kSection, kStatus, nullptr, 0)));
        if (!status_.empty()) store_.ReadBlock(kSection, kStatus, status_.data(), static_cast<int>(status_.size()));
        history_.resize(static_cast<size_t>(store_.ReadBlock(kSection, kHistory, nullptr, 0)));
        if (!history_.empty()) store_.ReadBlock(kSection, kHistory, history_.data(), static_cast<int>(history_.size()));
    }
    ~SavedConverterSettings() {
        Restore(kStatus, status_);
        Restore(kHistory, history_);
    }

private:
    void Restore(const wchar_t* value, const std::vector<uint8_t>& bytes) {
        if (!bytes.empty()) {
            store_.WriteBlock(kSection, value, bytes.data(), static_cast<int>(bytes.size()));
        } else {
            HKEY key = nullptr;
            if (RegOpenKeyExW(HKEY_CURRENT_USER, L"software\\Northcape\\Applets\\lxpicture\\Converter", 0, KEY_WRITE,
                              &key) == ERROR_SUCCESS) {
                RegDeleteValueW(key, value == kStatus ? L"Status" : L"FolderHistory");
                RegCloseKey(key);
            }
        }
    }
    SettingsStore store_;
    std::vector<uint8_t> status_;
    std::vector<uint8_t> history_;
};

HWND Item(HWND dialog, int id) { return GetDlgItem(dialog, id); }
bool Enabled(HWND dialog, int id) { return IsWindowEnabled(Item(dialog, id)) != FALSE; }
bool Checked(HWND dialog, int id) { return SendMessageW(Item(dialog, id), BM_GETCHECK, 0, 0) == BST_CHECKED; }
void Click(HWND dialog, int id) { SendMessageW(Item(dialog, id), BM_CLICK, 0, 0); }
void PressOk(HWND dialog) { SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0); }
void SetText(HWND dialog, int id, const wchar_t* text) { SetWindowTextW(Item(dialog, id), text); }

HWND FocusOf(HWND dialog) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
    return info.hwndFocus;
}

void SelectRow(HWND dialog, int row) {
    HWND list = Item(dialog, IDC_CONVERT_FORMATS);
    LVITEMW item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

std::wstring RowText(HWND dialog, int row, int column) {
    wchar_t text[128] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 128;
    SendMessageW(Item(dialog, IDC_CONVERT_FORMATS), LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&item));
    return text;
}

// A dialog shown by the dialog being driven (so it must be looked for from the driver thread).
HWND WaitForDialog(const wchar_t* caption) {
    for (int i = 0; i < 200; ++i) {
        HWND found = FindWindowW(L"#32770", caption);
        if (found != nullptr && IsWindowVisible(found)) return found;
        Sleep(50);
    }
    return nullptr;
}

int Slider(HWND dialog, int id, UINT message) { return static_cast<int>(SendMessageW(Item(dialog, id), message, 0, 0)); }

ConvertOptions SampleOptions() {
    ConvertOptions options = DefaultConvertOptions();
    options.saveType = 10;
    options.resizeMode = kResizePercent;
    options.size = 60;
    options.deleteSource = 1;
    SetOutputFolder(options, L"C:\\out");
    return options;
}

TEST(ConvertDlgTest, StartShowsTheOptionsAndEnablesByMode) {
    SavedConverterSettings saved;
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    const ConvertOptions before = options;
    struct Seen {
        int rows = 0, selected = -1, percents = 0;
        std::wstring first, firstLong, last, percentText, folder;
        bool percentChecked = false, percentEnabled = false, longEnabled = true, noEnlargeEnabled = true;
        bool optionsForPng = true, optionsForJpeg = false, optionsForFpx = false, optionsForJp2 = false,
             optionsForBmp = true;
        bool longAfterClick = false, noEnlargeAfterClick = false, percentAfterClick = true;
        bool radiosWithoutResize = true, fieldWithoutResize = true, deleteChecked = false;
    } seen;
    DialogDriver driver(L"画像フォーマット変換", [&](HWND d) {
        HWND list = Item(d, IDC_CONVERT_FORMATS);
        seen.rows = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
        seen.selected = static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
        seen.first = RowText(d, 0, 0);
        seen.firstLong = RowText(d, 6, 1);
        seen.last = RowText(d, 9, 1);
        seen.percents = static_cast<int>(SendMessageW(Item(d, IDC_CONVERT_PERCENT), CB_GETCOUNT, 0, 0));
        seen.percentText = lxtest::WindowText(Item(d, IDC_CONVERT_PERCENT));
        seen.folder = lxtest::WindowText(Item(d, IDC_CONVERT_FOLDER));
        seen.percentChecked = Checked(d, IDC_CONVERT_BY_PERCENT);
        seen.deleteChecked = Checked(d, IDC_CONVERT_DELETE_SOURCE);
        seen.percentEnabled = Enabled(d, IDC_CONVERT_PERCENT);
        seen.longEnabled = Enabled(d, IDC_CONVERT_LONG_PIXELS);
        seen.noEnlargeEnabled = Enabled(d, IDC_CONVERT_NO_ENLARGE);
        seen.optionsForPng = Enabled(d, IDC_CONVERT_FORMAT_OPTIONS);
        SelectRow(d, 0);
        seen.optionsForJpeg = Enabled(d, IDC_CONVERT_FORMAT_OPTIONS);
        SelectRow(d, 6);
        seen.optionsForFpx = Enabled(d, IDC_CONVERT_FORMAT_OPTIONS);
        SelectRow(d, 9);
        seen.optionsForJp2 = Enabled(d, IDC_CONVERT_FORMAT_OPTIONS);
        SelectRow(d, 1);
        seen.optionsForBmp = Enabled(d, IDC_CONVERT_FORMAT_OPTIONS);
        Click(d, IDC_CONVERT_BY_LONG);
        seen.longAfterClick = Enabled(d, IDC_CONVERT_LONG_PIXELS);
        seen.noEnlargeAfterClick = Enabled(d, IDC_CONVERT_NO_ENLARGE);
        seen.percentAfterClick = Enabled(d, IDC_CONVERT_PERCENT);
        Click(d, IDC_CONVERT_RESIZE);
        seen.radiosWithoutResize = Enabled(d, IDC_CONVERT_BY_SHORT) || Enabled(d, IDC_CONVERT_BY_LONG);
        seen.fieldWithoutResize = Enabled(d, IDC_CONVERT_LONG_PIXELS);
        PostMessageW(d, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    EXPECT_EQ(CConvertDlg(options, settings).DoModal(nullptr), IDCANCEL);
    ASSERT_TRUE(driver.Found());
    EXPECT_EQ(seen.rows, 10);
    EXPECT_EQ(seen.selected, 7) << "saveType 10 is the PNG row";
    EXPECT_EQ(seen.first, L"JPEG");
    EXPECT_EQ(seen.firstLong, L"Flash Pix");
    EXPECT_EQ(seen.last, L"JPEG-2000 ISO/IEC 15444-1");
    EXPECT_EQ(seen.percents, 10);
    EXPECT_EQ(seen.percentText, L"60");
    EXPECT_EQ(seen.folder, L"C:\\out");
    EXPECT_TRUE(seen.percentChecked);
    EXPECT_TRUE(seen.deleteChecked);
    EXPECT_TRUE(seen.percentEnabled);
    EXPECT_FALSE(seen.longEnabled);
    EXPECT_FALSE(seen.noEnlargeEnabled);
    EXPECT_FALSE(seen.optionsForPng);
    EXPECT_TRUE(seen.optionsForJpeg);
    EXPECT_TRUE(seen.optionsForFpx);
    EXPECT_TRUE(seen.optionsForJp2);
    EXPECT_FALSE(seen.optionsForBmp);
    EXPECT_TRUE(seen.longAfterClick);
    EXPECT_TRUE(seen.noEnlargeAfterClick);
    EXPECT_FALSE(seen.percentAfterClick);
    EXPECT_FALSE(seen.radiosWithoutResize);
    EXPECT_FALSE(seen.fieldWithoutResize);
    EXPECT_EQ(std::memcmp(&options, &before, sizeof options), 0) << "cancel changes nothing";
}

TEST(ConvertDlgTest, PercentNotInTheListIsTypedIntoTheCombo) {
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    options.size = 75;
    std::wstring text;
    int selection = 0;
    DialogDriver driver(L"画像フォーマット変換", [&](HWND d) {
        text = lxtest::WindowText(Item(d, IDC_CONVERT_PERCENT));
        selection = static_cast<int>(SendMessageW(Item(d, IDC_CONVERT_PERCENT), CB_GETCURSEL, 0, 0));
        PostMessageW(d, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    CConvertDlg(options, settings).DoModal(nullptr);
    EXPECT_EQ(text, L"75");
    EXPECT_EQ(selection, CB_ERR);
}

TEST(ConvertDlgTest, BadInputKeepsTheDialogOpenWithTheFocusOnTheField) {
    SavedConverterSettings saved;
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    options.resizeMode = kResizeLongSide;
    options.size = 1000;
    struct Seen {
        bool openAfterZero = false, openAfterNegative = false, openAfterEmptyFolder = false;
        bool focusOnPixels = false, focusOnFolder = false;
    } seen;
    DialogDriver driver(L"画像フォーマット変換", [&](HWND d) {
        SetText(d, IDC_CONVERT_LONG_PIXELS, L"0");
        PressOk(d);
        seen.openAfterZero = IsWindow(d) && IsWindowVisible(d);
        seen.focusOnPixels = FocusOf(d) == Item(d, IDC_CONVERT_LONG_PIXELS);
        SetText(d, IDC_CONVERT_LONG_PIXELS, L"-5");
        PressOk(d);
        seen.openAfterNegative = IsWindow(d) && IsWindowVisible(d);
        SetText(d, IDC_CONVERT_LONG_PIXELS, L"800");
        SetText(d, IDC_CONVERT_FOLDER, L"");
        PressOk(d);
        seen.openAfterEmptyFolder = IsWindow(d) && IsWindowVisible(d);
        seen.focusOnFolder = FocusOf(d) == Item(d, IDC_CONVERT_FOLDER) ||
                             GetParent(FocusOf(d)) == Item(d, IDC_CONVERT_FOLDER);
        SetText(d, IDC_CONVERT_FOLDER, L"C:\\conv-out");
        Click(d, IDC_CONVERT_NO_ENLARGE);
        PressOk(d);
    });
    ASSERT_EQ(CConvertDlg(options, settings).DoModal(nullptr), IDOK);
    EXPECT_TRUE(seen.openAfterZero);
    EXPECT_TRUE(seen.focusOnPixels);
    EXPECT_TRUE(seen.openAfterNegative);
    EXPECT_TRUE(seen.openAfterEmptyFolder);
    EXPECT_TRUE(seen.focusOnFolder);
    EXPECT_EQ(options.resizeMode, kResizeLongSide);
    EXPECT_EQ(options.size, 800);
    EXPECT_EQ(options.noEnlarge, 1);
    EXPECT_EQ(options.saveType, 10);
    EXPECT_EQ(OutputFolder(options), L"C:\\conv-out");
    wchar_t history[64] = {};
    ASSERT_GT(settings.ReadBlock(kSection, kHistory, history, sizeof history), 0);
    EXPECT_STREQ(history, L"C:\\conv-out") << "the folder heads the history";
}

TEST(ConvertDlgTest, FormatOptionDialogsEditTheirFields) {
    SettingsStore settings;
    ConvertOptions options = SampleOptions();
    options.saveType = 2;
    struct Seen {
        int qualityLow = 0, qualityHigh = 0, qualityPos = 0, smoothingPos = -1, page = 0;
        bool standardChecked = false, fpxSliderEnabled = true, fpxSliderAfterCheck = false;
        int jp2Line = 0, jp2Page = 0;
        std::wstring ratioBefore, ratioAfter;
    } seen;
    DialogDriver driver(L"画像フォーマット変換", [&](HWND d) {
        PostMessageW(d, WM_COMMAND, MAKEWPARAM(IDC_CONVERT_FORMAT_OPTIONS, BN_CLICKED), 0);
        if (HWND jpeg = WaitForDialog(L"JPEGフォーマット")) {
            seen.qualityLow = Slider(jpeg, IDC_OPTION_QUALITY, TBM_GETRANGEMIN);
            seen.qualityHigh = Slider(jpeg, IDC_OPTION_QUALITY, TBM_GETRANGEMAX);
            seen.qualityPos = Slider(jpeg, IDC_OPTION_QUALITY, TBM_GETPOS);
            seen.smoothingPos = Slider(jpeg, IDC_OPTION_SMOOTHING, TBM_GETPOS);
            seen.page = Slider(jpeg, IDC_OPTION_QUALITY, TBM_GETPAGESIZE);
            seen.standardChecked = Checked(jpeg, IDC_OPTION_STANDARD);
            SendMessageW(Item(jpeg, IDC_OPTION_QUALITY), TBM_SETPOS, TRUE, 70);
            SendMessageW(Item(jpeg, IDC_OPTION_SMOOTHING), TBM_SETPOS, TRUE, 20);
            Click(jpeg, IDC_OPTION_PROGRESSIVE);
            PressOk(jpeg);
        }
        SelectRow(d, 6);
        PostMessageW(d, WM_COMMAND, MAKEWPARAM(IDC_CONVERT_FORMAT_OPTIONS, BN_CLICKED), 0);
        if (HWND fpx = WaitForDialog(L"FlushPixフォーマット")) {
            Click(fpx, IDC_OPTION_FPX_JPEG);
            seen.fpxSliderEnabled = Enabled(fpx, IDC_OPTION_QUALITY);
            Click(fpx, IDC_OPTION_FPX_JPEG);
            seen.fpxSliderAfterCheck = Enabled(fpx, IDC_OPTION_QUALITY);
            Click(fpx, IDC_OPTION_FPX_JPEG);
            PressOk(fpx);
        }
        SelectRow(d, 9);
        PostMessageW(d, WM_COMMAND, MAKEWPARAM(IDC_CONVERT_FORMAT_OPTIONS, BN_CLICKED), 0);
        if (HWND jp2 = WaitForDialog(L"Jpeg2000フォーマット")) {
            seen.jp2Line = Slider(jp2, IDC_OPTION_QUALITY, TBM_GETLINESIZE);
            seen.jp2Page = Slider(jp2, IDC_OPTION_QUALITY, TBM_GETPAGESIZE);
            seen.ratioBefore = lxtest::WindowText(Item(jp2, IDC_OPTION_RATIO_LABEL));
            SendMessageW(Item(jp2, IDC_OPTION_QUALITY), TBM_SETPOS, TRUE, 25);
            SendMessageW(jp2, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, 25),
                         reinterpret_cast<LPARAM>(Item(jp2, IDC_OPTION_QUALITY)));
            seen.ratioAfter = lxtest::WindowText(Item(jp2, IDC_OPTION_RATIO_LABEL));
            PressOk(jp2);
        }
        SelectRow(d, 0);
        PressOk(d);
    });
    ASSERT_EQ(CConvertDlg(options, settings).DoModal(nullptr), IDOK);
    EXPECT_EQ(seen.qualityLow, 1);
    EXPECT_EQ(seen.qualityHigh, 100);
    EXPECT_EQ(seen.qualityPos, 94);
    EXPECT_EQ(seen.smoothingPos, 1) << "0 before the first edit shows as the slider's minimum";
    EXPECT_EQ(seen.page, 5);
    EXPECT_TRUE(seen.standardChecked);
    EXPECT_FALSE(seen.fpxSliderEnabled);
    EXPECT_TRUE(seen.fpxSliderAfterCheck);
    EXPECT_EQ(seen.jp2Line, 2);
    EXPECT_EQ(seen.jp2Page, 30);
    EXPECT_EQ(seen.ratioBefore, L"1/8");
    EXPECT_EQ(seen.ratioAfter, L"1/25");
    EXPECT_EQ(options.jpegQuality, 70);
    EXPECT_EQ(options.jpegSmoothing, 20);
    EXPECT_EQ(options.jpegForm, kJpegFormProgressive);
    EXPECT_EQ(options.fpxUseJpeg, 0);
    EXPECT_EQ(options.jp2Ratio, 25);
}

// The whole tool: settings are read at the start and written only when the dialog is confirmed.
TEST(ConvertDlgTest, ToolWritesItsSettingsOnlyOnOk) {
    SavedConverterSettings saved;
    SettingsStore settings;
    lxtest::ScratchDir dir("convert-tool");
    const std::filesystem::path source = dir / "a.bmp";
    ASSERT_TRUE(SaveBmpFile(source, PackedDib::Create(300, 200, 24)));
    const std::filesystem::path out = dir / "out";
    ConvertOptions stored = SampleOptions();
    stored.saveType = 2;
    stored.resizeMode = kResizeLongSide;
    stored.size = 150;
    stored.deleteSource = 0;
    SetOutputFolder(stored, out.wstring());
    ASSERT_TRUE(settings.WriteBlock(kSection, kStatus, &stored, sizeof stored));

    {
        DialogDriver driver(L"画像フォーマット変換", DialogDriver::Press(IDCANCEL));
        EXPECT_FALSE(ConvertImageFiles(nullptr, {source.wstring()}));
    }
    ConvertOptions read = DefaultConvertOptions();
    ASSERT_EQ(settings.ReadBlock(kSection, kStatus, &read, sizeof read), 1104);
    EXPECT_EQ(std::memcmp(&read, &stored, sizeof read), 0);
    EXPECT_FALSE(std::filesystem::exists(out));

    {
        DialogDriver driver(L"画像フォーマット変換", [&](HWND d) {
            SetText(d, IDC_CONVERT_LONG_PIXELS, L"120");
            PressOk(d);
        });
        EXPECT_TRUE(ConvertImageFiles(nullptr, {source.wstring()}));
    }
    ASSERT_EQ(settings.ReadBlock(kSection, kStatus, &read, sizeof read), 1104);
    EXPECT_EQ(read.size, 120);
    EXPECT_EQ(read.saveType, 2);
    const auto result = LoadImageFile(out / "a.jpg");
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->width(), 120);
    EXPECT_EQ(result->height(), 80);
    EXPECT_TRUE(std::filesystem::exists(source));
}

TEST(ConvertDlgTest, ToolWithoutFilesShowsNothing) {
    EXPECT_FALSE(ConvertImageFiles(nullptr, {}));
}

}  // namespace
}  // namespace lx
