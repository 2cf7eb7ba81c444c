#include "ConvertDlg.h"

#include <commctrl.h>
#include <shlwapi.h>

#include <string>

#include "ConvertDlgIds.h"
#include "DialogHelpers.h"
#include "FileOperations.h"
#include "ConvertFormatDlgs.h"
#include "ImageTypes.h"
#include "ModuleResources.h"

namespace lx {

namespace {

constexpr UINT kSectionConverter = 4406;
constexpr UINT kValueFolderHistory = 4613;

// The rows of the format list whose codec has an option dialog.
constexpr int kJpegRow = 0;
constexpr int kFpxRow = 6;
constexpr int kJpeg2000Row = 9;

const int kSizeFields[] = {IDC_CONVERT_LONG_PIXELS, IDC_CONVERT_SHORT_PIXELS, IDC_CONVERT_PERCENT};

int FormatRowCount() {
    int rows = 0;
    while (kSaveFormats[rows].id != kImageTableEnd) ++rows;
    return rows;
}

// A small picture glyph for the format rows: a framed landscape.
HIMAGELIST MakeFormatIcons() {
    HIMAGELIST list = ImageList_Create(16, 16, ILC_COLOR24 | ILC_MASK, 1, 0);
    if (list == nullptr) return nullptr;
    HDC screen = GetDC(nullptr);
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 16, 16);
    HGDIOBJ old = SelectObject(dc, bitmap);
    const RECT all = {0, 0, 16, 16};
    HBRUSH magenta = CreateSolidBrush(RGB(255, 0, 255));
    FillRect(dc, &all, magenta);
    DeleteObject(magenta);
    HBRUSH sky = CreateSolidBrush(RGB(150, 200, 255));
    HPEN frame = CreatePen(PS_SOLID, 1, RGB(60, 60, 60));
    HGDIOBJ oldBrush = SelectObject(dc, sky);
    HGDIOBJ oldPen = SelectObject(dc, frame);
    Rectangle(dc, 1, 2, 15, 14);
    HBRUSH hill = CreateSolidBrush(RGB(40, 150, 60));
    SelectObject(dc, hill);
    const POINT mountain[] = {{2, 13}, {7, 6}, {10, 10}, {12, 8}, {14, 13}};
    Polygon(dc, mountain, 5);
    SelectObject(dc, oldBrush);
    SelectObject(dc, oldPen);
    DeleteObject(hill);
    DeleteObject(sky);
    DeleteObject(frame);
    SelectObject(dc, old);
    ImageList_AddMasked(list, bitmap, RGB(255, 0, 255));
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    return list;
}

std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

}  // namespace

CConvertDlg::CConvertDlg(ConvertOptions& options, SettingsStore& settings)
    : options_(options), working_(options), settings_(settings) {}

CConvertDlg::~CConvertDlg() {
    if (icons_ != nullptr) ImageList_Destroy(icons_);
}

INT_PTR CConvertDlg::DoModal(HWND owner) {
    return DialogBoxParamW(ModuleInstance(), MAKEINTRESOURCEW(IDD_CONVERT), owner, DialogProc,
                           reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK CConvertDlg::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        auto* self = reinterpret_cast<CConvertDlg*>(lParam);
        self->dialog_ = dialog;
        CentreDialog(dialog);
        self->OnInitDialog();
        return TRUE;
    }
    auto* self = reinterpret_cast<CConvertDlg*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr) return FALSE;
    switch (message) {
    case WM_COMMAND:
        self->OnCommand(LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_NOTIFY: {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header->idFrom == IDC_CONVERT_FORMATS && header->code == LVN_ITEMCHANGED) self->OnFormatChanged();
        return FALSE;
    }
    default:
        return FALSE;
    }
}

void CConvertDlg::OnInitDialog() {
    FillFormats();
    FillPercents();
    ShowResize();
    LoadFolderHistory();
    EnableControls();
}

