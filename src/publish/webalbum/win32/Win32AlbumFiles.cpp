#include "Win32AlbumFiles.h"

#include <shellapi.h>
#include <shlwapi.h>

#include <vector>

#include "CommandLine.h"

namespace lx {

bool WriteAnsiText(HANDLE file, const std::wstring& text) {
    if (text.empty()) return true;
    const int length = static_cast<int>(text.size());
    std::vector<char> bytes(3 * text.size() + 3);
    const int converted =
        WideCharToMultiByte(CP_ACP, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    if (converted <= 0) return false;
    DWORD written = 0;
    return WriteFile(file, bytes.data(), static_cast<DWORD>(converted), &written, nullptr) &&
           written == static_cast<DWORD>(converted);
}

bool Win32AlbumFiles::CreateSheet(const std::wstring& path) {
    CloseSheet();
    sheet_ = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_ARCHIVE, nullptr);
    return sheet_ != INVALID_HANDLE_VALUE;
}

void Win32AlbumFiles::CloseSheet() {
    if (sheet_ != INVALID_HANDLE_VALUE) CloseHandle(sheet_);
    sheet_ = INVALID_HANDLE_VALUE;
}

void Win32AlbumFiles::CopySource(const std::wstring& source, const std::wstring& target) {
    CopyFileW(source.c_str(), target.c_str(), FALSE);
}

std::wstring Win32AlbumFiles::RelativePath(const std::wstring& folder, const std::wstring& file) {
    wchar_t relative[kPathChars] = {};
    if (!PathRelativePathToW(relative, folder.c_str(), FILE_ATTRIBUTE_DIRECTORY, file.c_str(), FILE_ATTRIBUTE_NORMAL))
        return {};
    return relative;
}

std::wstring Win32AlbumFiles::Lower(const std::wstring& text) {
    std::wstring lower = text;
    CharLowerW(lower.data());
    return lower;
}

bool Win32AlbumFiles::SamePath(const std::wstring& a, const std::wstring& b) {
    wchar_t fullA[kPathChars] = {}, fullB[kPathChars] = {};
    if (!GetFullPathNameW(a.c_str(), kPathChars, fullA, nullptr) || !GetFullPathNameW(b.c_str(), kPathChars, fullB, nullptr))
        return false;
    return CompareStringOrdinal(fullA, -1, fullB, -1, TRUE) == CSTR_EQUAL;
}

void Win32AlbumFiles::OpenInBrowser(const std::wstring& sheet, const std::wstring& folder) {
    ShellExecuteW(nullptr, nullptr, sheet.c_str(), nullptr, folder.c_str(), SW_SHOWNORMAL);
}

}  // namespace lx
