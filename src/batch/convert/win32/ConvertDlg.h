// CConvertDlg: the batch conversion's dialog. It shows the options record, lets the user
// pick the target format (and its codec options), the scaling and the output folder, and on
// OK checks the input, writes the fields back and stores the folder history. Input errors
// beep and put the focus on the offending control; the dialog stays open.
//
// The record is changed only on OK (the format option dialogs edit a working copy).
#pragma once

#include <windows.h>
#include <commctrl.h>

#include "ConvertOptions.h"
#include "SettingsStore.h"

namespace lx {

// The first and last percentages of the scale list, and its step.
constexpr int kPercentFirst = 20;
constexpr int kPercentLast = 200;
constexpr int kPercentStep = 20;
constexpr int kFolderHistoryEntries = 10;

class CConvertDlg {
public:
    CConvertDlg(ConvertOptions& options, SettingsStore& settings);
    ~CConvertDlg();
    CConvertDlg(const CConvertDlg&) = delete;
    CConvertDlg& operator=(const CConvertDlg&) = delete;

    // IDOK when the user confirmed; the options then hold the choices.
    INT_PTR DoModal(HWND owner);

private:
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void OnInitDialog();
    void OnCommand(int id, int code);
    void OnFormatChanged();
    void OnFormatOptions();
    void OnBrowse();
    void OnOk();

    void FillFormats();
    void FillPercents();
    void ShowResize();
    void LoadFolderHistory();
    void EnableControls();
    int SelectedFormatRow() const;
    void ChooseMode(int mode);
    void Refuse(int controlId);

    ConvertOptions& options_;
    ConvertOptions working_;
    SettingsStore& settings_;
    HWND dialog_ = nullptr;
    HIMAGELIST icons_ = nullptr;
    // The scaling mode of the radio clicked last: it, not whichever radio happens to be
    // checked first, is the one that counts.
    int mode_ = kResizePercent;
};

}  // namespace lx
