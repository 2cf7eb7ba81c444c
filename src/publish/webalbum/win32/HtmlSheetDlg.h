// CHtmlSheetDlg: the web album's dialog. It shows the settings record and, on OK, checks the
// input in the album's order (folder, title, the four numbers, lists and boxes, the folder
// created, the colour, the folder history). Input errors beep and put the focus on the
// offending control; the dialog stays open. The record is changed only on OK.
#pragma once

#include <windows.h>

#include "SettingsStore.h"
#include "Window.h"
#include "WebAlbumSettings.h"

namespace lx {

constexpr int kAlbumFolderHistoryEntries = 16;

class CHtmlSheetDlg : public Dialog {
public:
    CHtmlSheetDlg(WebAlbumSettings& settings, SettingsStore& store) : settings_(settings), store_(store) {}

    // IDOK when the user confirmed; the settings then hold the choices.
    INT_PTR DoModal(HWND owner);

protected:
    INT_PTR HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void OnInitDialog();
    void OnBrowse();
    void OnOk();
    bool Refuse(int controlId);

    WebAlbumSettings& settings_;
    SettingsStore& store_;
};

}  // namespace lx
