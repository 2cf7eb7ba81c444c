#include "ImageDialogs.h"

#include <windowsx.h>

#include <algorithm>
#include <string>

#include "AnchorWnd.h"
#include "DialogFields.h"
#include "DialogHelpers.h"
#include "EditorCommands.h"
#include "EditorDialogIds.h"
#include "ImageOperations.h"
#include "ModuleResources.h"
#include "Window.h"

namespace lx {
namespace {

// The largest side the dialogs take; the product is held to what the editor can edit.
constexpr int kMaxSide = 100000;
constexpr int kMaxPercent = 10000;

void ShowCurrentSize(HWND dialog, int id, int width, int height, int depth) {
    std::wstring text = L"現在のサイズ: " + std::to_wstring(width) + L" x " + std::to_wstring(height);
    if (depth > 0) text += L" (" + std::to_wstring(depth) + L"bpp)";
    SetDlgItemTextW(dialog, id, text.c_str());
}

// Width and height from two boxes, refused by the box at fault: each side in range and their
// product one the editor can hold (the width box answers for the product).
bool ReadSize(HWND dialog, int widthId, int heightId, int high, int32_t& width, int32_t& height) {
    if (!ReadNumberField(dialog, widthId, 1, high, width) || !ReadNumberField(dialog, heightId, 1, high, height)) return false;
    return true;
}

bool Editable(HWND dialog, int widthId, int width, int height) {
    if (EditableSize(width, height)) return true;
    RefuseField(dialog, widthId);
    return false;
}

// ---------------------------------------------------------------- image size
class CZoomDlg : public MappedDialog<CZoomDlg> {
public:
    static std::span<const DialogEntry<CZoomDlg>> Messages() {
        static const DialogEntry<CZoomDlg> table[] = {
            {WM_INITDIALOG, &CZoomDlg::OnInitDialog},
            {WM_COMMAND, &CZoomDlg::OnCommand},
        };
        return table;
    }
    int width = 0, height = 0, depth = 0;
    ImageSizeChoice choice;

private:
    enum Unit { kPixels = 0, kPercent = 1 };

    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        ShowCurrentSize(hwnd(), IDC_ZOOM_CURRENT, width, height, depth);
        FillComboFromString(GetDlgItem(hwnd(), IDC_ZOOM_UNIT), 4136);
        SendDlgItemMessageW(hwnd(), IDC_ZOOM_UNIT, CB_SETCURSEL, kPixels, 0);
        FillComboFromString(GetDlgItem(hwnd(), IDC_ZOOM_METHOD), 4137);
        SendDlgItemMessageW(hwnd(), IDC_ZOOM_METHOD, CB_SETCURSEL, std::clamp(choice.method, 0, 2), 0);
        SetDlgItemInt(hwnd(), IDC_ZOOM_CUBIC, static_cast<UINT>(std::clamp(choice.cubic, 0, kMaxCubicParameter)), FALSE);
        CheckDlgButton(hwnd(), IDC_ZOOM_KEEP, BST_CHECKED);
        Show(width, height);
        EnableCubic();
        return TRUE;
    }

    Unit CurrentUnit() const {
        return SendDlgItemMessageW(hwnd(), IDC_ZOOM_UNIT, CB_GETCURSEL, 0, 0) == kPercent ? kPercent : kPixels;
    }

    // Puts a size in pixels into the boxes in the chosen unit.
    void Show(int w, int h) {
        updating_ = true;
        const bool percent = CurrentUnit() == kPercent;
        SetDlgItemInt(hwnd(), IDC_ZOOM_WIDTH, static_cast<UINT>(percent ? PercentOfSide(w, width) : w), FALSE);
        SetDlgItemInt(hwnd(), IDC_ZOOM_HEIGHT, static_cast<UINT>(percent ? PercentOfSide(h, height) : h), FALSE);
        updating_ = false;
        shownUnit_ = CurrentUnit();
    }

    void EnableCubic() {
        const bool cubic = SendDlgItemMessageW(hwnd(), IDC_ZOOM_METHOD, CB_GETCURSEL, 0, 0) == kResampleCubic;
        EnableWindow(GetDlgItem(hwnd(), IDC_ZOOM_CUBIC), cubic);
    }

