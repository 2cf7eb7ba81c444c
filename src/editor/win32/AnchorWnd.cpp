#include "AnchorWnd.h"

#include <windowsx.h>

#include <algorithm>

#include "GdiObjects.h"

namespace lx {
namespace {

constexpr wchar_t kClassName[] = L"LxAnchorWnd";

}  // namespace

std::span<const MessageEntry<CAnchorWnd>> CAnchorWnd::Messages() {
    static const MessageEntry<CAnchorWnd> table[] = {
        {WM_PAINT, &CAnchorWnd::OnPaint},
        {WM_LBUTTONDOWN, &CAnchorWnd::OnLButtonDown},
        {WM_KEYDOWN, &CAnchorWnd::OnKeyDown},
        {WM_GETDLGCODE, &CAnchorWnd::OnGetDlgCode},
        {WM_SETFOCUS, &CAnchorWnd::OnFocus},
        {WM_KILLFOCUS, &CAnchorWnd::OnFocus},
        {WM_ENABLE, &CAnchorWnd::OnEnable},
    };
    return table;
}

bool CAnchorWnd::Attach(HWND placeholder, int cell) {
    cell_ = std::clamp(cell, 0, 8);
    HWND dialog = GetParent(placeholder);
    if (!placeholder || !dialog) return false;
    RegisterWindowClass(kClassName, nullptr, 0, LoadCursorW(nullptr, IDC_ARROW));
    RECT r{};
    GetWindowRect(placeholder, &r);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
    const int id = GetDlgCtrlID(placeholder);
    HWND self = Create(kClassName, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, WS_EX_CLIENTEDGE, r.left, r.top,
                       r.right - r.left, r.bottom - r.top, dialog, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)));
    if (!self) return false;
    SetWindowPos(self, placeholder, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    DestroyWindow(placeholder);
    return true;
}

void CAnchorWnd::SetCell(int cell) {
    cell_ = std::clamp(cell, 0, 8);
    if (hwnd()) InvalidateRect(hwnd(), nullptr, TRUE);
}

RECT CAnchorWnd::CellRect(int cell) const {
    RECT client{};
    GetClientRect(hwnd(), &client);
    const int w = client.right / 3, h = client.bottom / 3;
    const int column = cell % 3, row = cell / 3;
    return {column * w + 2, row * h + 2, (column + 1) * w - 2, (row + 1) * h - 2};
}

LRESULT CAnchorWnd::OnPaint(WPARAM, LPARAM) {
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(hwnd(), &ps);
    RECT client{};
    GetClientRect(hwnd(), &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
    const bool enabled = IsWindowEnabled(hwnd()) != FALSE;
    Brush chosen(CreateSolidBrush(GetSysColor(enabled ? COLOR_HIGHLIGHT : COLOR_GRAYTEXT)));
    for (int cell = 0; cell < 9; ++cell) {
        const RECT r = CellRect(cell);
        if (cell == cell_) FillRect(dc, &r, chosen.get());
        else FrameRect(dc, &r, GetSysColorBrush(COLOR_BTNSHADOW));
    }
    if (GetFocus() == hwnd()) {
        RECT focus = CellRect(cell_);
        InflateRect(&focus, 1, 1);
        DrawFocusRect(dc, &focus);
    }
    EndPaint(hwnd(), &ps);
    return 0;
}

void CAnchorWnd::Choose(int cell) {
    if (cell == cell_) return;
    SetCell(cell);
    if (HWND parent = GetParent(hwnd()))
        SendMessageW(parent, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hwnd()), BN_CLICKED), reinterpret_cast<LPARAM>(hwnd()));
}

LRESULT CAnchorWnd::OnLButtonDown(WPARAM, LPARAM lParam) {
    SetFocus(hwnd());
    RECT client{};
    GetClientRect(hwnd(), &client);
    if (client.right < 3 || client.bottom < 3) return 0;
    const int column = std::clamp(static_cast<int>(GET_X_LPARAM(lParam) * 3 / client.right), 0, 2);
    const int row = std::clamp(static_cast<int>(GET_Y_LPARAM(lParam) * 3 / client.bottom), 0, 2);
    Choose(row * 3 + column);
    return 0;
}

LRESULT CAnchorWnd::OnKeyDown(WPARAM wParam, LPARAM lParam) {
    int column = cell_ % 3, row = cell_ / 3;
    switch (wParam) {
        case VK_LEFT: column = std::max(column - 1, 0); break;
        case VK_RIGHT: column = std::min(column + 1, 2); break;
        case VK_UP: row = std::max(row - 1, 0); break;
        case VK_DOWN: row = std::min(row + 1, 2); break;
        default: return Default(WM_KEYDOWN, wParam, lParam);
    }
    Choose(row * 3 + column);
    return 0;
}

LRESULT CAnchorWnd::OnGetDlgCode(WPARAM, LPARAM) { return DLGC_WANTARROWS; }

LRESULT CAnchorWnd::OnFocus(WPARAM, LPARAM) {
    InvalidateRect(hwnd(), nullptr, TRUE);
    return 0;
}

LRESULT CAnchorWnd::OnEnable(WPARAM, LPARAM) {
    InvalidateRect(hwnd(), nullptr, TRUE);
    return 0;
}

}  // namespace lx
