#include "EditorDialogs.h"

#include <algorithm>
#include <span>

#include "DialogHelpers.h"
#include "EditorCommands.h"
#include "EditorDialogIds.h"
#include "ModuleResources.h"
#include "SettingsStore.h"
#include "Window.h"
#include "mif.h"

namespace lx {
namespace {

const wchar_t* const kEditSection = MAKEINTRESOURCEW(4404);  // "Edit"
const wchar_t* const kNewImage = MAKEINTRESOURCEW(4610);     // "NewImage"

constexpr int kZoomRuleButtons[] = {IDC_SETUP_ZOOM_ORIGINAL, IDC_SETUP_ZOOM_FIT, IDC_SETUP_ZOOM_LAST};
constexpr struct {
    int depth;
    const wchar_t* name;
} kDepths[] = {{1, L"2色"}, {4, L"16色"}, {8, L"256色"}, {24, L"フルカラー(24ビット)"}};
constexpr uint32_t kRefitOption = 1;  // the view refits a fitted picture when resized

// Reads a positive number from an edit control; on a bad one beeps, focuses it and fails.
bool ReadPositive(HWND dialog, int id, int32_t& value) {
    BOOL ok = FALSE;
    const UINT number = GetDlgItemInt(dialog, id, &ok, FALSE);
    if (!ok || number == 0 || number > INT32_MAX) {
        MessageBeep(MB_ICONWARNING);
        SetFocus(GetDlgItem(dialog, id));
        SendDlgItemMessageW(dialog, id, EM_SETSEL, 0, -1);
        return false;
    }
    value = static_cast<int32_t>(number);
    return true;
}

class CSetupDlg : public MappedDialog<CSetupDlg> {
public:
    static std::span<const DialogEntry<CSetupDlg>> Messages() {
        static const DialogEntry<CSetupDlg> table[] = {
            {WM_INITDIALOG, &CSetupDlg::OnInitDialog},
            {WM_COMMAND, &CSetupDlg::OnCommand},
        };
        return table;
    }
    SetupValues values;

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        const int rule = std::clamp(values.zoomRule, 0, 2);
        CheckRadioButton(hwnd(), IDC_SETUP_ZOOM_ORIGINAL, IDC_SETUP_ZOOM_LAST, kZoomRuleButtons[rule]);
        SetDlgItemInt(hwnd(), IDC_SETUP_GRID_STEP, static_cast<UINT>(std::max(values.gridStep, 1)), FALSE);
        CheckDlgButton(hwnd(), IDC_SETUP_REFIT, values.viewOptions & kRefitOption ? BST_CHECKED : BST_UNCHECKED);
        CheckDlgButton(hwnd(), IDC_SETUP_SMALL_BUTTONS, values.smallButtons ? BST_CHECKED : BST_UNCHECKED);
        return TRUE;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        if (LOWORD(wParam) == IDOK) {
            int32_t step = 0;
            if (!ReadPositive(hwnd(), IDC_SETUP_GRID_STEP, step)) return TRUE;
            values.gridStep = step;
            const int checked = RadioGroupSelection(hwnd(), IDC_SETUP_ZOOM_ORIGINAL, IDC_SETUP_ZOOM_LAST);
            values.zoomRule = checked ? checked - IDC_SETUP_ZOOM_ORIGINAL : 0;
            values.viewOptions = (values.viewOptions & ~static_cast<int32_t>(kRefitOption)) |
                                 (IsDlgButtonChecked(hwnd(), IDC_SETUP_REFIT) ? kRefitOption : 0);
            values.smallButtons = IsDlgButtonChecked(hwnd(), IDC_SETUP_SMALL_BUTTONS) == BST_CHECKED;
            EndDialog(hwnd(), IDOK);
            return TRUE;
        }
        if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(hwnd(), IDCANCEL);
            return TRUE;
        }
        return FALSE;
    }
};

