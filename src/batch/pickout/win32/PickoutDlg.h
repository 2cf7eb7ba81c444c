// CPickoutDlg: asks for the folder the thumbnails go to and whether the smallest or the
// largest of several is taken. The folder starts as the host's folder when one was passed,
// else as the first file's folder, replaced by the saved "PickoutPath" when that is not
// empty. OK refuses (with a beep) an empty field or a path that is an existing file; it
// stores the choice and writes "PickoutPath".
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "PickoutRun.h"

namespace lx {

class CPickoutDlg {
public:
    // `hostFolder` may be empty; `files` must not be.
    CPickoutDlg(const std::vector<std::wstring>& files, const std::wstring& hostFolder);

    // IDOK with options() filled in, or IDCANCEL.
    INT_PTR DoModal(HWND owner);
    const PickoutOptions& options() const { return options_; }

private:
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    BOOL OnInitDialog();
    void OnCommand(int id);
    void OnBrowse();
    void OnOk();

    PickoutOptions options_;
    bool folderGiven_ = false;
    HWND dialog_ = nullptr;
};

}  // namespace lx
