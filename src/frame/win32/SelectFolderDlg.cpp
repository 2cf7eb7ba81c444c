#include "SelectFolderDlg.h"

#include <commctrl.h>
#include <shlwapi.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "CommandLine.h"
#include "DialogHelpers.h"
#include "FolderTree.h"
#include "ModuleResources.h"
#include "RectClamp.h"
#include "SelectFolderDlgIds.h"
#include "SettingsStore.h"
#include "TypedFolder.h"
#include "Window.h"

namespace lx {

namespace {

constexpr UINT kSectionSelectFolder = 4409;
constexpr UINT kValueHistory = 4619;
constexpr UINT kValueWindowPlacement = 4602;
constexpr int kHistoryEntries = 25;

std::wstring IdListPath(PCIDLIST_ABSOLUTE list) {
    wchar_t path[kPathChars] = {};
    if (!list || !SHGetPathFromIDListW(list, path)) return {};
    return path;
}

std::wstring ErrorText(DWORD error) {
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring result = text ? text : L"";
    LocalFree(text);
    return result;
}

// How each control follows the dialog's size: its left and top edges move with the width and
// height change (1) or stay (0); its right and bottom edges likewise.
struct Anchor {
    int id;
    int left, top, right, bottom;
};
constexpr Anchor kAnchors[] = {
    {IDC_SELECTFOLDER_TEXT, 0, 0, 1, 0}, {IDC_SELECTFOLDER_COMBO, 0, 0, 1, 0}, {IDC_SELECTFOLDER_TREE, 0, 0, 1, 1},
    {IDOK, 1, 1, 1, 1},                  {IDCANCEL, 1, 1, 1, 1},               {IDC_SELECTFOLDER_GRIP, 1, 1, 1, 1},
};

class CSelectFolderDlg : public Dialog {
public:
    explicit CSelectFolderDlg(const std::wstring& initialFolder) : initialFolder_(initialFolder) {}
    ~CSelectFolderDlg() override { ILFree(result_); }

    PIDLIST_ABSOLUTE TakeResult() { return std::exchange(result_, nullptr); }

protected:
    INT_PTR HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
        case WM_INITDIALOG:
            OnInitDialog();
            return FALSE;  // the focus is set: on the combo box
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = minimumSize_;
            return TRUE;
        case WM_SIZE:
            Layout();
            return TRUE;
        case WM_COMMAND:
            return OnCommand(LOWORD(wParam), HIWORD(wParam));
        case WM_NOTIFY:
            OnNotify(reinterpret_cast<NMHDR*>(lParam));
            return TRUE;
        default:
            return FALSE;
        }
    }

private:
    HWND Item(int id) const { return GetDlgItem(hwnd(), id); }
    HWND Tree() const { return Item(IDC_SELECTFOLDER_TREE); }
    HWND Combo() const { return Item(IDC_SELECTFOLDER_COMBO); }

    void OnInitDialog() {
        RECT window;
        GetWindowRect(hwnd(), &window);
        minimumSize_ = {window.right - window.left, window.bottom - window.top};
        GetClientRect(hwnd(), &openingClient_);
        for (size_t i = 0; i < std::size(kAnchors); ++i) {
            GetWindowRect(Item(kAnchors[i].id), &openingRects_[i]);
            MapWindowPoints(nullptr, hwnd(), reinterpret_cast<POINT*>(&openingRects_[i]), 2);
        }
        if (!initialFolder_.empty())
            SendMessageW(Tree(), kFolderTreeSelect, 0, reinterpret_cast<LPARAM>(initialFolder_.c_str()));
        store_.LoadComboHistory(MAKEINTRESOURCEW(kSectionSelectFolder), MAKEINTRESOURCEW(kValueHistory), Combo(),
                                kHistoryEntries);
        COMBOBOXINFO info = {};
        info.cbSize = sizeof info;
        if (GetComboBoxInfo(Combo(), &info) && info.hwndItem != nullptr)
            SHAutoComplete(info.hwndItem, SHACF_FILESYS_DIRS | SHACF_AUTOSUGGEST_FORCE_ON);
        SetWindowTextW(Combo(), L"");
        SetFocus(Combo());
        RestorePlacement();
    }

