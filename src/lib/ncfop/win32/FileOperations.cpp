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