    // A side typed with the ratio kept: the other one follows.
    void FollowSide(int changedId) {
        if (updating_ || IsDlgButtonChecked(hwnd(), IDC_ZOOM_KEEP) != BST_CHECKED) return;
        BOOL ok = FALSE;
        const int value = static_cast<int>(GetDlgItemInt(hwnd(), changedId, &ok, FALSE));
        if (!ok || value <= 0) return;
        const bool byWidth = changedId == IDC_ZOOM_WIDTH;
        const int otherId = byWidth ? IDC_ZOOM_HEIGHT : IDC_ZOOM_WIDTH;
        const int other = CurrentUnit() == kPercent ? value
                          : byWidth                 ? KeptRatioSide(value, width, height)
                                                    : KeptRatioSide(value, height, width);
        updating_ = true;
        SetDlgItemInt(hwnd(), otherId, static_cast<UINT>(other), FALSE);
        updating_ = false;
    }

    // The boxes' values in pixels, read in the unit they were written in.
    bool ReadPixels(Unit unit, int32_t& w, int32_t& h) {
        if (!ReadSize(hwnd(), IDC_ZOOM_WIDTH, IDC_ZOOM_HEIGHT, unit == kPercent ? kMaxPercent : kMaxSide, w, h)) return false;
        if (unit == kPercent) {
            w = SideOfPercent(w, width);
            h = SideOfPercent(h, height);
        }
        return true;
    }

    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        const int id = LOWORD(wParam), code = HIWORD(wParam);
        if ((id == IDC_ZOOM_WIDTH || id == IDC_ZOOM_HEIGHT) && code == EN_CHANGE) {
            FollowSide(id);
            return TRUE;
        }
        if (id == IDC_ZOOM_UNIT && code == CBN_SELCHANGE) {
            // Converted through pixels; boxes that hold no good number start over.
            int32_t w = 0, h = 0;
            if (!ReadPixelsQuietly(shownUnit_, w, h)) w = width, h = height;
            Show(w, h);
            return TRUE;
        }
        if (id == IDC_ZOOM_METHOD && code == CBN_SELCHANGE) {
            EnableCubic();
            return TRUE;
        }
        if (id == IDOK) {
            Confirm();
            return TRUE;
        }
        if (id == IDCANCEL) {
            EndDialog(hwnd(), IDCANCEL);
            return TRUE;
        }
        return FALSE;
    }

    bool ReadPixelsQuietly(Unit unit, int32_t& w, int32_t& h) {
        BOOL okW = FALSE, okH = FALSE;
        w = static_cast<int32_t>(GetDlgItemInt(hwnd(), IDC_ZOOM_WIDTH, &okW, FALSE));
        h = static_cast<int32_t>(GetDlgItemInt(hwnd(), IDC_ZOOM_HEIGHT, &okH, FALSE));
        if (!okW || !okH || w <= 0 || h <= 0) return false;
        if (unit == kPercent) w = SideOfPercent(w, width), h = SideOfPercent(h, height);
        return true;
    }

    void Confirm() {
        ImageSizeChoice chosen = choice;
        int32_t w = 0, h = 0;
        if (!ReadPixels(CurrentUnit(), w, h) || !Editable(hwnd(), IDC_ZOOM_WIDTH, w, h)) return;
        chosen.width = w;
        chosen.height = h;
        chosen.method = static_cast<int>(SendDlgItemMessageW(hwnd(), IDC_ZOOM_METHOD, CB_GETCURSEL, 0, 0));
        if (chosen.method < 0) chosen.method = kResampleCubic;
        if (chosen.method == kResampleCubic) {
            int32_t cubic = 0;
            if (!ReadNumberField(hwnd(), IDC_ZOOM_CUBIC, 0, kMaxCubicParameter, cubic)) return;
            chosen.cubic = cubic;
        }
        choice = chosen;
        EndDialog(hwnd(), IDOK);
    }

    bool updating_ = false;
    Unit shownUnit_ = kPixels;
};

