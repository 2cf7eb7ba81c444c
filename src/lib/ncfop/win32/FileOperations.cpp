#include "FileOperations.h"

#include "ComScope.h"
#include "CoreServices.h"

#include <shlobj.h>
#include <shlwapi.h>

namespace lx {

namespace {

constexpr size_t kPathChars = 520;
constexpr const wchar_t* kErrorCaption = L"Quarry7";
constexpr FILEOP_FLAGS kQuietRecycle = FOF_SILENT | FOF_NOCONFIRMATION | FOF_ALLOWUNDO | FOF_FILESONLY;  // 0xD4

bool CopyToPathBuffer(wchar_t* out, const std::wstring& text) {
    if (text.empty() || text.size() >= kPathChars) return false;
    text.copy(out, text.size());
    out[text.size()] = L'\0';
    return true;
}

// The upper-case letter of a drive, 0 when `c` names none.
wchar_t DriveLetter(wchar_t c) {
    if (c >= L'a' && c <= L'z') return static_cast<wchar_t>(c - L'a' + L'A');
    return (c >= L'A' && c <= L'Z') ? c : 0;
}

// `path` itself when it is a folder, else its nearest parent that is; empty when none is. The
// shell's picker selects nothing (and shows its root) for a path it cannot find, such as an
// output folder that the tool has yet to create.
std::wstring NearestExistingFolder(const wchar_t* path) {
    wchar_t folder[kPathChars] = {};
    lstrcpynW(folder, path, static_cast<int>(kPathChars));
    while (folder[0] != L'\0' && !PathIsDirectoryW(folder)) {
        if (!PathRemoveFileSpecW(folder)) return std::wstring();
    }
    return folder;
}

int CALLBACK SelectStartFolder(HWND dialog, UINT message, LPARAM, LPARAM start) {
    if (message == BFFM_INITIALIZED && start != 0 && *reinterpret_cast<const wchar_t*>(start)) {
        SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, start);
        // The new-style picker may still be filling its tree and drop that selection (the first
        // picker of a process does): ask once more when the dialog has taken its first messages.
        PostMessageW(dialog, BFFM_SETSELECTIONW, TRUE, start);
    }
    return 0;
}

}  // namespace

bool BrowseForFolder(HWND owner, wchar_t* folder) {
    if (folder == nullptr) return false;
    ComScope com;
    const std::wstring start = NearestExistingFolder(folder);
    BROWSEINFOW info = {};
    info.hwndOwner = owner;
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    info.lpfn = SelectStartFolder;
    info.lParam = reinterpret_cast<LPARAM>(start.c_str());
    PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&info);
    if (chosen == nullptr) return false;
    wchar_t path[kPathChars] = {};
    const bool ok = SHGetPathFromIDListEx(chosen, path, kPathChars, GPFIDL_DEFAULT) && CopyToPathBuffer(folder, path);
    CoTaskMemFree(chosen);
    return ok;
}

bool EnsureOutputFolder(HWND owner, const wchar_t* folder) {
    if (folder == nullptr || *folder == L'\0') {
        ShowSystemError(owner, ERROR_PATH_NOT_FOUND, kErrorCaption, folder, MB_OK | MB_ICONWARNING);
        return false;
    }
    const DWORD attributes = GetFileAttributesW(folder);
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if (attributes & FILE_ATTRIBUTE_DIRECTORY) return true;
        ShowSystemError(owner, ERROR_DIRECTORY, kErrorCaption, folder, MB_OK | MB_ICONWARNING);
        return false;
    }
    const int error = SHCreateDirectoryExW(nullptr, folder, nullptr);
    if (error == ERROR_SUCCESS) return true;
    ShowSystemError(owner, static_cast<DWORD>(error), kErrorCaption, folder, MB_OK | MB_ICONWARNING);
    return false;
}

std::wstring ShellPathList(const std::wstring& path) {
    std::wstring list = path;
    list.push_back(L'\0');  // c_str() adds the second
    return list;
}

bool ShellDeleteFiles(HWND owner, const wchar_t* pathList, FILEOP_FLAGS flags) {
    if (pathList == nullptr || *pathList == L'\0') return false;
    SHFILEOPSTRUCTW operation = {};
    operation.hwnd = owner;
    operation.wFunc = FO_DELETE;
    operation.pFrom = pathList;
    operation.fFlags = flags;
    return SHFileOperationW(&operation) == 0 && !operation.fAnyOperationsAborted;
}

bool MoveToRecycleBin(HWND owner, const wchar_t* path) {
    if (path == nullptr) return false;
    const std::wstring list = ShellPathList(path);
    return ShellDeleteFiles(owner, list.c_str(), kQuietRecycle);
}

namespace {

// How many names the file's data has; 0 when it cannot be told.
DWORD LinkCount(const std::wstring& path) {
    HANDLE file = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 0;
    BY_HANDLE_FILE_INFORMATION info = {};
    const DWORD links = GetFileInformationByHandle(file, &info) ? info.nNumberOfLinks : 0;
    CloseHandle(file);
    return links;
}

// A name beside `path` that nothing else uses.
std::wstring SpareNameFor(const std::wstring& path) {
    static LONG counter = 0;
    return path + L".~lxkeep" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(InterlockedIncrement(&counter));
}

}  // namespace

RecycledFile::RecycledFile(HWND owner, const std::wstring& path) : path_(path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
        return;
    spare_ = SpareNameFor(path);
    if (!CreateHardLinkW(spare_.c_str(), path.c_str(), nullptr)) spare_.clear();
    const bool shellDone = MoveToRecycleBin(owner, path.c_str());
    const bool gone = GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES;
    if (spare_.empty()) {
        moved_ = shellDone && gone;
        return;
    }
    // The recycle bin keeps the data under a name of its own: our spare is then one of two.
    moved_ = gone && LinkCount(spare_) >= 2;
    if (gone && !moved_) {
        PutBack();
    } else if (!gone) {
        DeleteFileW(spare_.c_str());
        spare_.clear();
    }
}

RecycledFile::~RecycledFile() { Keep(); }

bool RecycledFile::Keep() {
    if (!spare_.empty()) DeleteFileW(spare_.c_str());
    spare_.clear();
    return moved_;
}

bool RecycledFile::PutBack() {
    if (spare_.empty() || !MoveFileExW(spare_.c_str(), path_.c_str(), 0)) return false;
    spare_.clear();
    moved_ = false;
    return true;
}

// Files the tools give up stay recoverable: the one-file delete is the quiet recycle.
bool DeleteOneFile(const wchar_t* path) { return MoveToRecycleBin(nullptr, path); }

bool DriveCurrentFolder(wchar_t drive, wchar_t* folder) {
    if (folder == nullptr) return false;
    const wchar_t letter = DriveLetter(drive);
    if (letter == 0) return false;
    wchar_t current[kPathChars] = {};
    const DWORD length = GetCurrentDirectoryW(kPathChars, current);
    if (length > 0 && length < kPathChars && current[1] == L':' && DriveLetter(current[0]) == letter) {
        return CopyToPathBuffer(folder, current);
    }
    // Each drive's current folder lives in the hidden environment variable "=X:".
    const wchar_t name[] = {L'=', letter, L':', L'\0'};
    wchar_t remembered[kPathChars] = {};
    const DWORD found = GetEnvironmentVariableW(name, remembered, kPathChars);
    if (found == 0 || found >= kPathChars) return false;
    return CopyToPathBuffer(folder, remembered);
}

}  // namespace lx
