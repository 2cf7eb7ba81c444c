// The menu bar at work: tracking the popups one after the other while the user moves between
// them, and the keyboard mode that the message loop's filter drives.
#include "CommandBar.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace lx {

namespace {

// The bar whose popup this thread is tracking. A message-filter hook carries no data of its
// own, and a thread tracks one menu at a time.
thread_local CommandBar* t_tracking = nullptr;

BOOL CALLBACK CollectPopupMenu(HWND hwnd, LPARAM list) {
    wchar_t name[16] = {};
    if (IsWindowVisible(hwnd) && GetClassNameW(hwnd, name, 16) && wcscmp(name, L"#32768") == 0) {
        auto* menu = reinterpret_cast<HMENU>(SendMessageW(hwnd, MN_GETHMENU, 0, 0));
        if (menu) reinterpret_cast<std::vector<HMENU>*>(list)->push_back(menu);
    }
    return TRUE;
}

int HighlightedItem(HMENU menu) {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i)
        if (GetMenuState(menu, i, MF_BYPOSITION) & MF_HILITE) return i;
    return -1;
}

// Where the arrow keys act while popups are open: the deepest open menu reached from `top`
// through highlighted items, its highlighted item (-1: none) and its depth (1: `top`).
struct MenuFocus {
    HMENU menu;
    int item;
    int depth;
};

MenuFocus FollowOpenMenus(HMENU top) {
    std::vector<HMENU> open;
    EnumThreadWindows(GetCurrentThreadId(), CollectPopupMenu, reinterpret_cast<LPARAM>(&open));
    MenuFocus focus{top, HighlightedItem(top), 1};
    while (focus.item >= 0) {
        HMENU sub = GetSubMenu(focus.menu, focus.item);
        if (!sub || std::find(open.begin(), open.end(), sub) == open.end()) break;
        focus = {sub, HighlightedItem(sub), focus.depth + 1};
    }
    return focus;
}

POINT ScreenPoint(const MSG& msg) {
    POINT point{GET_X_LPARAM(msg.lParam), GET_Y_LPARAM(msg.lParam)};
    ClientToScreen(msg.hwnd, &point);
    return point;
}

bool IsRepeat(const MSG& msg) { return (msg.lParam & (1 << 30)) != 0; }

}  // namespace

