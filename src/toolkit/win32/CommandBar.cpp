#include "CommandBar.h"

#include <commctrl.h>
#include <windowsx.h>

#include <vector>

#include "CoreServices.h"
#include "StatusBar.h"

namespace lx {

namespace {

constexpr UINT_PTR kMenuBarSubclass = 1;
constexpr UINT_PTR kFrameSubclass = 2;

// Tool-bar styles shared by both bands: the rebar places and sizes them, not the controls.
constexpr DWORD kBandChildStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_TRANSPARENT |
                                  CCS_NODIVIDER | CCS_NORESIZE | CCS_NOPARENTALIGN;

std::wstring MenuItemText(HMENU menu, int position) {
    MENUITEMINFOW item{sizeof(item)};
    item.fMask = MIIM_STRING;
    if (!GetMenuItemInfoW(menu, position, TRUE, &item)) return {};
    std::wstring text(item.cch + 1, L'\0');
    item.dwTypeData = text.data();
    item.cch = static_cast<UINT>(text.size());
    if (!GetMenuItemInfoW(menu, position, TRUE, &item)) return {};
    text.resize(item.cch);
    return text;
}

// The whole string-table entry `id` of `instance` (LoadStringW with no buffer points into
// the resource itself, which is not NUL-terminated).
std::wstring LoadEntry(HINSTANCE instance, UINT id) {
    const wchar_t* text = nullptr;
    const int length = LoadStringW(instance, id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 && text ? std::wstring(text, length) : std::wstring();
}

// CharUpperW takes a single character in the low word of its pointer argument.
wchar_t UpperCase(wchar_t c) {
    return static_cast<wchar_t>(
        reinterpret_cast<ULONG_PTR>(CharUpperW(reinterpret_cast<wchar_t*>(static_cast<ULONG_PTR>(c)))));
}

}  // namespace

wchar_t MenuMnemonic(const std::wstring& text) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != L'&') continue;
        if (text[i + 1] == L'&') {  // "&&" is a literal ampersand
            ++i;
            continue;
        }
        return UpperCase(text[i + 1]);
    }
    return 0;
}

std::wstring TooltipLine(const std::wstring& entry) {
    const size_t newline = entry.find(L'\n');
    return newline == std::wstring::npos ? entry : entry.substr(newline + 1);
}

std::wstring StatusLine(const std::wstring& entry) { return entry.substr(0, entry.find(L'\n')); }

LRESULT CALLBACK FrameProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
    auto* bar = reinterpret_cast<CommandBar*>(data);
    switch (message) {
    case WM_MEASUREITEM:
        if (bar->images_.Measure(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam))) return TRUE;
        break;
    case WM_DRAWITEM:
        if (bar->images_.Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam))) return TRUE;
        break;
    case WM_MENUSELECT:
        bar->OnMenuSelect(wParam, lParam);
        break;
    case WM_NCDESTROY:
        RemoveWindowSubclass(hwnd, FrameProc, kFrameSubclass);
        bar->frameHooked_ = false;
        break;
    }
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK MenuBarProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
    auto* bar = reinterpret_cast<CommandBar*>(data);
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
        // The popup opens on the press, as a menu does; the tool bar never sees the click, so
        // it never sends the button's own WM_COMMAND.
        POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        ClientToScreen(hwnd, &point);
        const int index = bar->ButtonAt(point);
        if (index >= 0) {
            bar->TrackMenus(index, false);
            return 0;
        }
        break;
    }
    case WM_NCDESTROY:
        // The rebar and both bands go together.
        RemoveWindowSubclass(hwnd, MenuBarProc, kMenuBarSubclass);
        bar->rebar_ = bar->menuBar_ = bar->toolBar_ = nullptr;
        break;
    }
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

CommandBar::~CommandBar() {
    if (frameHooked_) RemoveWindowSubclass(frame_, FrameProc, kFrameSubclass);
    if (rebar_) DestroyWindow(rebar_);
    if (menu_) DestroyMenu(menu_);
}

