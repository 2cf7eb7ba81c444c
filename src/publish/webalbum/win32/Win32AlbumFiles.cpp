#include "Win32AlbumFiles.h"

#include <shellapi.h>
#include <shlwapi.h>

#include <string>

#include "CommandLine.h"

namespace lx {

namespace {

// One character (a surrogate pair counts as one) in the ANSI code page, or as a numeric
// character reference when the code page has no such character.
void AppendAnsiOrReference(std::string& bytes, const wchar_t* c, int units) {
    char converted[8];
    BOOL usedDefault = FALSE;
    const int length =
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, c, units, converted, sizeof converted, nullptr, &usedDefault);
    if (length > 0 && !usedDefault) {
        bytes.append(converted, static_cast<size_t>(length));
        return;
    }
    uint32_t codePoint = c[0];
    if (units == 2) codePoint = 0x10000 + ((c[0] - 0xD800u) << 10) + (c[1] - 0xDC00u);
    else if (c[0] >= 0xD800 && c[0] <= 0xDFFF) codePoint = 0xFFFD;  // a lone half of a pair
    bytes += "&#" + std::to_string(codePoint) + ";";
}

}  // namespace

bool WriteAnsiText(HANDLE file, const std::wstring& text) {
    if (text.empty()) return true;
    const int length = static_cast<int>(text.size());
    std::string bytes(3 * text.size() + 3, '\0');
    // A character missing from the code page would become "?" (or a look-alike), and a file
    // name in a link or an image source would then name no file: such characters are written
    // as numeric character references, which browsers read whatever the page's code page.
    // UTF-8 as the ANSI code page has every character and takes no default-character query.
    BOOL usedDefault = FALSE;
    const bool utf8 = GetACP() == CP_UTF8;
    const int converted = WideCharToMultiByte(CP_ACP, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, text.data(), length, bytes.data(),
                                              static_cast<int>(bytes.size()), nullptr, utf8 ? nullptr : &usedDefault);
    if (converted <= 0) return false;
    bytes.resize(static_cast<size_t>(converted));
    if (usedDefault) {
        bytes.clear();
        for (int i = 0; i < length;) {
            const int units = i + 1 < length && IS_SURROGATE_PAIR(text[i], text[i + 1]) ? 2 : 1;
            AppendAnsiOrReference(bytes, &text[i], units);
            i += units;
        }
    }
    DWORD written = 0;
    return WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == static_cast<DWORD>(bytes.size());
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
