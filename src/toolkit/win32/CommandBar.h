// The top bar of a frame window: a rebar with two bands, the menu bar and the tool bar.
//
// The menu bar shows the frame's menu as a flat tool bar with one text button per top-level
// popup; a button drops its popup below itself, and while one is open the pointer or the
// Left and Right keys move to the neighbouring menus. Keyboard use goes through PreTranslate
// in the frame's message loop: F10 or a lone Alt makes the first button hot (arrows move,
// Enter or Down opens, Esc leaves), Alt with a mnemonic opens that menu at once. Popups are
// tracked with the frame as owner, so the frame receives WM_INITMENUPOPUP, WM_MENUSELECT and
// the chosen WM_COMMAND as it would from its own menu bar.
//
// The tool bar comes from a tool-bar resource; its tooltips are the second line of the
// command's string-table entry. Items of the menu whose commands are in the menu-images
// tool-bar resource show that resource's button images.
//
// The bar also serves the frame's menus while they are open (it subclasses the frame): it
// measures and draws the item images itself, so they are blended over the menu's own colours,
// and, given a status bar, shows the first line of the highlighted command's string there,
// for menu items and tool-bar buttons alike.
//
// Ownership: the bar owns the menu handed to Create (the frame's window menu is removed) and
// destroys it, with the item images, when the bar object goes. The windows are children of
// the frame and die with it; an object that goes first destroys them itself. The frame sends
// its WM_NOTIFY here first and calls Resize from its WM_SIZE.
#pragma once

#include <windows.h>

#include <string>

#include "MenuImages.h"

namespace lx {

class StatusBar;

class CommandBar {
public:
    // Child ids of the two bands' controls (the rebar's id is the frame's choice).
    static constexpr int kMenuBarId = 0xE802;
    static constexpr int kToolBarId = 0xE803;
    // The colour of the image strips that stands for "no pixel".
    static constexpr COLORREF kTransparent = RGB(255, 0, 255);

    CommandBar() = default;
    CommandBar(const CommandBar&) = delete;
    CommandBar& operator=(const CommandBar&) = delete;
    ~CommandBar();

    // Builds the rebar as child `rebarId` of `frame`. `menuImagesId` and `toolBarId` name
    // tool-bar resources of `instance` (0: none); the tooltip strings come from `instance`
    // too. False when a control cannot be made or a named resource is missing; the bar owns
    // `menu` from this call on either way.
    bool Create(HWND frame, int rebarId, HMENU menu, HINSTANCE instance, UINT menuImagesId, UINT toolBarId);

    HWND hwnd() const { return rebar_; }
    HWND MenuBar() const { return menuBar_; }
    HWND ToolBar() const { return toolBar_; }
    HMENU Menu() const { return menu_; }
    // The image the menu shows beside `command`, or null.
    HBITMAP ImageOf(UINT command) const { return images_.ImageOf(command); }

    // The rebar's height, for the frame's layout.
    int Height() const;
    // From the frame's WM_SIZE: the rebar takes the top of the client area, full width.
    void Resize();
    // Rebuilds the menu bar's buttons after the frame changed the menu's top level, and gives
    // new items their images.
    void RefreshMenu();

    // A message-loop filter: the keyboard handling of the menu bar. True when it consumed
    // the message.
    bool PreTranslate(MSG& msg);
    // Answers the tool bar's tooltip requests, and lays the frame out again (a WM_SIZE for its
    // present size) when the rebar's height changed. True when consumed, with `result` set.
    bool HandleNotify(NMHDR* header, LRESULT& result);

    // The status bar that shows the help line of the highlighted command; null for none. It
    // must outlive its use.
    void SetStatusBar(StatusBar* status) { status_ = status; }

    // Enables or checks a command on the tool bar and in the menu.
    void EnableCommand(UINT id, bool enabled);
    void CheckCommand(UINT id, bool checked);

    // The button that keyboard mode has made hot, or -1 when the bar is not in that mode.
    int KeyboardHot() const { return keyboardHot_; }

private:
    friend LRESULT CALLBACK MenuBarProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
    friend LRESULT CALLBACK MenuMessageFilter(int, WPARAM, LPARAM);
    friend LRESULT CALLBACK FrameProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);

    bool CreateMenuBar();
    bool CreateToolBar(UINT toolBarId);
    void AddBand(HWND child, int id, bool ownRow);
    void FitBand(HWND child);
    int ButtonCount() const;
    int ButtonAt(POINT screen) const;
    int ButtonOfMnemonic(wchar_t key) const;
    bool BelongsToFrame(HWND hwnd) const;
    // The help line of `command` in the status bar; 0 ends the help.
    void ShowHelp(UINT command);
    void OnMenuSelect(WPARAM wParam, LPARAM lParam);

    // Menu tracking (CommandBarMenu.cpp).
    void TrackMenus(int index, bool byKeyboard);
    bool FilterMenuMessage(const MSG& msg);
    void SwitchTo(int index, bool selectFirst);
    void EnterKeyboardMode(int index);
    void LeaveKeyboardMode();
    void ToggleKeyboardMode();
    // The next enabled button from `from` in direction `step`, wrapping; -1 when none.
    int Neighbour(int from, int step) const;
    bool HandleKeyboardMode(MSG& msg);
    void ShowPrefixes(bool shown);

    HWND frame_ = nullptr;
    HWND rebar_ = nullptr;
    HWND menuBar_ = nullptr;
    HWND toolBar_ = nullptr;
    HMENU menu_ = nullptr;
    HINSTANCE instance_ = nullptr;
    bool frameHooked_ = false;
    StatusBar* status_ = nullptr;
    MenuImages images_;
    std::wstring tooltip_;  // the text the last tooltip request points at

    int tracking_ = -1;         // the button whose popup is open
    int next_ = -1;             // the popup to open when the open one closes
    bool selectFirst_ = false;  // open the next popup with its first item selected
    bool backToBar_ = false;    // Esc closed the popup: return to keyboard mode
    POINT lastPointer_{-1, -1};
    int keyboardHot_ = -1;
    bool altAlone_ = false;     // Alt is down and no other key came since
    bool creating_ = false;
};

// The mnemonic of a menu text: the character after a single "&", upper-cased; 0 when none.
wchar_t MenuMnemonic(const std::wstring& text);

// The tooltip of a command string "status text\ntooltip": the second line, or the whole
// string when it has one line.
std::wstring TooltipLine(const std::wstring& entry);
// Its status text: the first line.
std::wstring StatusLine(const std::wstring& entry);

}  // namespace lx