bool CommandBar::Create(HWND frame, int rebarId, HMENU menu, HINSTANCE instance, UINT menuImagesId,
                        UINT toolBarId) {
    frame_ = frame;
    menu_ = menu;
    instance_ = instance;
    if (GetMenu(frame) != nullptr) SetMenu(frame, nullptr);
    frameHooked_ = SetWindowSubclass(frame, FrameProc, kFrameSubclass, reinterpret_cast<DWORD_PTR>(this));

    creating_ = true;
    INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_BAR_CLASSES | ICC_COOL_CLASSES};
    InitCommonControlsEx(&classes);
    rebar_ = CreateWindowExW(0, REBARCLASSNAMEW, nullptr,
                             WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | RBS_VARHEIGHT |
                                 RBS_BANDBORDERS | RBS_AUTOSIZE | CCS_NODIVIDER | CCS_TOP,
                             0, 0, 0, 0, frame, reinterpret_cast<HMENU>(static_cast<INT_PTR>(rebarId)),
                             GetModuleHandleW(nullptr), nullptr);
    if (!rebar_) {
        creating_ = false;
        return false;
    }
    REBARINFO info{sizeof(info)};
    SendMessageW(rebar_, RB_SETBARINFO, 0, reinterpret_cast<LPARAM>(&info));

    const bool made = (menuImagesId == 0 || images_.Load(instance, menuImagesId, kTransparent)) &&
                      CreateMenuBar() && (toolBarId == 0 || CreateToolBar(toolBarId));
    creating_ = false;
    if (!made) {
        if (rebar_) DestroyWindow(rebar_);
        rebar_ = menuBar_ = toolBar_ = nullptr;
        return false;
    }
    Resize();
    return true;
}

bool CommandBar::CreateMenuBar() {
    menuBar_ = CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr, kBandChildStyle | TBSTYLE_LIST, 0, 0, 0, 0, rebar_,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(kMenuBarId)), GetModuleHandleW(nullptr),
                               nullptr);
    if (!menuBar_) return false;
    SendMessageW(menuBar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    // Text only: no room is kept for images.
    SendMessageW(menuBar_, TB_SETBITMAPSIZE, 0, MAKELPARAM(0, 0));
    SetWindowSubclass(menuBar_, MenuBarProc, kMenuBarSubclass, reinterpret_cast<DWORD_PTR>(this));
    ShowPrefixes(false);
    RefreshMenu();
    AddBand(menuBar_, kMenuBarId, false);
    return true;
}

bool CommandBar::CreateToolBar(UINT toolBarId) {
    toolBar_ = CreateToolBarFromResource(rebar_, instance_, toolBarId, kBandChildStyle | TBSTYLE_TOOLTIPS,
                                         kToolBarId);
    if (!toolBar_) return false;
    AddBand(toolBar_, kToolBarId, true);
    return true;
}

void CommandBar::RefreshMenu() {
    if (!menuBar_) return;
    while (SendMessageW(menuBar_, TB_DELETEBUTTON, 0, 0)) {
    }
    const int count = menu_ ? GetMenuItemCount(menu_) : 0;
    std::vector<std::wstring> texts;
    for (int i = 0; i < count; ++i) texts.push_back(MenuItemText(menu_, i));
    std::vector<TBBUTTON> buttons(texts.size());
    for (int i = 0; i < count; ++i) {
        const UINT state = GetMenuState(menu_, i, MF_BYPOSITION);
        buttons[i].iBitmap = I_IMAGENONE;
        buttons[i].idCommand = i;
        buttons[i].fsState = (state & (MF_GRAYED | MF_DISABLED)) ? 0 : TBSTATE_ENABLED;
        buttons[i].fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
        buttons[i].iString = reinterpret_cast<INT_PTR>(texts[i].c_str());
    }
    if (!buttons.empty())
        SendMessageW(menuBar_, TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
    SendMessageW(menuBar_, TB_AUTOSIZE, 0, 0);
    if (menu_) images_.ApplyTo(menu_);
    FitBand(menuBar_);
}

void CommandBar::AddBand(HWND child, int id, bool ownRow) {
    REBARBANDINFOW band{sizeof(band)};
    band.fMask = RBBIM_STYLE | RBBIM_CHILD | RBBIM_ID;
    band.fStyle = RBBS_NOGRIPPER | (ownRow ? RBBS_BREAK : 0);
    band.hwndChild = child;
    band.wID = id;
    SendMessageW(rebar_, RB_INSERTBANDW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&band));
    FitBand(child);
}