class CNewImageDlg : public MappedDialog<CNewImageDlg> {
public:
    static std::span<const DialogEntry<CNewImageDlg>> Messages() {
        static const DialogEntry<CNewImageDlg> table[] = {
            {WM_INITDIALOG, &CNewImageDlg::OnInitDialog},
            {WM_COMMAND, &CNewImageDlg::OnCommand},
        };
        return table;
    }
    NewImageSettings settings;

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        SetDlgItemInt(hwnd(), IDC_NEWIMAGE_WIDTH, static_cast<UINT>(settings.width), FALSE);
        SetDlgItemInt(hwnd(), IDC_NEWIMAGE_HEIGHT, static_cast<UINT>(settings.height), FALSE);
        HWND depth = GetDlgItem(hwnd(), IDC_NEWIMAGE_DEPTH);
        int selected = static_cast<int>(std::size(kDepths)) - 1;
        for (int i = 0; i < static_cast<int>(std::size(kDepths)); ++i) {
            SendMessageW(depth, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(kDepths[i].name));
            if (kDepths[i].depth == (settings.depthAndFill & 0xFF)) selected = i;
        }
        SendMessageW(depth, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
        CheckDlgButton(hwnd(), IDC_NEWIMAGE_WHITE,
                       settings.depthAndFill & NewImageSettings::kFillWhite ? BST_CHECKED : BST_UNCHECKED);
        return TRUE;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        if (LOWORD(wParam) == IDOK) {
            NewImageSettings chosen;
            if (!ReadPositive(hwnd(), IDC_NEWIMAGE_WIDTH, chosen.width) ||
                !ReadPositive(hwnd(), IDC_NEWIMAGE_HEIGHT, chosen.height))
                return TRUE;
            const LRESULT index = SendDlgItemMessageW(hwnd(), IDC_NEWIMAGE_DEPTH, CB_GETCURSEL, 0, 0);
            const int depth = kDepths[index >= 0 && index < static_cast<LRESULT>(std::size(kDepths)) ? index : 3].depth;
            chosen.depthAndFill = depth | (IsDlgButtonChecked(hwnd(), IDC_NEWIMAGE_WHITE) ? NewImageSettings::kFillWhite : 0);
            settings = chosen;
            EndDialog(hwnd(), IDOK);
            return TRUE;
        }
        if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(hwnd(), IDCANCEL);
            return TRUE;
        }
        return FALSE;
    }
};

class CAboutDlg : public MappedDialog<CAboutDlg> {
public:
    static std::span<const DialogEntry<CAboutDlg>> Messages() {
        static const DialogEntry<CAboutDlg> table[] = {
            {WM_INITDIALOG, &CAboutDlg::OnInitDialog},
            {WM_COMMAND, &CAboutDlg::OnCommand},
        };
        return table;
    }

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        return TRUE;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return FALSE;
        EndDialog(hwnd(), LOWORD(wParam));
        return TRUE;
    }
};

}  // namespace

bool RunSetupDialog(HWND owner, SetupValues& values) {
    CSetupDlg dialog;
    dialog.values = values;
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_SETUP, owner) != IDOK) return false;
    values = dialog.values;
    return true;
}

bool RunNewImageDialog(HWND owner, NewImageSettings& settings) {
    CNewImageDlg dialog;
    SettingsStore store;
    if (store.ReadBlock(kEditSection, kNewImage, &dialog.settings, sizeof dialog.settings) != sizeof dialog.settings ||
        dialog.settings.width <= 0 || dialog.settings.height <= 0)
        dialog.settings = NewImageSettings{};
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_NEWIMAGE, owner) != IDOK) return false;
    store.WriteBlock(kEditSection, kNewImage, &dialog.settings, sizeof dialog.settings);
    settings = dialog.settings;
    return true;
}

HGLOBAL CreateNewImage(const NewImageSettings& settings) {
    if (!EditableSize(settings.width, settings.height)) return nullptr;
    int depth = settings.depthAndFill & 0xFF;
    if (depth != 1 && depth != 4 && depth != 8) depth = 24;
    try {
        mif image(settings.width, settings.height, depth);
        if (image.empty()) return nullptr;
        if (settings.depthAndFill & NewImageSettings::kFillWhite) image.solidfill(nullptr, 0xFFFFFF, 255, 0);
        return static_cast<HGLOBAL>(image.createglobaldib());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void RunAboutBox(HWND owner) {
    CAboutDlg dialog;
    dialog.Run(ModuleInstance(), IDD_EDITOR_ABOUT, owner);
}

}  // namespace lx
