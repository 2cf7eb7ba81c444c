// The web album's file side on Windows: sheets written in the system's ANSI code page, copies,
// relative paths and lower case from the shell, the finished album opened in the browser.
#pragma once

#include <windows.h>

#include <string>

#include "WebAlbumRun.h"

namespace lx {

// Writes `text` converted to the system ANSI code page without a terminating zero; a
// character the code page lacks is written as a numeric character reference ("&#26408;").
// An empty text writes nothing and succeeds.
bool WriteAnsiText(HANDLE file, const std::wstring& text);

class Win32AlbumFiles : public AlbumFileSystem {
public:
    Win32AlbumFiles() = default;
    ~Win32AlbumFiles() override { CloseSheet(); }
    Win32AlbumFiles(const Win32AlbumFiles&) = delete;
    Win32AlbumFiles& operator=(const Win32AlbumFiles&) = delete;

    bool CreateSheet(const std::wstring& path) override;
    void WriteText(const std::wstring& text) override { WriteAnsiText(sheet_, text); }
    void CloseSheet() override;
    void CopySource(const std::wstring& source, const std::wstring& target) override;
    std::wstring RelativePath(const std::wstring& folder, const std::wstring& file) override;
    std::wstring Lower(const std::wstring& text) override;
    bool SamePath(const std::wstring& a, const std::wstring& b) override;
    void OpenInBrowser(const std::wstring& sheet, const std::wstring& folder) override;

private:
    HANDLE sheet_ = INVALID_HANDLE_VALUE;
};

}  // namespace lx