    void RestorePlacement() {
        WINDOWPLACEMENT placement = {};
        if (store_.ReadBlock(MAKEINTRESOURCEW(kSectionSelectFolder), MAKEINTRESOURCEW(kValueWindowPlacement),
                             &placement, sizeof placement) != static_cast<int>(sizeof placement)) {
            CentreDialog(hwnd());
            return;
        }
        // A placement saved on a monitor that is gone, or on a larger desktop, comes back whole.
        RECT work;
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
        const RECT& saved = placement.rcNormalPosition;
        // Never smaller than the dialog opens, and then whole on the screen.
        const int width = std::max<int>(saved.right - saved.left, minimumSize_.x);
        const int height = std::max<int>(saved.bottom - saved.top, minimumSize_.y);
        const PlainRect onScreen = ClampRectInto({saved.left, saved.top, saved.left + width, saved.top + height},
                                                 {work.left, work.top, work.right, work.bottom});
        placement.length = sizeof placement;
        placement.rcNormalPosition = {onScreen.left, onScreen.top, onScreen.right, onScreen.bottom};
        placement.showCmd = SW_SHOWNORMAL;
        placement.flags = 0;
        SetWindowPlacement(hwnd(), &placement);
    }

    void Layout() {
        RECT client;
        GetClientRect(hwnd(), &client);
        const int dx = client.right - openingClient_.right, dy = client.bottom - openingClient_.bottom;
        for (size_t i = 0; i < std::size(kAnchors); ++i) {
            const Anchor& a = kAnchors[i];
            const RECT& r = openingRects_[i];
            const int left = r.left + a.left * dx, top = r.top + a.top * dy;
            MoveWindow(Item(a.id), left, top, r.right + a.right * dx - left, r.bottom + a.bottom * dy - top, TRUE);
        }
    }

    INT_PTR OnCommand(int id, int code) {
        switch (id) {
        case IDC_SELECTFOLDER_COMBO:
            if (code == CBN_SELCHANGE) FollowHistory();
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
    }

    void FollowHistory() {
        const LRESULT selected = SendMessageW(Combo(), CB_GETCURSEL, 0, 0);
        if (selected == CB_ERR) return;
        wchar_t text[kPathChars] = {};
        if (SendMessageW(Combo(), CB_GETLBTEXTLEN, static_cast<WPARAM>(selected), 0) >= LRESULT(kPathChars)) return;
        SendMessageW(Combo(), CB_GETLBTEXT, static_cast<WPARAM>(selected), reinterpret_cast<LPARAM>(text));
        if (*text) SendMessageW(Tree(), kFolderTreeSelect, 0, reinterpret_cast<LPARAM>(text));
    }

    // A folder picked in the tree shows in the text box, so OK takes exactly what is shown.
    void OnNotify(const NMHDR* header) {
        if (header->idFrom != IDC_SELECTFOLDER_TREE || header->code != TVN_SELCHANGEDW) return;
        const auto* list = reinterpret_cast<PCIDLIST_ABSOLUTE>(SendMessageW(Tree(), kFolderTreeSelected, 0, 0));
        SetWindowTextW(Combo(), IdListPath(list).c_str());
    }

    bool Refuse(const std::wstring& path, DWORD error) {
        const std::wstring text = path + L"\n\n" + ErrorText(error);
        wchar_t caption[128] = {};
        GetWindowTextW(hwnd(), caption, 128);
        MessageBoxW(hwnd(), text.c_str(), caption, MB_OK | MB_ICONERROR);
        return false;
    }

    // The folder a typed text names, as an identifier list; null (the dialog stays) when it
    // cannot be reached.
    PIDLIST_ABSOLUTE TypedFolder(const std::wstring& typed) {
        wchar_t expanded[kPathChars] = {};
        if (!ExpandEnvironmentStringsW(typed.c_str(), expanded, kPathChars)) lstrcpynW(expanded, typed.c_str(), kPathChars);
        std::wstring path = expanded;
        if (IsDriveAlone(path)) {
            wchar_t current[kPathChars] = {};
            const std::wstring drive = path.substr(0, 1) + L":";
            if (!GetFullPathNameW(drive.c_str(), kPathChars, current, nullptr) || !PathIsDirectoryW(current))
                PathBuildRootW(current, (path[0] | 0x20) - L'a');
            return ILCreateFromPathW(current);
        }
        const std::wstring uncRoot = UncRootOf(path);
        if (!uncRoot.empty() && !IsUncServerAlone(path)) {
            std::wstring share = uncRoot;
            if (!SHValidateUNC(hwnd(), share.data(), VALIDATEUNC_CONNECT)) return Refuse(path, GetLastError()), nullptr;
        }
        if (!IsUncServerAlone(path)) {
            const DWORD attributes = GetFileAttributesW(path.c_str());
            if (attributes == INVALID_FILE_ATTRIBUTES) {
                const DWORD error = GetLastError();
                if (error == ERROR_BAD_NETPATH || error == ERROR_INVALID_NAME || error == ERROR_NO_NETWORK)
                    return Refuse(path, error), nullptr;
            } else if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
                // A typed file opens its folder.
                wchar_t folder[kPathChars] = {};
                lstrcpynW(folder, path.c_str(), kPathChars);
                PathRemoveFileSpecW(folder);
                path = folder;
            }
        }
        return ILCreateFromPathW(path.c_str());
    }

