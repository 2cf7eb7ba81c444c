#include "PickoutDlg.h"

#include <shlwapi.h>

#include "DialogHelpers.h"
#include "FileOperations.h"
#include "ModuleResources.h"
#include "PathNames.h"
#include "PickoutDlgIds.h"
#include "SettingsStore.h"

namespace lx {

namespace {

const wchar_t* const kExifSection = MAKEINTRESOURCEW(4407);  // "Exif"
const wchar_t* const kPickoutPath = MAKEINTRESOURCEW(4617);  // "PickoutPath"
constexpr int kPathChars = 520;

// The folder of a file, without the separator that ends it unless it is a root ("C:\").
std::wstring FolderOfFile(const std::wstring& file) {
    std::wstring folder = FolderOf(file);
    if (folder.size() > 3 && IsPathSeparator(folder.back())) folder.pop_back();
    return folder;
}

std::wstring ItemText(HWND dialog, int id) {
    wchar_t text[kPathChars] = {};
    GetDlgItemTextW(dialog, id, text, kPathChars);
    return text;
}

}  // namespace

CPickoutDlg::CPickoutDlg(const std::vector<std::wstring>& files, const std::wstring& hostFolder) {
    folderGiven_ = !hostFolder.empty();
    options_.folder = folderGiven_ ? hostFolder : FolderOfFile(files.empty() ? std::wstring() : files.front());
}

INT_PTR CPickoutDlg::DoModal(HWND owner) {
    return DialogBoxParamW(ModuleInstance(), MAKEINTRESOURCEW(IDD_PICKOUT), owner, DialogProc,
                           reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK CPickoutDlg::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        auto* self = reinterpret_cast<CPickoutDlg*>(lParam);
        self->dialog_ = dialog;
        return self->OnInitDialog();
    }
    auto* self = reinterpret_cast<CPickoutDlg*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self && message == WM_COMMAND) {
        self->OnCommand(LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

BOOL CPickoutDlg::OnInitDialog() {
    CentreDialog(dialog_);
    if (!folderGiven_) {
        wchar_t saved[kPathChars] = {};
        SettingsStore settings;
        if (settings.ReadText(kExifSection, kPickoutPath, saved, sizeof saved) > 0 && saved[0] != L'\0')
            options_.folder = saved;
    }
    HWND folder = GetDlgItem(dialog_, IDC_PICKOUT_FOLDER);
    SendMessageW(folder, EM_LIMITTEXT, kPathChars - 1, 0);
    SetWindowTextW(folder, options_.folder.c_str());
    SHAutoComplete(folder, SHACF_FILESYS_DIRS);
    CheckRadioButton(dialog_, IDC_PICKOUT_SMALLEST, IDC_PICKOUT_LARGEST,
                     options_.takeLargest ? IDC_PICKOUT_LARGEST : IDC_PICKOUT_SMALLEST);
    return TRUE;
}

void CPickoutDlg::OnCommand(int id) {
    switch (id) {
        case IDC_PICKOUT_BROWSE: OnBrowse(); break;
        case IDOK: OnOk(); break;
        case IDCANCEL: EndDialog(dialog_, IDCANCEL); break;
        default: break;
    }
}

void CPickoutDlg::OnBrowse() {
    wchar_t folder[kPathChars] = {};
    lstrcpynW(folder, ItemText(dialog_, IDC_PICKOUT_FOLDER).c_str(), kPathChars);
    if (BrowseForFolder(dialog_, folder)) SetDlgItemTextW(dialog_, IDC_PICKOUT_FOLDER, folder);
}

void CPickoutDlg::OnOk() {
    const std::wstring folder = ItemText(dialog_, IDC_PICKOUT_FOLDER);
    const DWORD attributes = folder.empty() ? 0 : GetFileAttributesW(folder.c_str());
    if (folder.empty() || (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY))) {
        MessageBeep(MB_OK);
        SetFocus(GetDlgItem(dialog_, IDC_PICKOUT_FOLDER));
        return;
    }
    options_.folder = folder;
    options_.takeLargest = IsDlgButtonChecked(dialog_, IDC_PICKOUT_SMALLEST) != BST_CHECKED;
    SettingsStore settings;
    settings.WriteText(kExifSection, kPickoutPath, folder.c_str());
    EndDialog(dialog_, IDOK);
}

}  // namespace lx