// ---------------------------------------------------------------- canvas size
class CResizeDlg : public MappedDialog<CResizeDlg> {
public:
    static std::span<const DialogEntry<CResizeDlg>> Messages() {
        static const DialogEntry<CResizeDlg> table[] = {
            {WM_INITDIALOG, &CResizeDlg::OnInitDialog},
            {WM_COMMAND, &CResizeDlg::OnCommand},
            {WM_CTLCOLORSTATIC, &CResizeDlg::OnColourStatic},
        };
        return table;
    }
    int width = 0, height = 0;
    CanvasChoice choice;

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        ShowCurrentSize(hwnd(), IDC_RESIZE_CURRENT, width, height, 0);
        SetDlgItemInt(hwnd(), IDC_RESIZE_WIDTH, static_cast<UINT>(width), FALSE);
        SetDlgItemInt(hwnd(), IDC_RESIZE_HEIGHT, static_cast<UINT>(height), FALSE);
        anchor_.Attach(GetDlgItem(hwnd(), IDC_RESIZE_ANCHOR), choice.anchor);
        colour_.Set(hwnd(), IDC_RESIZE_SWATCH, choice.background);
        return TRUE;
    }
    LRESULT OnColourStatic(WPARAM, LPARAM lParam) {
        return reinterpret_cast<LRESULT>(colour_.BrushFor(reinterpret_cast<HWND>(lParam)));
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        switch (LOWORD(wParam)) {
            case IDC_RESIZE_COLOUR: colour_.Choose(hwnd()); return TRUE;
            case IDOK: {
                int32_t w = 0, h = 0;
                if (!ReadSize(hwnd(), IDC_RESIZE_WIDTH, IDC_RESIZE_HEIGHT, kMaxSide, w, h) ||
                    !Editable(hwnd(), IDC_RESIZE_WIDTH, w, h))
                    return TRUE;
                choice = {w, h, anchor_.Cell(), colour_.colour()};
                EndDialog(hwnd(), IDOK);
                return TRUE;
            }
            case IDCANCEL: EndDialog(hwnd(), IDCANCEL); return TRUE;
            default: return FALSE;
        }
    }
    CAnchorWnd anchor_;
    ColourField colour_;
};

// ---------------------------------------------------------------- colour reduction
class CQuantizeDlg : public MappedDialog<CQuantizeDlg> {
public:
    static std::span<const DialogEntry<CQuantizeDlg>> Messages() {
        static const DialogEntry<CQuantizeDlg> table[] = {
            {WM_INITDIALOG, &CQuantizeDlg::OnInitDialog},
            {WM_COMMAND, &CQuantizeDlg::OnCommand},
        };
        return table;
    }
    QuantizeChoice choice;

private:
    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        FillComboFromString(GetDlgItem(hwnd(), IDC_QUANTIZE_METHOD), 4133);
        SendDlgItemMessageW(hwnd(), IDC_QUANTIZE_METHOD, CB_SETCURSEL, std::clamp(choice.method, 0, 3), 0);
        FillComboFromString(GetDlgItem(hwnd(), IDC_QUANTIZE_COUNT), 4134);
        SetDlgItemInt(hwnd(), IDC_QUANTIZE_COUNT, static_cast<UINT>(choice.count), FALSE);
        return TRUE;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        const int id = LOWORD(wParam);
        if (id == IDC_QUANTIZE_COUNT && HIWORD(wParam) == CBN_SELCHANGE) {
            // The edit part shows the chosen item only after this notification.
            const LRESULT item = SendDlgItemMessageW(hwnd(), IDC_QUANTIZE_COUNT, CB_GETCURSEL, 0, 0);
            wchar_t text[16] = {};
            if (item >= 0 && SendDlgItemMessageW(hwnd(), IDC_QUANTIZE_COUNT, CB_GETLBTEXTLEN, item, 0) < 16) {
                SendDlgItemMessageW(hwnd(), IDC_QUANTIZE_COUNT, CB_GETLBTEXT, item, reinterpret_cast<LPARAM>(text));
                SetDlgItemTextW(hwnd(), IDC_QUANTIZE_COUNT, text);
            }
            return TRUE;
        }
        if (id == IDOK) {
            int32_t count = 0;
            if (!ReadNumberField(hwnd(), IDC_QUANTIZE_COUNT, 2, 256, count)) return TRUE;
            const LRESULT method = SendDlgItemMessageW(hwnd(), IDC_QUANTIZE_METHOD, CB_GETCURSEL, 0, 0);
            choice = {method < 0 ? 0 : static_cast<int>(method), count};
            EndDialog(hwnd(), IDOK);
            return TRUE;
        }
        if (id == IDCANCEL) {
            EndDialog(hwnd(), IDCANCEL);
            return TRUE;
        }
        return FALSE;
    }
};

// ---------------------------------------------------------------- colour table
class CPalEditDlg : public MappedDialog<CPalEditDlg> {
public:
    static std::span<const DialogEntry<CPalEditDlg>> Messages() {
        static const DialogEntry<CPalEditDlg> table[] = {
            {WM_INITDIALOG, &CPalEditDlg::OnInitDialog},
            {WM_COMMAND, &CPalEditDlg::OnCommand},
            {WM_DRAWITEM, &CPalEditDlg::OnDrawItem},
        };
        return table;
    }
    std::vector<Rgbq> entries;

private:
    static constexpr int kColumns = 16;

    LRESULT OnInitDialog(WPARAM, LPARAM) {
        CentreDialog(hwnd());
        ShowEntry();
        return TRUE;
    }

