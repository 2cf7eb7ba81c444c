// CExifDateDlg: the rename-after-shooting-date dialog. It lists the given files that carry a
// shooting time, grouped by day, lets the user compose the new name from three items and a
// counter reset rule, shows every new name as the choices change, and on OK (after one
// question) renames the files and stores the choices.
//
// The list view owns one RenameEntry per item (its item data), freed with the item.
#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <vector>

#include "RenameChoices.h"
#include "RenameRun.h"

namespace lx {

class CExifDateDlg {
public:
    CExifDateDlg(std::vector<std::wstring> files, RenameServices services);

    // IDOK when the files were renamed, IDCANCEL when the user cancelled or nothing could
    // be listed.
    INT_PTR DoModal(HWND owner);

private:
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    void OnNotify(const NMHDR& header);
    void OnOk();
    void OnDestroy();

    void FillCombos();
    void AddColumns();
    void AddEntries(std::vector<RenameEntry> entries);
    void AddGroupOnce(int groupId, const std::wstring& header);
    void SelectChoices(const RenameChoices& choices);
    RenameChoices SelectedChoices() const;
    std::vector<RenameEntry*> ListedEntries() const;
    void UpdatePreview();

    std::vector<std::wstring> files_;
    RenameServices services_;
    HWND dialog_ = nullptr;
    HWND list_ = nullptr;
    std::set<int> groups_;
};

}  // namespace lx