void CConvertDlg::FillFormats() {
    HWND list = GetDlgItem(dialog_, IDC_CONVERT_FORMATS);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT);
    icons_ = MakeFormatIcons();
    ListView_SetImageList(list, icons_, LVSIL_SMALL);
    LVCOLUMNW column = {};
    column.mask = LVCF_WIDTH;
    column.cx = 60;
    ListView_InsertColumn(list, 0, &column);
    ListView_InsertColumn(list, 1, &column);
    int selected = 0;
    for (int row = 0; kSaveFormats[row].id != kImageTableEnd; ++row) {
        LVITEMW item = {};
        item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
        item.iItem = row;
        item.pszText = const_cast<wchar_t*>(kSaveFormats[row].shortName);
        item.iImage = 0;
        item.lParam = kSaveFormats[row].id;
        ListView_InsertItem(list, &item);
        ListView_SetItemText(list, row, 1, const_cast<wchar_t*>(kSaveFormats[row].longName));
        if (kSaveFormats[row].id == working_.saveType) selected = row;
    }
    ListView_SetItemState(list, selected, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(list, selected, FALSE);
    ListView_SetColumnWidth(list, 0, LVSCW_AUTOSIZE);
    ListView_SetColumnWidth(list, 1, LVSCW_AUTOSIZE);
}

void CConvertDlg::FillPercents() {
    HWND combo = GetDlgItem(dialog_, IDC_CONVERT_PERCENT);
    for (int percent = kPercentFirst; percent <= kPercentLast; percent += kPercentStep)
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(std::to_wstring(percent).c_str()));
    SendMessageW(combo, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(L"100"));
}

void CConvertDlg::ShowResize() {
    int mode = working_.resizeMode;
    if (mode < kResizeLongSide || mode > kResizePercent) mode = kResizePercent;
    ChooseMode(mode);
    const std::wstring size = std::to_wstring(working_.size);
    if (mode == kResizePercent) {
        HWND combo = GetDlgItem(dialog_, IDC_CONVERT_PERCENT);
        const LRESULT found = SendMessageW(combo, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                           reinterpret_cast<LPARAM>(size.c_str()));
        if (found != CB_ERR) SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(found), 0);
        else {
            // The list's 100 must not stay selected under a typed value.
            SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
            SetWindowTextW(combo, size.c_str());
        }
    } else {
        SetDlgItemTextW(dialog_, kSizeFields[mode], size.c_str());
    }
    CheckDlgButton(dialog_, IDC_CONVERT_RESIZE, working_.resize ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog_, IDC_CONVERT_NO_ENLARGE, working_.noEnlarge ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog_, IDC_CONVERT_DELETE_SOURCE, working_.deleteSource ? BST_CHECKED : BST_UNCHECKED);
}

void CConvertDlg::LoadFolderHistory() {
    HWND combo = GetDlgItem(dialog_, IDC_CONVERT_FOLDER);
    settings_.LoadComboHistory(MAKEINTRESOURCEW(kSectionConverter), MAKEINTRESOURCEW(kValueFolderHistory), combo,
                               kFolderHistoryEntries);
    SetWindowTextW(combo, OutputFolder(working_).c_str());
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (GetComboBoxInfo(combo, &info) && info.hwndItem != nullptr)
        SHAutoComplete(info.hwndItem, SHACF_FILESYS_DIRS | SHACF_AUTOSUGGEST_FORCE_ON);
}

int CConvertDlg::SelectedFormatRow() const {
    return ListView_GetNextItem(GetDlgItem(dialog_, IDC_CONVERT_FORMATS), -1, LVNI_SELECTED);
}

// Checks the radio of `mode` and clears the other two, whatever the buttons did themselves.
void CConvertDlg::ChooseMode(int mode) {
    mode_ = mode;
    CheckRadioButton(dialog_, IDC_CONVERT_BY_LONG, IDC_CONVERT_BY_PERCENT, IDC_CONVERT_BY_LONG + mode);
}

