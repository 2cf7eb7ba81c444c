#include "DialogHelpers.h"

#include "ComScope.h"
#include "CoreServices.h"
#include "ImageTypes.h"
#include "ModuleResources.h"

#include <commctrl.h>
#include <commdlg.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <shobjidl.h>

#include <algorithm>
#include <vector>

namespace lx {

namespace {

constexpr UINT kFolderErrorCaption = 4086;
constexpr UINT kRetryCancelWarning = MB_RETRYCANCEL | MB_ICONWARNING;  // 53
constexpr DWORD kClassicDialogFlags = OFN_EXPLORER | OFN_HIDEREADONLY;  // 0x80004
constexpr size_t kTitleChars = 260;
constexpr FileFilter kAllFiles = {L"All(*.*)", L"*.*"};

// Releases a COM interface pointer on every exit path.
template <typename T>
class ComPtr {
public:
    ~ComPtr() {
        if (p_) p_->Release();
    }
    T** operator&() { return &p_; }
    T* operator->() const { return p_; }
    T* get() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }

private:
    T* p_ = nullptr;
};

bool CopyToPathBuffer(wchar_t* path, const std::wstring& text) {
    if (text.size() >= kPathChars) return false;
    std::copy(text.begin(), text.end(), path);
    path[text.size()] = L'\0';
    return true;
}

std::wstring FolderOf(const wchar_t* path) {
    wchar_t folder[kPathChars] = {};
    lstrcpynW(folder, path, kPathChars);
    PathRemoveFileSpecW(folder);
    return folder;
}

bool IsFolder(const wchar_t* path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool ShowItemDialog(IFileDialog* dialog, HWND owner, const wchar_t* title, const wchar_t* initialFolder,
                    wchar_t* path, const FileFilter* filters, int filterCount) {
    const bool hasPath = path != nullptr && *path != L'\0';
    if (hasPath) dialog->SetFileName(PathFindFileNameW(path));
    if (title != nullptr) dialog->SetTitle(TextOrResString(title).c_str());

    std::vector<COMDLG_FILTERSPEC> specs;
    for (int i = 0; i < filterCount; ++i) specs.push_back({filters[i].description, filters[i].pattern});
    if (specs.empty()) specs.push_back({kAllFiles.description, kAllFiles.pattern});
    dialog->SetFileTypes(static_cast<UINT>(specs.size()), specs.data());
    dialog->SetFileTypeIndex(1);

    std::wstring folder = initialFolder && *initialFolder ? std::wstring(initialFolder)
                                                          : (hasPath ? FolderOf(path) : std::wstring());
    if (!folder.empty()) {
        ComPtr<IShellItem> folderItem;
        if (SUCCEEDED(SHCreateItemFromParsingName(folder.c_str(), nullptr, IID_IShellItem,
                                                  reinterpret_cast<void**>(&folderItem)))) {
            dialog->SetFolder(folderItem.get());
        }
    }

    if (FAILED(dialog->Show(owner))) return false;
    ComPtr<IShellItem> result;
    if (FAILED(dialog->GetResult(&result))) return false;
    wchar_t* chosen = nullptr;
    if (FAILED(result->GetDisplayName(SIGDN_FILESYSPATH, &chosen))) return false;
    const bool stored = CopyToPathBuffer(path, chosen);
    CoTaskMemFree(chosen);
    return stored;
}

// GetOpenFileNameW or GetSaveFileNameW over `file` (a path buffer holding the initial name);
// `filterIndex` receives the zero-based index of the chosen filter.
bool RunClassicDialog(HWND owner, bool open, const std::wstring& filter, const std::wstring& title,
                      const std::wstring& folder, wchar_t* file, int* filterIndex) {
    wchar_t fileTitle[kTitleChars] = {};
    OPENFILENAMEW ofn = {};
    ofn.lStructSize = sizeof(ofn);
    ofn.hwndOwner = owner;
    ofn.lpstrFilter = filter.c_str();
    ofn.nFilterIndex = 1;
    ofn.lpstrFile = file;
    ofn.nMaxFile = kPathChars;
    ofn.lpstrFileTitle = fileTitle;
    ofn.nMaxFileTitle = kTitleChars;
    ofn.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    ofn.lpstrTitle = title.empty() ? nullptr : title.c_str();
    ofn.Flags = kClassicDialogFlags;
    const BOOL chosen = open ? GetOpenFileNameW(&ofn) : GetSaveFileNameW(&ofn);
    if (chosen && filterIndex) *filterIndex = static_cast<int>(ofn.nFilterIndex) - 1;
    return chosen != FALSE;
}

}  // namespace

std::wstring FormatWithArgument(const std::wstring& text, const std::wstring& argument) {
    if (argument.empty()) return text;
    std::wstring result;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'%' && i + 1 < text.size() && text[i + 1] == L'1') {
            result += argument;
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

int ShowMessage(const wchar_t* text, const wchar_t* caption, const wchar_t* argument, UINT flags) {
    const std::wstring message = FormatWithArgument(TextOrResString(text), argument ? argument : L"");
    const std::wstring title = TextOrResString(caption);
    return MessageBoxW(GetActiveWindow(), message.c_str(), title.c_str(), flags);
}

void FillComboFromString(HWND combo, UINT stringId) {
    wchar_t className[32] = {};
    GetClassNameW(combo, className, 32);
    const bool plain = lstrcmpiW(className, WC_COMBOBOXW) == 0;
    const bool extended = lstrcmpiW(className, WC_COMBOBOXEXW) == 0;
    if (!plain && !extended) return;

    const std::wstring list = LoadResString(stringId);
    size_t start = 0;
    while (start < list.size()) {
        size_t end = list.find(L';', start);
        if (end == std::wstring::npos) end = list.size();
        std::wstring item = list.substr(start, end - start);
        if (plain) {
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
        } else {
            COMBOBOXEXITEMW entry = {};
            entry.mask = CBEIF_TEXT;
            entry.iItem = -1;  // append
            entry.pszText = item.data();
            SendMessageW(combo, CBEM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&entry));
        }
        start = end + 1;
    }
}

bool CreateFolderPath(const wchar_t* path) {
    if (path == nullptr) return false;
    if (lstrlenW(path) < 3 || PathIsRootW(path)) {
        SetLastError(ERROR_BAD_PATHNAME);
        return true;
    }
    for (;;) {
        int error = SHCreateDirectoryExW(nullptr, path, nullptr);
        if (error == ERROR_SUCCESS || error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS) {
            if (IsFolder(path)) return true;
            // Something that is not a folder holds the name: asking again would never end.
            error = ERROR_ALREADY_EXISTS;
        }
        const int button = ShowSystemError(GetActiveWindow(), static_cast<DWORD>(error),
                                           MAKEINTRESOURCEW(kFolderErrorCaption), path, kRetryCancelWarning);
        if (button != IDRETRY) return false;
    }
}

std::wstring ClassicFilterFromText(std::wstring text) {
    for (wchar_t& c : text) {
        if (c == L'|') c = L'\0';
    }
    return text;
}

std::wstring ClassicFilterFromPairs(const FileFilter* filters, int filterCount) {
    if (filters == nullptr || filterCount <= 0) {
        filters = &kAllFiles;
        filterCount = 1;
    }
    std::wstring text;
    for (int i = 0; i < filterCount; ++i) {
        text += std::wstring(filters[i].description) + L"|" + filters[i].pattern + L"|";
    }
    return ClassicFilterFromText(text);
}

bool ShowClassicFileDialog(HWND owner, bool open, const wchar_t* title, const wchar_t* initialFolder, wchar_t* path,
                           const FileFilter* filters, int filterCount) {
    if (path == nullptr) return false;
    const std::wstring folder = initialFolder && *initialFolder ? std::wstring(initialFolder)
                                                                : (*path ? FolderOf(path) : std::wstring());
    wchar_t file[kPathChars] = {};
    if (*path) lstrcpynW(file, PathFindFileNameW(path), kPathChars);
    if (!RunClassicDialog(owner, open, ClassicFilterFromPairs(filters, filterCount),
                          title ? TextOrResString(title) : std::wstring(), folder, file, nullptr)) {
        return false;
    }
    return CopyToPathBuffer(path, file);
}

bool ShowItemFileDialog(HWND owner, bool open, const wchar_t* title, const wchar_t* initialFolder, wchar_t* path,
                        const FileFilter* filters, int filterCount) {
    if (path == nullptr) return false;
    ComScope com;
    ComPtr<IFileDialog> dialog;
    const HRESULT created = CoCreateInstance(open ? CLSID_FileOpenDialog : CLSID_FileSaveDialog, nullptr,
                                             CLSCTX_INPROC_SERVER, IID_IFileDialog,
                                             reinterpret_cast<void**>(&dialog));
    if (FAILED(created) || !dialog) {
        return ShowClassicFileDialog(owner, open, title, initialFolder, path, filters, filterCount);
    }
    return ShowItemDialog(dialog.get(), owner, title, initialFolder, path, filters, filterCount);
}

bool ShowImageFileDialog(HWND owner, UINT titleId, UINT filterId, wchar_t* path, bool open, int* filterIndex) {
    if (path == nullptr) return false;
    wchar_t folder[kPathChars] = {};
    if (*path && GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES) {
        lstrcpynW(folder, FolderOf(path).c_str(), kPathChars);
    } else if (FAILED(SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, folder))) {
        folder[0] = L'\0';
    }
    // Both texts are read into the classic 260-character buffers.
    const std::wstring title = LoadResString(titleId).substr(0, kTitleChars - 1);
    const std::wstring filter = ClassicFilterFromText(LoadResString(filterId).substr(0, kTitleChars - 1));
    wchar_t file[kPathChars] = {};
    if (*path && !IsFolder(path)) lstrcpynW(file, PathFindFileNameW(path), kPathChars);
    int chosenIndex = 0;
    if (!RunClassicDialog(owner, open, filter, title, folder, file, &chosenIndex)) return false;
    if (!CopyToPathBuffer(path, file)) return false;
    if (filterIndex) *filterIndex = chosenIndex;
    return true;
}

int RadioGroupSelection(HWND dialog, int firstId, int lastId) {
    if (firstId > lastId) return 0;
    for (int id = firstId; id <= lastId; ++id) {
        if (IsDlgButtonChecked(dialog, id) == BST_CHECKED) return id;
    }
    return 0;
}

void CentreDialog(HWND dialog) {
    HWND owner = GetWindow(dialog, GW_OWNER);
    RECT work{}, area{}, box{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    if (!owner || !GetWindowRect(owner, &area)) area = work;
    GetWindowRect(dialog, &box);
    const int width = box.right - box.left, height = box.bottom - box.top;
    int x = (area.left + area.right - width) / 2, y = (area.top + area.bottom - height) / 2;
    // Keep the whole dialog on the screen even when the owner is near an edge.
    x = std::max(static_cast<int>(work.left), std::min(x, static_cast<int>(work.right) - width));
    y = std::max(static_cast<int>(work.top), std::min(y, static_cast<int>(work.bottom) - height));
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace lx
