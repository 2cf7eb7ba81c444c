#include "SizeClipDialog.h"

#include <algorithm>
#include <string>

#include "ModuleResources.h"
#include "SettingsStore.h"
#include "SizeClipDialogIds.h"
#include "Window.h"

namespace lx {
namespace {

struct SizeClipRecord {
    int32_t width;
    int32_t height;
};
static_assert(sizeof(SizeClipRecord) == 8);

const wchar_t* const kSection = MAKEINTRESOURCEW(4401);  // "MainViewer"
const wchar_t* const kValue = MAKEINTRESOURCEW(4621);    // "SizeClip"

class CSizeClipDlg : public MappedDialog<CSizeClipDlg> {
public:
    static std::span<const DialogEntry<CSizeClipDlg>> Messages() {
        static const DialogEntry<CSizeClipDlg> table[] = {
            {WM_INITDIALOG, &CSizeClipDlg::OnInitDialog},
            {WM_COMMAND, &CSizeClipDlg::OnCommand},
        };
        return table;
    }

    SIZE image{};
    SizeClipRecord chosen{};

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        SetDlgItemInt(hwnd(), IDC_SIZECLIP_WIDTH, chosen.width, FALSE);
        SetDlgItemInt(hwnd(), IDC_SIZECLIP_HEIGHT, chosen.height, FALSE);
        const std::wstring size = std::to_wstring(image.cx) + L" x " + std::to_wstring(image.cy);
        SetDlgItemTextW(hwnd(), IDC_SIZECLIP_IMAGE, size.c_str());
        return TRUE;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        if (LOWORD(wParam) == IDOK) {
            BOOL widthOk = FALSE, heightOk = FALSE;
            const UINT width = GetDlgItemInt(hwnd(), IDC_SIZECLIP_WIDTH, &widthOk, FALSE);
            const UINT height = GetDlgItemInt(hwnd(), IDC_SIZECLIP_HEIGHT, &heightOk, FALSE);
            if (!widthOk || !heightOk || width == 0 || height == 0) {
                // The box at fault gets the focus, its text selected.
                const int bad = !widthOk || width == 0 ? IDC_SIZECLIP_WIDTH : IDC_SIZECLIP_HEIGHT;
                MessageBeep(MB_ICONWARNING);
                SendMessageW(hwnd(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(hwnd(), bad)), TRUE);
                SendDlgItemMessageW(hwnd(), bad, EM_SETSEL, 0, -1);
                return TRUE;
            }
            chosen = {static_cast<int32_t>(std::min<UINT>(width, INT32_MAX)),
                      static_cast<int32_t>(std::min<UINT>(height, INT32_MAX))};
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

}  // namespace

RECT CentredSelection(SIZE imageSize, SIZE size) {
    const LONG width = std::clamp<LONG>(size.cx, 0, std::max<LONG>(imageSize.cx, 0));
    const LONG height = std::clamp<LONG>(size.cy, 0, std::max<LONG>(imageSize.cy, 0));
    const LONG left = (imageSize.cx - width) / 2;
    const LONG top = (imageSize.cy - height) / 2;
    return {left, top, left + width, top + height};
}

bool RunSizeClipDialog(HWND owner, SIZE imageSize, RECT& selection) {
    CSizeClipDlg dialog;
    dialog.image = imageSize;
    SettingsStore settings;
    if (settings.ReadBlock(kSection, kValue, &dialog.chosen, sizeof dialog.chosen) != sizeof dialog.chosen ||
        dialog.chosen.width <= 0 || dialog.chosen.height <= 0)
        dialog.chosen = {640, 480};
    if (dialog.Run(ModuleInstance(), IDD_SIZECLIP, owner) != IDOK) return false;
    settings.WriteBlock(kSection, kValue, &dialog.chosen, sizeof dialog.chosen);
    selection = CentredSelection(imageSize, {dialog.chosen.width, dialog.chosen.height});
    return true;
}

}  // namespace lx
