// The per-format option dialogs of the batch conversion. Each edits its fields of the
// options record in place, and only when the user presses OK.
//
//   CJpegOption  quality and smoothing sliders, standard / optimised baseline / progressive
//   CFpxOption   JPEG-compressed tiles on or off, and their quality
//   CJp2Option   the compression ratio, shown as "1/N" while the slider moves
//
// Each slider has a label beside it that shows its current value as it moves.
#pragma once

#include <windows.h>

#include <vector>

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

    // A track bar from `low` to `high` at `position`, with its page and line steps and a
    // tick every `tickEvery`; the label `labelId` shows its position through `format` ("%d").
    void SetUpSlider(int id, int low, int high, int position, int page, int line, int tickEvery, int labelId,
                     const wchar_t* format);
    int SliderPosition(int id) const;

    ConvertOptions& options_;
    HWND dialog_ = nullptr;

private:
    struct SliderLabel {
        int sliderId;
        int labelId;
        const wchar_t* format;
    };

    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void ShowSliderValue(const SliderLabel& label);
    void OnScroll(HWND slider);

    int templateId_;
    std::vector<SliderLabel> labels_;
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
};

}  // namespace lx
