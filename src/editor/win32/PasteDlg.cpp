#include "PasteDlg.h"

#include <commctrl.h>

#include <string>

#include "AnchorWnd.h"
#include "DialogFields.h"
#include "DialogHelpers.h"
#include "EditorDialogIds.h"
#include "ModuleResources.h"
#include "SettingsStore.h"
#include "Window.h"

namespace lx {
namespace {

const wchar_t* const kEditSection = MAKEINTRESOURCEW(4404);  // "Edit"
const wchar_t* const kPasteValue = MAKEINTRESOURCEW(4609);   // "Paste"

constexpr int kShadowControls[] = {IDC_PASTE_SOFTNESS, IDC_PASTE_SOFTNESS_TEXT, IDC_PASTE_DISTANCE,
                                   IDC_PASTE_DISTANCE_TEXT, IDC_PASTE_COLOUR, IDC_PASTE_SWATCH};
constexpr int kAnchorControls[] = {IDC_PASTE_ANCHOR, IDC_PASTE_OFFSET_X, IDC_PASTE_OFFSET_Y};

class CPasteDlg : public MappedDialog<CPasteDlg> {
public:
    static std::span<const DialogEntry<CPasteDlg>> Messages() {
        static const DialogEntry<CPasteDlg> table[] = {
            {WM_INITDIALOG, &CPasteDlg::OnInitDialog},
            {WM_COMMAND, &CPasteDlg::OnCommand},
            {WM_HSCROLL, &CPasteDlg::OnSlider},
            {WM_CTLCOLORSTATIC, &CPasteDlg::OnColourStatic},
        };
        return table;
    }
    PasteSettings settings;

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        HWND modes = GetDlgItem(hwnd(), IDC_PASTE_MODE);
        for (const PasteMode& mode : PasteModes()) SendMessageW(modes, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(mode.name));
        SendMessageW(modes, CB_SETCURSEL, static_cast<WPARAM>(PasteModeRow(settings.mode)), 0);
        SetSlider(IDC_PASTE_OPACITY, 0, 100, 10, settings.opacity);
        SetSlider(IDC_PASTE_SOFTNESS, 0, kMaxSoftness, 10, settings.softness);
        SetSlider(IDC_PASTE_DISTANCE, -kMaxShadowDistance, kMaxShadowDistance, 4, settings.distance);
        CheckDlgButton(hwnd(), IDC_PASTE_SHADOW, settings.shadow ? BST_CHECKED : BST_UNCHECKED);
        colour_.Set(hwnd(), IDC_PASTE_SWATCH, settings.shadowColour);
        CheckRadioButton(hwnd(), IDC_PASTE_BY_ANCHOR, IDC_PASTE_BY_HAND, settings.byHand ? IDC_PASTE_BY_HAND : IDC_PASTE_BY_ANCHOR);
        anchor_.Attach(GetDlgItem(hwnd(), IDC_PASTE_ANCHOR), settings.anchor);
        SetDlgItemInt(hwnd(), IDC_PASTE_OFFSET_X, static_cast<UINT>(settings.offsetX), TRUE);
        SetDlgItemInt(hwnd(), IDC_PASTE_OFFSET_Y, static_cast<UINT>(settings.offsetY), TRUE);
        ShowValues();
        EnableParts();
        return TRUE;
    }

    void SetSlider(int id, int low, int high, int page, int value) {
        HWND slider = GetDlgItem(hwnd(), id);
        SendMessageW(slider, TBM_SETRANGEMIN, FALSE, low);
        SendMessageW(slider, TBM_SETRANGEMAX, FALSE, high);
        SendMessageW(slider, TBM_SETPAGESIZE, 0, page);
        SendMessageW(slider, TBM_SETPOS, TRUE, value);
    }
    int Slider(int id) const { return static_cast<int>(SendDlgItemMessageW(hwnd(), id, TBM_GETPOS, 0, 0)); }