    void OnOk() {
        const auto* selection = reinterpret_cast<PCIDLIST_ABSOLUTE>(SendMessageW(Tree(), kFolderTreeSelected, 0, 0));
        if (!selection) {
            MessageBeep(0);
            return;
        }
        wchar_t text[kPathChars] = {};
        GetWindowTextW(Combo(), text, kPathChars);
        PIDLIST_ABSOLUTE result = nullptr;
        if (!*text || lstrcmpiW(text, IdListPath(selection).c_str()) == 0) result = ILClone(selection);
        else result = TypedFolder(text);
        if (!result) {
            MessageBeep(0);
            return;
        }
        const std::wstring chosen = IdListPath(result);
        if (!chosen.empty())
            store_.SaveComboHistory(MAKEINTRESOURCEW(kSectionSelectFolder), MAKEINTRESOURCEW(kValueHistory), Combo(),
                                    kHistoryEntries, chosen.c_str());
        WINDOWPLACEMENT placement = {sizeof placement};
        if (GetWindowPlacement(hwnd(), &placement))
            store_.WriteBlock(MAKEINTRESOURCEW(kSectionSelectFolder), MAKEINTRESOURCEW(kValueWindowPlacement),
                              &placement, sizeof placement);
        ILFree(result_);
        result_ = result;
        EndDialog(hwnd(), IDOK);
    }

    std::wstring initialFolder_;
    SettingsStore store_;
    PIDLIST_ABSOLUTE result_ = nullptr;
    POINT minimumSize_ = {};
    RECT openingClient_ = {};
    RECT openingRects_[std::size(kAnchors)] = {};
};

}  // namespace

PIDLIST_ABSOLUTE RunSelectFolderDialog(HWND owner, const std::wstring& initialFolder) {
    RegisterFolderTree();
    CSelectFolderDlg dialog(initialFolder);
    if (dialog.Run(ModuleInstance(), IDD_SELECTFOLDER, owner) != IDOK) return nullptr;
    return dialog.TakeResult();
}

std::wstring SelectFolderPath(HWND owner, const std::wstring& initialFolder) {
    const PIDLIST_ABSOLUTE list = RunSelectFolderDialog(owner, initialFolder);
    std::wstring path = IdListPath(list);
    ILFree(list);
    return path;
}

}  // namespace lx
