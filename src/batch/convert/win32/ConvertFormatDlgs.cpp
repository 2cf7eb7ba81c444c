#include "ConvertFormatDlgs.h"

#include <commctrl.h>

#include <cwchar>

#include "ConvertDlgIds.h"
#include "DialogHelpers.h"
#include "ModuleResources.h"

namespace lx {

INT_PTR CFormatOptionDlg::DoModal(HWND owner) {
    return DialogBoxParamW(ModuleInstance(), MAKEINTRESOURCEW(templateId_), owner, DialogProc,
                           reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK CFormatOptionDlg::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        auto* self = reinterpret_cast<CFormatOptionDlg*>(lParam);
        self->dialog_ = dialog;
        CentreDialog(dialog);
        self->OnInitDialog();
        return TRUE;
    }
    auto* self = reinterpret_cast<CFormatOptionDlg*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr) return FALSE;
    switch (message) {
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK) {
            self->OnOk();
            EndDialog(dialog, IDOK);
        } else if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(dialog, IDCANCEL);
        } else {
            self->OnCommand(LOWORD(wParam));
        }
        return TRUE;
    case WM_HSCROLL:
        self->OnScroll(reinterpret_cast<HWND>(lParam));
        return TRUE;
    default:
        return FALSE;
    }
}

void CFormatOptionDlg::SetUpSlider(int id, int low, int high, int position, int page, int line, int tickEvery,
                                   int labelId, const wchar_t* format) {
    HWND slider = GetDlgItem(dialog_, id);
    SendMessageW(slider, TBM_SETRANGE, FALSE, MAKELPARAM(low, high));
    SendMessageW(slider, TBM_SETPAGESIZE, 0, page);
    if (line > 0) SendMessageW(slider, TBM_SETLINESIZE, 0, line);
    SendMessageW(slider, TBM_SETTICFREQ, tickEvery, 0);
    SendMessageW(slider, TBM_SETPOS, TRUE, position);
    labels_.push_back({id, labelId, format});
    ShowSliderValue(labels_.back());
}

void CFormatOptionDlg::ShowSliderValue(const SliderLabel& label) {
    wchar_t text[32];
    std::swprintf(text, 32, label.format, SliderPosition(label.sliderId));
    SetDlgItemTextW(dialog_, label.labelId, text);
}

void CFormatOptionDlg::OnScroll(HWND slider) {
    for (const SliderLabel& label : labels_)
        if (GetDlgItem(dialog_, label.sliderId) == slider) ShowSliderValue(label);
}

int CFormatOptionDlg::SliderPosition(int id) const {
    return static_cast<int>(SendDlgItemMessageW(dialog_, id, TBM_GETPOS, 0, 0));
}

CJpegOption::CJpegOption(ConvertOptions& options) : CFormatOptionDlg(options, IDD_JPEGOPTION) {}

void CJpegOption::OnInitDialog() {
    SetUpSlider(IDC_OPTION_QUALITY, 1, 100, options_.jpegQuality, 5, 0, 5, IDC_OPTION_QUALITY_VALUE, L"%d");
    SetUpSlider(IDC_OPTION_SMOOTHING, 1, 100, options_.jpegSmoothing, 5, 0, 5, IDC_OPTION_SMOOTHING_VALUE, L"%d");
    int form = options_.jpegForm;
    if (form < kJpegFormStandard || form > kJpegFormProgressive) form = kJpegFormStandard;
    CheckRadioButton(dialog_, IDC_OPTION_STANDARD, IDC_OPTION_PROGRESSIVE, IDC_OPTION_STANDARD + form);
}

void CJpegOption::OnOk() {
    const int checked = RadioGroupSelection(dialog_, IDC_OPTION_STANDARD, IDC_OPTION_PROGRESSIVE);
    options_.jpegForm = checked ? checked - IDC_OPTION_STANDARD : kJpegFormStandard;
    options_.jpegQuality = SliderPosition(IDC_OPTION_QUALITY);
    options_.jpegSmoothing = SliderPosition(IDC_OPTION_SMOOTHING);
}

CFpxOption::CFpxOption(ConvertOptions& options) : CFormatOptionDlg(options, IDD_FPXOPTION) {}

void CFpxOption::OnInitDialog() {
    CheckDlgButton(dialog_, IDC_OPTION_FPX_JPEG, options_.fpxUseJpeg ? BST_CHECKED : BST_UNCHECKED);
    SetUpSlider(IDC_OPTION_QUALITY, 1, 100, options_.fpxQuality, 5, 0, 5, IDC_OPTION_QUALITY_VALUE, L"%d");
    EnableQuality();
}

void CFpxOption::OnCommand(int id) {
    if (id == IDC_OPTION_FPX_JPEG) EnableQuality();
}

void CFpxOption::EnableQuality() {
    EnableWindow(GetDlgItem(dialog_, IDC_OPTION_QUALITY), IsDlgButtonChecked(dialog_, IDC_OPTION_FPX_JPEG) == BST_CHECKED);
}

void CFpxOption::OnOk() {
    options_.fpxUseJpeg = IsDlgButtonChecked(dialog_, IDC_OPTION_FPX_JPEG) == BST_CHECKED ? 1 : 0;
    options_.fpxQuality = SliderPosition(IDC_OPTION_QUALITY);
}

CJp2Option::CJp2Option(ConvertOptions& options) : CFormatOptionDlg(options, IDD_JP2OPTION) {}

void CJp2Option::OnInitDialog() {
    SetUpSlider(IDC_OPTION_QUALITY, 1, 100, options_.jp2Ratio, 30, 2, 5, IDC_OPTION_RATIO_LABEL, L"1/%d");
}

void CJp2Option::OnOk() { options_.jp2Ratio = SliderPosition(IDC_OPTION_QUALITY); }

}  // namespace lx