// The band is as tall as the control's buttons and at least as wide as all of them.
void CommandBar::FitBand(HWND child) {
    const int index = static_cast<int>(SendMessageW(rebar_, RB_IDTOINDEX, GetDlgCtrlID(child), 0));
    if (index < 0) return;
    SIZE size{};
    SendMessageW(child, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
    const DWORD buttonSize = static_cast<DWORD>(SendMessageW(child, TB_GETBUTTONSIZE, 0, 0));
    REBARBANDINFOW band{sizeof(band)};
    band.fMask = RBBIM_CHILDSIZE | RBBIM_SIZE | RBBIM_IDEALSIZE;
    band.cxMinChild = size.cx;
    band.cyMinChild = size.cy > 0 ? size.cy : HIWORD(buttonSize);
    band.cx = size.cx;
    band.cxIdeal = size.cx;
    SendMessageW(rebar_, RB_SETBANDINFOW, index, reinterpret_cast<LPARAM>(&band));
}

int CommandBar::Height() const {
    if (!rebar_) return 0;
    RECT rc{};
    GetWindowRect(rebar_, &rc);
    return rc.bottom - rc.top;
}

void CommandBar::Resize() {
    // A CCS_TOP rebar places itself at the top of its parent, full width, on WM_SIZE.
    if (rebar_) SendMessageW(rebar_, WM_SIZE, 0, 0);
}

int CommandBar::ButtonCount() const {
    return menuBar_ ? static_cast<int>(SendMessageW(menuBar_, TB_BUTTONCOUNT, 0, 0)) : 0;
}

int CommandBar::ButtonAt(POINT screen) const {
    if (!menuBar_) return -1;
    ScreenToClient(menuBar_, &screen);
    const int index = static_cast<int>(SendMessageW(menuBar_, TB_HITTEST, 0, reinterpret_cast<LPARAM>(&screen)));
    if (index < 0 || index >= ButtonCount()) return -1;
    return SendMessageW(menuBar_, TB_ISBUTTONENABLED, index, 0) ? index : -1;
}

int CommandBar::ButtonOfMnemonic(wchar_t key) const {
    if (!menu_ || key == 0) return -1;
    const wchar_t upper = UpperCase(key);
    const int count = ButtonCount();
    for (int i = 0; i < count; ++i)
        if (MenuMnemonic(MenuItemText(menu_, i)) == upper && SendMessageW(menuBar_, TB_ISBUTTONENABLED, i, 0))
            return i;
    return -1;
}

bool CommandBar::BelongsToFrame(HWND hwnd) const {
    return frame_ && (hwnd == frame_ || IsChild(frame_, hwnd));
}

bool CommandBar::HandleNotify(NMHDR* header, LRESULT& result) {
    if (header->code == RBN_HEIGHTCHANGE && rebar_ && header->hwndFrom == rebar_) {
        // The frame's layout depends on the bar's height: lay it out again as for a resize.
        // While the bar is being built the frame has not been laid out yet anyway.
        RECT client{};
        if (!creating_ && !IsIconic(frame_) && GetClientRect(frame_, &client))
            SendMessageW(frame_, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.right, client.bottom));
        result = 0;
        return true;
    }
    if (toolBar_ && header->hwndFrom == toolBar_ && header->code == TBN_HOTITEMCHANGE) {
        const auto* hot = reinterpret_cast<const NMTBHOTITEM*>(header);
        ShowHelp((hot->dwFlags & HICF_LEAVING) ? 0 : static_cast<UINT>(hot->idNew));
        result = 0;
        return true;
    }
    if (!toolBar_ || header->code != TTN_GETDISPINFOW) return false;
    if (header->hwndFrom != reinterpret_cast<HWND>(SendMessageW(toolBar_, TB_GETTOOLTIPS, 0, 0))) return false;
    auto* info = reinterpret_cast<NMTTDISPINFOW*>(header);
    tooltip_ = TooltipLine(LoadEntry(instance_, static_cast<UINT>(header->idFrom)));
    info->lpszText = tooltip_.data();
    info->hinst = nullptr;
    result = 0;
    return true;
}

void CommandBar::ShowHelp(UINT command) {
    if (!status_) return;
    if (command == 0)
        status_->EndHelp();
    else
        status_->ShowHelp(StatusLine(LoadEntry(instance_, command)));
}

void CommandBar::OnMenuSelect(WPARAM wParam, LPARAM lParam) {
    const UINT flags = HIWORD(wParam);
    if (!status_) return;
    if (flags == 0xFFFF && lParam == 0)
        status_->EndHelp();  // the menu closed
    else if (flags & (MF_POPUP | MF_SEPARATOR))
        status_->ShowHelp(L"");  // a submenu or a separator has no help line of its own
    else
        ShowHelp(LOWORD(wParam));
}

void CommandBar::EnableCommand(UINT id, bool enabled) {
    if (toolBar_ && SendMessageW(toolBar_, TB_COMMANDTOINDEX, id, 0) >= 0)
        SendMessageW(toolBar_, TB_ENABLEBUTTON, id, MAKELPARAM(enabled ? TRUE : FALSE, 0));
    if (menu_) EnableMenuItem(menu_, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
}

void CommandBar::CheckCommand(UINT id, bool checked) {
    if (toolBar_ && SendMessageW(toolBar_, TB_COMMANDTOINDEX, id, 0) >= 0)
        SendMessageW(toolBar_, TB_CHECKBUTTON, id, MAKELPARAM(checked ? TRUE : FALSE, 0));
    if (menu_) CheckMenuItem(menu_, id, MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
}

}  // namespace lx
