#include "HtmlSheetDlg.h"

#include <shlwapi.h>

#include <iterator>

#include "CommandLine.h"
#include "DialogButtons.h"
#include "DialogHelpers.h"
#include "FileOperations.h"
#include "HtmlSheetDlgIds.h"
#include "ModuleResources.h"

namespace lx {

namespace {

constexpr UINT kSectionWebAlbum = 4408;
constexpr UINT kValueHistory = 4619;
constexpr UINT kFormatList = 4130;
constexpr UINT kLinkList = 4131;

// The number boxes, in the order OK reads them, with the record's field of each.
constexpr struct {
    int id;
    int32_t WebAlbumSettings::*field;
} kNumberBoxes[] = {
    {IDC_ALBUM_WIDTH, &WebAlbumSettings::thumbWidth},
    {IDC_ALBUM_HEIGHT, &WebAlbumSettings::thumbHeight},
    {IDC_ALBUM_COLUMNS, &WebAlbumSettings::columns},
    {IDC_ALBUM_ROWS, &WebAlbumSettings::rows},
};

constexpr struct {
    int id;
    uint32_t bit;
} kOptionBoxes[] = {
    {IDC_ALBUM_BORDER, kAlbumTableBorder},
    {IDC_ALBUM_COPY, kAlbumCopySources},
    {IDC_ALBUM_BROWSER, kAlbumOpenBrowser},
};

std::wstring ItemText(HWND dialog, int id, int maxChars) {
    std::wstring text(static_cast<size_t>(maxChars), L'\0');
    text.resize(static_cast<size_t>(GetDlgItemTextW(dialog, id, text.data(), maxChars)));
    return text;
}

}  // namespace

INT_PTR CHtmlSheetDlg::DoModal(HWND owner) {
    RegisterDialogButtons();
    return Run(ModuleInstance(), IDD_HTMLSHEET, owner);
}

INT_PTR CHtmlSheetDlg::HandleMessage(UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnInitDialog();
        return TRUE;
    case WM_COMMAND:
        switch (LOWORD(wParam)) {
        case IDC_ALBUM_BROWSE:
            OnBrowse();
            return TRUE;
        case IDOK:
            OnOk();
            return TRUE;
        case IDCANCEL:
            EndDialog(hwnd(), IDCANCEL);
            return TRUE;
        default:
            return FALSE;
        }
    default:
        return FALSE;
    }
}

void CHtmlSheetDlg::OnInitDialog() {
    HWND dialog = hwnd();
    CentreDialog(dialog);
    HWND format = GetDlgItem(dialog, IDC_ALBUM_FORMAT);
    FillComboFromString(format, kFormatList);
    SendMessageW(format, CB_SETCURSEL, static_cast<WPARAM>(ThumbFormat(settings_)), 0);
    HWND link = GetDlgItem(dialog, IDC_ALBUM_LINK);
    FillComboFromString(link, kLinkList);
    SendMessageW(link, CB_SETCURSEL, static_cast<WPARAM>(LinkMode(settings_)), 0);
    SendDlgItemMessageW(dialog, IDC_ALBUM_COLOUR, kColorPickSet, 0, settings_.background);
    for (const auto& box : kNumberBoxes) SetDlgItemInt(dialog, box.id, static_cast<UINT>(settings_.*box.field), TRUE);
    SendDlgItemMessageW(dialog, IDC_ALBUM_TITLE, EM_LIMITTEXT, kAlbumTitleChars - 1, 0);
    SetDlgItemTextW(dialog, IDC_ALBUM_TITLE, AlbumTitle(settings_).c_str());
    for (const auto& box : kOptionBoxes)
        CheckDlgButton(dialog, box.id, (settings_.options & box.bit) ? BST_CHECKED : BST_UNCHECKED);
    HWND folder = GetDlgItem(dialog, IDC_ALBUM_FOLDER);
    store_.LoadComboHistory(MAKEINTRESOURCEW(kSectionWebAlbum), MAKEINTRESOURCEW(kValueHistory), folder,
                            kAlbumFolderHistoryEntries);
    SetWindowTextW(folder, AlbumFolder(settings_).c_str());
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (GetComboBoxInfo(folder, &info) && info.hwndItem != nullptr)
        SHAutoComplete(info.hwndItem, SHACF_FILESYS_DIRS | SHACF_AUTOSUGGEST_FORCE_ON);
}

void CHtmlSheetDlg::OnBrowse() {
    wchar_t folder[kPathChars] = {};
    GetDlgItemTextW(hwnd(), IDC_ALBUM_FOLDER, folder, static_cast<int>(kPathChars));
    if (BrowseForFolder(hwnd(), folder)) SetDlgItemTextW(hwnd(), IDC_ALBUM_FOLDER, folder);
}

bool CHtmlSheetDlg::Refuse(int controlId) {
    MessageBeep(0);
    SetFocus(GetDlgItem(hwnd(), controlId));
    return false;
}

void CHtmlSheetDlg::OnOk() {
    HWND dialog = hwnd();
    WebAlbumSettings chosen = settings_;
    const std::wstring folder = ItemText(dialog, IDC_ALBUM_FOLDER, static_cast<int>(kAlbumFolderChars));
    if (folder.empty()) return (void)Refuse(IDC_ALBUM_FOLDER);
    SetAlbumFolder(chosen, folder);
    SetAlbumTitle(chosen, ItemText(dialog, IDC_ALBUM_TITLE, static_cast<int>(kAlbumTitleChars)));
    for (const auto& box : kNumberBoxes) {
        const int value = static_cast<int>(GetDlgItemInt(dialog, box.id, nullptr, TRUE));
        if (value < 1) return (void)Refuse(box.id);
        chosen.*box.field = value;
    }
    SetThumbFormat(chosen, static_cast<int>(SendDlgItemMessageW(dialog, IDC_ALBUM_FORMAT, CB_GETCURSEL, 0, 0)));
    SetLinkMode(chosen, static_cast<int>(SendDlgItemMessageW(dialog, IDC_ALBUM_LINK, CB_GETCURSEL, 0, 0)));
    chosen.options = 0;
    for (const auto& box : kOptionBoxes)
        if (IsDlgButtonChecked(dialog, box.id) == BST_CHECKED) chosen.options |= box.bit;
    if (!PathIsDirectoryW(folder.c_str()) && !CreateFolderPath(folder.c_str())) return;
    chosen.background = static_cast<uint32_t>(SendDlgItemMessageW(dialog, IDC_ALBUM_COLOUR, kColorPickGet, 0, 0));
    store_.SaveComboHistory(MAKEINTRESOURCEW(kSectionWebAlbum), MAKEINTRESOURCEW(kValueHistory),
                            GetDlgItem(dialog, IDC_ALBUM_FOLDER), kAlbumFolderHistoryEntries, folder.c_str());
    settings_ = chosen;
    EndDialog(dialog, IDOK);
}

}  // namespace lx