void CConvertDlg::EnableControls() {
    const bool resize = IsDlgButtonChecked(dialog_, IDC_CONVERT_RESIZE) == BST_CHECKED;
    for (int id = IDC_CONVERT_BY_LONG; id <= IDC_CONVERT_BY_PERCENT; ++id) EnableWindow(GetDlgItem(dialog_, id), resize);
    for (int i = 0; i < 3; ++i) EnableWindow(GetDlgItem(dialog_, kSizeFields[i]), resize && mode_ == i);
    EnableWindow(GetDlgItem(dialog_, IDC_CONVERT_NO_ENLARGE), resize && mode_ != kResizePercent);
    const int row = SelectedFormatRow();
    EnableWindow(GetDlgItem(dialog_, IDC_CONVERT_FORMAT_OPTIONS),
                 row == kJpegRow || row == kFpxRow || row == kJpeg2000Row);
}

void CConvertDlg::OnCommand(int id, int code) {
    switch (id) {
    case IDC_CONVERT_BY_LONG:
    case IDC_CONVERT_BY_SHORT:
    case IDC_CONVERT_BY_PERCENT:
        if (code == BN_CLICKED) ChooseMode(id - IDC_CONVERT_BY_LONG);
        [[fallthrough]];
    case IDC_CONVERT_RESIZE:
        if (code == BN_CLICKED) EnableControls();
        break;
    case IDC_CONVERT_FORMAT_OPTIONS:
        OnFormatOptions();
        break;
    case IDC_CONVERT_BROWSE:
        OnBrowse();
        break;
    case IDOK:
        OnOk();
        break;
    case IDCANCEL:
        EndDialog(dialog_, IDCANCEL);
        break;
    default:
        break;
    }
}

void CConvertDlg::OnFormatChanged() { EnableControls(); }

void CConvertDlg::OnFormatOptions() {
    switch (SelectedFormatRow()) {
    case kJpegRow:
        CJpegOption(working_).DoModal(dialog_);
        break;
    case kFpxRow:
        CFpxOption(working_).DoModal(dialog_);
        break;
    case kJpeg2000Row:
        CJp2Option(working_).DoModal(dialog_);
        break;
    default:
        break;
    }
}

void CConvertDlg::OnBrowse() {
    HWND combo = GetDlgItem(dialog_, IDC_CONVERT_FOLDER);
    wchar_t folder[kPathChars] = {};
    lstrcpynW(folder, WindowText(combo).c_str(), static_cast<int>(kPathChars));
    if (BrowseForFolder(dialog_, folder)) SetWindowTextW(combo, folder);
}

void CConvertDlg::Refuse(int controlId) {
    MessageBeep(MB_OK);
    SetFocus(GetDlgItem(dialog_, controlId));
}

void CConvertDlg::OnOk() {
    const int row = SelectedFormatRow();
    if (row < 0 || row >= FormatRowCount()) return Refuse(IDC_CONVERT_FORMATS);
    ConvertOptions chosen = working_;
    chosen.saveType = kSaveFormats[row].id;
    chosen.resize = IsDlgButtonChecked(dialog_, IDC_CONVERT_RESIZE) == BST_CHECKED ? 1 : 0;
    chosen.resizeMode = mode_;
    BOOL read = FALSE;
    const int field = kSizeFields[chosen.resizeMode];
    chosen.size = static_cast<int32_t>(GetDlgItemInt(dialog_, field, &read, TRUE));
    if (!read || chosen.size < 1) return Refuse(field);
    chosen.noEnlarge = IsDlgButtonChecked(dialog_, IDC_CONVERT_NO_ENLARGE) == BST_CHECKED ? 1 : 0;
    HWND combo = GetDlgItem(dialog_, IDC_CONVERT_FOLDER);
    const std::wstring folder = WindowText(combo);
    if (folder.empty()) return Refuse(IDC_CONVERT_FOLDER);
    SetOutputFolder(chosen, folder);
    chosen.deleteSource = IsDlgButtonChecked(dialog_, IDC_CONVERT_DELETE_SOURCE) == BST_CHECKED ? 1 : 0;
    settings_.SaveComboHistory(MAKEINTRESOURCEW(kSectionConverter), MAKEINTRESOURCEW(kValueFolderHistory), combo,
                               kFolderHistoryEntries, folder.c_str());
    options_ = chosen;
    EndDialog(dialog_, IDOK);
}

}  // namespace lx