LRESULT CALLBACK MenuMessageFilter(int code, WPARAM wParam, LPARAM lParam) {
    if (code == MSGF_MENU && t_tracking && t_tracking->FilterMenuMessage(*reinterpret_cast<MSG*>(lParam)))
        return TRUE;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

int CommandBar::Neighbour(int from, int step) const {
    const int count = ButtonCount();
    for (int k = 1; k <= count; ++k) {
        const int index = ((from + step * k) % count + count) % count;
        if (SendMessageW(menuBar_, TB_ISBUTTONENABLED, index, 0)) return index;
    }
    return -1;
}

void CommandBar::TrackMenus(int index, bool byKeyboard) {
    if (tracking_ >= 0 || !menuBar_ || index < 0) return;
    LeaveKeyboardMode();
    next_ = index;
    selectFirst_ = byKeyboard;
    backToBar_ = false;
    int last = index;
    HHOOK hook = SetWindowsHookExW(WH_MSGFILTER, MenuMessageFilter, nullptr, GetCurrentThreadId());
    CommandBar* outer = std::exchange(t_tracking, this);
    // Each pass shows one popup; the filter ends it early and names the next one when the
    // user moves to a neighbouring menu.
    while (next_ >= 0 && menuBar_) {
        tracking_ = last = std::exchange(next_, -1);
        HMENU popup = GetSubMenu(menu_, tracking_);
        if (!popup) break;
        images_.ApplyTo(popup);
        RECT button{};
        SendMessageW(menuBar_, TB_GETITEMRECT, tracking_, reinterpret_cast<LPARAM>(&button));
        MapWindowPoints(menuBar_, nullptr, reinterpret_cast<POINT*>(&button), 2);
        TPMPARAMS params{sizeof(params), button};
        SendMessageW(menuBar_, TB_PRESSBUTTON, tracking_, TRUE);  // buttons' ids are their indexes
        ShowPrefixes(selectFirst_);
        // A popup opened from the keyboard starts with its first item selected, as the menu
        // does for a Down key.
        if (selectFirst_) PostMessageW(menuBar_, WM_KEYDOWN, VK_DOWN, 0);
        GetCursorPos(&lastPointer_);
        TrackPopupMenuEx(popup, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL | TPM_LEFTBUTTON, button.left,
                         button.bottom, frame_, &params);
        if (menuBar_) SendMessageW(menuBar_, TB_PRESSBUTTON, tracking_, FALSE);
    }
    t_tracking = outer;
    if (hook) UnhookWindowsHookEx(hook);
    tracking_ = -1;
    ShowPrefixes(false);
    if (backToBar_ && menuBar_) EnterKeyboardMode(last);
}

void CommandBar::SwitchTo(int index, bool selectFirst) {
    next_ = index;
    selectFirst_ = selectFirst;
    EndMenu();
}

bool CommandBar::FilterMenuMessage(const MSG& msg) {
    switch (msg.message) {
    case WM_MOUSEMOVE: {
        const POINT point = ScreenPoint(msg);
        // The system repeats the last move when nothing moved; only a real move switches.
        if (point.x == lastPointer_.x && point.y == lastPointer_.y) return false;
        lastPointer_ = point;
        const int index = ButtonAt(point);
        if (index < 0 || index == tracking_) return false;
        SwitchTo(index, false);
        return true;
    }
    case WM_LBUTTONDOWN:
        // A press on the open menu's own button closes it, and must not reopen it.
        if (ButtonAt(ScreenPoint(msg)) != tracking_) return false;
        SwitchTo(-1, false);
        return true;
    case WM_KEYDOWN: {
        const MenuFocus focus = FollowOpenMenus(GetSubMenu(menu_, tracking_));
        if (msg.wParam == VK_LEFT && focus.depth == 1) {
            SwitchTo(Neighbour(tracking_, -1), true);
            return true;
        }
        // Right opens a submenu when the highlighted item has one, else the next menu.
        if (msg.wParam == VK_RIGHT && (focus.item < 0 || !GetSubMenu(focus.menu, focus.item))) {
            SwitchTo(Neighbour(tracking_, 1), true);
            return true;
        }
        if (msg.wParam == VK_ESCAPE && focus.depth == 1) backToBar_ = true;
        return false;
    }
    }
    return false;
}

void CommandBar::EnterKeyboardMode(int index) {
    if (index < 0) return;
    keyboardHot_ = index;
    SendMessageW(menuBar_, TB_SETHOTITEM, index, 0);
    ShowPrefixes(true);
}

void CommandBar::LeaveKeyboardMode() {
    if (keyboardHot_ < 0) return;
    keyboardHot_ = -1;
    if (!menuBar_) return;
    SendMessageW(menuBar_, TB_SETHOTITEM, static_cast<WPARAM>(-1), 0);
    ShowPrefixes(false);
}

void CommandBar::ToggleKeyboardMode() {
    if (keyboardHot_ >= 0)
        LeaveKeyboardMode();
    else
        EnterKeyboardMode(Neighbour(-1, 1));
}

void CommandBar::ShowPrefixes(bool shown) {
    if (!menuBar_) return;
    // Underlines stay hidden until the keyboard is in use, unless the user wants them always.
    BOOL always = FALSE;
    SystemParametersInfoW(SPI_GETKEYBOARDCUES, 0, &always, 0);
    SendMessageW(menuBar_, TB_SETDRAWTEXTFLAGS, DT_HIDEPREFIX, (shown || always) ? 0 : DT_HIDEPREFIX);
    InvalidateRect(menuBar_, nullptr, TRUE);
}

bool CommandBar::HandleKeyboardMode(MSG& msg) {
    switch (msg.message) {
    case WM_KEYDOWN:
        switch (msg.wParam) {
        case VK_LEFT:
        case VK_RIGHT:
            EnterKeyboardMode(Neighbour(keyboardHot_, msg.wParam == VK_LEFT ? -1 : 1));
            return true;
        case VK_RETURN:
        case VK_DOWN:
        case VK_UP:
            TrackMenus(keyboardHot_, true);
            return true;
        case VK_ESCAPE:
            LeaveKeyboardMode();
            return true;
        }
        return false;  // a letter comes back as WM_CHAR
    case WM_CHAR: {
        // Typing goes to the menu bar, not to the window with the focus.
        const int index = ButtonOfMnemonic(static_cast<wchar_t>(msg.wParam));
        if (index >= 0) TrackMenus(index, true);
        return true;
    }
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_NCLBUTTONDOWN:
        LeaveKeyboardMode();
        return false;
    }
    return false;
}

bool CommandBar::PreTranslate(MSG& msg) {
    if (!menuBar_ || tracking_ >= 0 || !BelongsToFrame(msg.hwnd)) return false;
    if (keyboardHot_ >= 0 && GetActiveWindow() != frame_) LeaveKeyboardMode();
    if (keyboardHot_ >= 0 && HandleKeyboardMode(msg)) return true;
    switch (msg.message) {
    case WM_SYSKEYDOWN:
        if (msg.wParam == VK_MENU) {
            if (!IsRepeat(msg)) altAlone_ = true;
            ShowPrefixes(true);
            return false;
        }
        altAlone_ = false;
        if (msg.wParam == VK_F10 && GetKeyState(VK_SHIFT) >= 0) {
            ToggleKeyboardMode();
            return true;
        }
        return false;
    case WM_KEYDOWN:
        altAlone_ = false;
        return false;
    case WM_SYSKEYUP:
        if (msg.wParam != VK_MENU) return false;
        // A lone Alt toggles keyboard mode. The key-up never goes on to the default handling:
        // that one did not see a key an accelerator took (Alt+Left), so it would take this
        // Alt for a lone one and enter the window menu's invisible mode.
        if (std::exchange(altAlone_, false))
            ToggleKeyboardMode();
        else
            ShowPrefixes(keyboardHot_ >= 0);
        return true;
    case WM_SYSCHAR: {
        const int index = ButtonOfMnemonic(static_cast<wchar_t>(msg.wParam));
        if (index < 0) return false;
        TrackMenus(index, true);
        return true;
    }
    }
    return false;
}

}  // namespace lx