    RECT CellRect(int index) const {
        RECT grid{};
        GetClientRect(GetDlgItem(hwnd(), IDC_PALEDIT_GRID), &grid);
        const int w = grid.right / kColumns, h = grid.bottom / kColumns;
        const int x = index % kColumns, y = index / kColumns;
        return {x * w, y * h, (x + 1) * w, (y + 1) * h};
    }

    LRESULT OnDrawItem(WPARAM, LPARAM lParam) {
        const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (item->CtlID != IDC_PALEDIT_GRID) return FALSE;
        FillRect(item->hDC, &item->rcItem, GetSysColorBrush(COLOR_BTNFACE));
        for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
            RECT cell = CellRect(i);
            InflateRect(&cell, -1, -1);
            Brush brush(CreateSolidBrush(RGB(entries[i].r, entries[i].g, entries[i].b)));
            FillRect(item->hDC, &cell, brush.get());
        }
        if (!entries.empty()) {
            RECT mark = CellRect(selected_);
            FrameRect(item->hDC, &mark, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
            InflateRect(&mark, -1, -1);
            FrameRect(item->hDC, &mark, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        }
        return TRUE;
    }

    void ShowEntry() {
        std::wstring text;
        if (!entries.empty()) {
            const Rgbq& e = entries[static_cast<size_t>(selected_)];
            text = L"番号 " + std::to_wstring(selected_) + L"\nR " + std::to_wstring(e.r) + L"\nG " +
                   std::to_wstring(e.g) + L"\nB " + std::to_wstring(e.b);
        }
        SetDlgItemTextW(hwnd(), IDC_PALEDIT_ENTRY, text.c_str());
        InvalidateRect(GetDlgItem(hwnd(), IDC_PALEDIT_GRID), nullptr, FALSE);
    }

    // The entry under the pointer of the last message, or -1.
    int EntryUnderPointer() const {
        const DWORD at = GetMessagePos();
        POINT p{GET_X_LPARAM(at), GET_Y_LPARAM(at)};
        ScreenToClient(GetDlgItem(hwnd(), IDC_PALEDIT_GRID), &p);
        for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
            const RECT cell = CellRect(i);
            if (PtInRect(&cell, p)) return i;
        }
        return -1;
    }

    void ChangeColour() {
        if (entries.empty()) return;
        Rgbq& e = entries[static_cast<size_t>(selected_)];
        COLORREF colour = RGB(e.r, e.g, e.b);
        if (!ChooseColour(hwnd(), colour)) return;
        e.r = GetRValue(colour);
        e.g = GetGValue(colour);
        e.b = GetBValue(colour);
        ShowEntry();
    }

    LRESULT OnCommand(WPARAM wParam, LPARAM) {
        const int id = LOWORD(wParam), code = HIWORD(wParam);
        if (id == IDC_PALEDIT_GRID && (code == STN_CLICKED || code == STN_DBLCLK)) {
            const int entry = EntryUnderPointer();
            if (entry < 0) return TRUE;
            selected_ = entry;
            ShowEntry();
            if (code == STN_DBLCLK) ChangeColour();
            return TRUE;
        }
        if (id == IDC_PALEDIT_CHANGE) {
            ChangeColour();
            return TRUE;
        }
        if (id == IDOK || id == IDCANCEL) {
            EndDialog(hwnd(), id);
            return TRUE;
        }
        return FALSE;
    }

    int selected_ = 0;
};

}  // namespace

bool RunImageSizeDialog(HWND owner, int width, int height, int depth, ImageSizeChoice& choice) {
    CZoomDlg dialog;
    dialog.width = width;
    dialog.height = height;
    dialog.depth = depth;
    dialog.choice = choice;
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_ZOOM, owner) != IDOK) return false;
    choice = dialog.choice;
    return true;
}

bool RunCanvasDialog(HWND owner, int width, int height, CanvasChoice& choice) {
    CResizeDlg dialog;
    dialog.width = width;
    dialog.height = height;
    dialog.choice = choice;
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_RESIZE, owner) != IDOK) return false;
    choice = dialog.choice;
    return true;
}

bool RunQuantizeDialog(HWND owner, QuantizeChoice& choice) {
    CQuantizeDlg dialog;
    dialog.choice = choice;
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_QUANTIZE, owner) != IDOK) return false;
    choice = dialog.choice;
    return true;
}

bool RunPaletteDialog(HWND owner, std::vector<Rgbq>& table) {
    if (table.empty() || table.size() > 256) return false;
    CPalEditDlg dialog;
    dialog.entries = table;
    if (dialog.Run(ModuleInstance(), IDD_EDITOR_PALEDIT, owner) != IDOK) return false;
    table = dialog.entries;
    return true;
}

}  // namespace lx