    void ShowValues() {
        SetDlgItemTextW(hwnd(), IDC_PASTE_OPACITY_TEXT, (std::to_wstring(Slider(IDC_PASTE_OPACITY)) + L"%").c_str());
        SetDlgItemInt(hwnd(), IDC_PASTE_SOFTNESS_TEXT, static_cast<UINT>(Slider(IDC_PASTE_SOFTNESS)), FALSE);
        SetDlgItemInt(hwnd(), IDC_PASTE_DISTANCE_TEXT, static_cast<UINT>(Slider(IDC_PASTE_DISTANCE)), TRUE);
    }

    void EnableParts() {
        const bool shadow = IsDlgButtonChecked(hwnd(), IDC_PASTE_SHADOW) == BST_CHECKED;
        for (int id : kShadowControls) EnableWindow(GetDlgItem(hwnd(), id), shadow);
        const bool byAnchor = IsDlgButtonChecked(hwnd(), IDC_PASTE_BY_ANCHOR) == BST_CHECKED;
        for (int id : kAnchorControls) EnableWindow(GetDlgItem(hwnd(), id), byAnchor);
    }

    LRESULT OnSlider(WPARAM, LPARAM) {
        ShowValues();
        return TRUE;
    }

    LRESULT OnColourStatic(WPARAM, LPARAM lParam) {
        return reinterpret_cast<LRESULT>(colour_.BrushFor(reinterpret_cast<HWND>(lParam)));
    }

    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        switch (LOWORD(wParam)) {
            case IDC_PASTE_SHADOW:
            case IDC_PASTE_BY_ANCHOR:
            case IDC_PASTE_BY_HAND: EnableParts(); return TRUE;
            case IDC_PASTE_COLOUR: colour_.Choose(hwnd()); return TRUE;
            case IDOK: Confirm(); return TRUE;
            case IDCANCEL: EndDialog(hwnd(), IDCANCEL); return TRUE;
            default: return FALSE;
        }
    }

    void Confirm() {
        PasteSettings chosen = settings;
        chosen.byHand = IsDlgButtonChecked(hwnd(), IDC_PASTE_BY_HAND) == BST_CHECKED ? 1 : 0;
        // The offsets count only when placing by the anchor; a bad one is refused only then.
        if (!chosen.byHand && (!ReadNumberField(hwnd(), IDC_PASTE_OFFSET_X, -kMaxPasteOffset, kMaxPasteOffset, chosen.offsetX) ||
                               !ReadNumberField(hwnd(), IDC_PASTE_OFFSET_Y, -kMaxPasteOffset, kMaxPasteOffset, chosen.offsetY)))
            return;
        const LRESULT row = SendDlgItemMessageW(hwnd(), IDC_PASTE_MODE, CB_GETCURSEL, 0, 0);
        chosen.mode = PasteModeCode(static_cast<int>(row));
        chosen.opacity = Slider(IDC_PASTE_OPACITY);
        chosen.shadow = IsDlgButtonChecked(hwnd(), IDC_PASTE_SHADOW) == BST_CHECKED ? 1 : 0;
        chosen.softness = Slider(IDC_PASTE_SOFTNESS);
        chosen.distance = Slider(IDC_PASTE_DISTANCE);
        chosen.shadowColour = colour_.colour();
        chosen.anchor = anchor_.Cell();
        settings = chosen;
        EndDialog(hwnd(), IDOK);
    }

    ColourField colour_;
    CAnchorWnd anchor_;
};

}  // namespace

bool RunPasteDialog(HWND owner, PasteSettings& settings) {
    SettingsStore store;
    PasteSettings stored;
    const int read = store.ReadBlock(kEditSection, kPasteValue, &stored, sizeof stored);
    CPasteDlg dialog;
    dialog.settings = PasteSettingsFromStored(&stored, read > 0 ? static_cast<size_t>(read) : 0);
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_PASTE, owner) != IDOK) return false;
    store.WriteBlock(kEditSection, kPasteValue, &dialog.settings, sizeof dialog.settings);
    settings = dialog.settings;
    return true;
}

}  // namespace lx
