// The per-format option dialogs of the batch conversion. Each edits its fields of the
// options record in place, and only when the user presses OK.
//
//   CJpegOption  quality and smoothing sliders, standard / optimised baseline / progressive
//   CFpxOption   JPEG-compressed tiles on or off, and their quality
//   CJp2Option   the compression ratio, shown as "1/N" while the slider moves
#pragma once

#include <windows.h>

#include "ConvertOptions.h"

namespace lx {

// Shared by the three: a modal dialog over a template, editing one options record.
class CFormatOptionDlg {
public:
    CFormatOptionDlg(ConvertOptions& options, int templateId) : options_(options), templateId_(templateId) {}
    virtual ~CFormatOptionDlg() = default;

    // IDOK when the options were changed.
    INT_PTR DoModal(HWND owner);

protected:
    virtual void OnInitDialog() = 0;
    virtual void OnOk() = 0;
    virtual void OnCommand(int id) { (void)id; }
    virtual void OnScroll(HWND slider) { (void)slider; }

    // A track bar from `low` to `high` at `position`, with its page and line steps and a
    // tick every `tickEvery`.
    void SetUpSlider(int id, int low, int high, int position, int page, int line, int tickEvery);
    int SliderPosition(int id) const;

    ConvertOptions& options_;
    HWND dialog_ = nullptr;

private:
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    int templateId_;
};

class CJpegOption : public CFormatOptionDlg {
public:
    explicit CJpegOption(ConvertOptions& options);

private:
    void OnInitDialog() override;
    void OnOk() override;
};

class CFpxOption : public CFormatOptionDlg {
public:
    explicit CFpxOption(ConvertOptions& options);

private:
    void OnInitDialog() override;
    void OnOk() override;
    void OnCommand(int id) override;
    void EnableQuality();
};

class CJp2Option : public CFormatOptionDlg {
public:
    explicit CJp2Option(ConvertOptions& options);

private:
    void OnInitDialog() override;
    void OnOk() override;
    void OnScroll(HWND slider) override;
    void ShowRatio();
};

}  // namespace lx
