#include "MainFrame.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <cstring>

#include "DibGlobal.h"
#include "DropListPaths.h"
#include "ModuleResources.h"
#include "SettingsStore.h"
#include "ShellServices.h"
#include "StatusTexts.h"
#include "ToolFrameWindow.h"
#include "ZoomView.h"

namespace lx {
namespace {

constexpr int kRebarId = 59392;
constexpr int kStatusBarId = 59393;
constexpr int kZoomViewId = 21;
constexpr UINT kFrameResource = 4;
constexpr UINT kToolBarResource = 409;
constexpr UINT kFilterMenuPosition = 3;
constexpr UINT kContextMenuPosition = 3;
constexpr UINT kStatusPanes[] = {1004, 1005, 1006, 1007, 1008};
constexpr struct {
    int pane;
    int icon;
} kPaneIcons[] = {{1005, 205}, {1007, 201}, {1008, 204}};
// What the stored view record carries from one session to the next: not the scroll
// position, which belonged to the picture of then.
constexpr uint32_t kStoredViewFields = kSettingsBackground | kSettingsGridColour | kSettingsGridShown | kSettingsTool |
                                       kSettingsGridStep | kSettingsOptions | kSettingsZoom | kSettingsSelectionColour;

const wchar_t* const kSection = MAKEINTRESOURCEW(4402);       // "MainEditor"
const wchar_t* const kWndPos = MAKEINTRESOURCEW(4602);        // "WndPos"
const wchar_t* const kDisplayStatus = MAKEINTRESOURCEW(4603); // "DisplayStatus"
const wchar_t* const kZoomViewInfo = MAKEINTRESOURCEW(4604);  // "ZoomViewInfo"
const wchar_t* const kNaviPos = MAKEINTRESOURCEW(4618);       // "NaviPos"

HMENU ToMenuId(int id) { return reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)); }

// The plug-in submenus start empty; a menu script cannot say so, so the placeholder each
// holds goes here.
void EmptyPluginSubmenus(HMENU menu) {
    static const wchar_t* const kPluginMenus[] = {L"形式を指定して書き出し(&W)", L"色調の変更(&V)"};
    for (int top = 0; top < GetMenuItemCount(menu); ++top) {
        HMENU popup = GetSubMenu(menu, top);
        for (int i = 0; popup && i < GetMenuItemCount(popup); ++i) {
            wchar_t text[64] = {};
            GetMenuStringW(popup, static_cast<UINT>(i), text, 64, MF_BYPOSITION);
            for (const wchar_t* name : kPluginMenus)
                if (HMENU sub = GetSubMenu(popup, i); sub && wcscmp(text, name) == 0)
                    while (GetMenuItemCount(sub) > 0) DeleteMenu(sub, 0, MF_BYPOSITION);
        }
    }
}

}  // namespace

std::span<const MessageEntry<CMainFrame>> CMainFrame::Messages() {
    static const MessageEntry<CMainFrame> table[] = {
        {WM_CREATE, &CMainFrame::OnCreate},
        {WM_SIZE, &CMainFrame::OnSize},
        {WM_CLOSE, &CMainFrame::OnClose},
        {WM_DESTROY, &CMainFrame::OnDestroy},
        {WM_NOTIFY, &CMainFrame::OnNotify},
        {WM_COMMAND, &CMainFrame::OnCommand},
        {WM_DROPFILES, &CMainFrame::OnDropFiles},
        {WM_INITMENUPOPUP, &CMainFrame::OnInitMenuPopup},
        {WM_CONTEXTMENU, &CMainFrame::OnContextMenu},
        {WM_SETFOCUS, &CMainFrame::OnSetFocus},
    };
    return table;
}

CMainFrame::CMainFrame() : document_(*this) {}

CMainFrame::~CMainFrame() {
    if (hwnd()) DestroyWindow(hwnd());
}

HWND CMainFrame::Create(int showCmd) {
    if (!CreateToolFrameWindow(*this, kClassName, kFrameResource, commandBar_, accelerators_)) return nullptr;
    if (MessageLoop* loop = CurrentMessageLoop()) {
        loop->AddIdleHandler([this] {
            if (!hwnd()) return;
            UpdateCommandStates();
            UpdateZoomPane();
            navigator_.Refresh();
        });
    }
    WINDOWPLACEMENT placement{};
    SettingsStore settings;
    const bool placed = settings.ReadBlock(kSection, kWndPos, &placement, sizeof placement) == sizeof placement;
    if (placed && placement.showCmd == SW_SHOWMAXIMIZED && (showCmd == SW_SHOWNORMAL || showCmd == SW_SHOW))
        showCmd = SW_SHOWMAXIMIZED;
    ShowWindow(hwnd(), showCmd);
    UpdateWindow(hwnd());
    return hwnd();
}

void CMainFrame::OpenStartup(const std::wstring& commandLine) {
    Open(commandLine);
    UpdateCommandStates();
}

LRESULT CMainFrame::OnCreate(WPARAM, LPARAM) {
    SettingsStore settings;
    const DWORD defaultOptions = GetSystemMetrics(SM_CYFULLSCREEN) < 800 ? 0x10021 : 0x10020;
    options_ = settings.ReadNumber(kSection, kDisplayStatus, defaultOptions);

    // The menu with the filter popup that the plug-ins fill, before "表示(&V)".
    HMENU menu = LoadMenuW(ModuleInstance(), MAKEINTRESOURCEW(kFrameResource));
    // The context menu is the fourth menu as loaded (the view's), not the filters put there.
    contextMenu_ = menu ? GetSubMenu(menu, kContextMenuPosition) : nullptr;
    if (menu) EmptyPluginSubmenus(menu);
    if (menu)
        InsertMenuW(menu, kFilterMenuPosition, MF_BYPOSITION | MF_POPUP, reinterpret_cast<UINT_PTR>(CreatePopupMenu()),
                    L"フィルタ(&P)");
    commandBar_.Create(hwnd(), kRebarId, menu, ModuleInstance(), kToolBarResource, kToolBarResource);
    statusBar_.Create(hwnd(), kStatusBarId);
    commandBar_.SetStatusBar(&statusBar_);
    std::vector<StatusPane> panes{{0, L""}};
    for (UINT id : kStatusPanes) panes.push_back({static_cast<int>(id), LoadResString(id)});
    statusBar_.SetPanes(panes);
    for (size_t i = 0; i < std::size(kPaneIcons); ++i) {
        paneIcons_[i].reset(static_cast<HICON>(
            LoadImageW(ModuleInstance(), MAKEINTRESOURCEW(kPaneIcons[i].icon), IMAGE_ICON, 16, 16, 0)));
        statusBar_.SetIcon(kPaneIcons[i].pane, paneIcons_[i].get());
    }
    ApplyButtonSize();

    CreateView();

    WINDOWPLACEMENT placement{};
    if (settings.ReadBlock(kSection, kWndPos, &placement, sizeof placement) == sizeof placement) {
        const RECT r = ClampToMonitor(placement.rcNormalPosition);
        SetWindowPos(hwnd(), nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    DragAcceptFiles(hwnd(), TRUE);

    NaviPosRecord navi{};
    const bool naviStored = settings.ReadBlock(kSection, kNaviPos, &navi, sizeof navi) == sizeof navi;
    navigator_.Create(hwnd(), zoomView_, naviStored ? &navi : nullptr);

    LoadRecentDocuments();
    LayoutChildren();
    return 0;
}

void CMainFrame::CreateView() {
    zoomView_ = CreateWindowExW(WS_EX_CLIENTEDGE, kZoomViewClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0,
                                0, 0, hwnd(), ToMenuId(kZoomViewId), ModuleInstance(), nullptr);
    SendMessageW(zoomView_, kZvInitialize, 0, 0);
    uint8_t stored[60] = {};
    SettingsStore settings;
    if (settings.ReadBlock(kSection, kZoomViewInfo, stored, sizeof stored) == sizeof stored) {
        if (auto record = SettingsFromBytes(stored)) {
            savedZoom_ = record->zoom;
            record->size = sizeof stored;
            record->mask &= kStoredViewFields;
            SendMessageW(zoomView_, kZvApplySettings, 0, reinterpret_cast<LPARAM>(&*record));
        }
    }
}

void CMainFrame::LayoutChildren() {
    if (!hwnd() || !statusBar_.hwnd() || !zoomView_) return;
    commandBar_.Resize();
    statusBar_.Resize();
    RECT client{};
    GetClientRect(hwnd(), &client);
    RECT status{};
    GetWindowRect(statusBar_.hwnd(), &status);
    const int top = commandBar_.Height();
    const int bottom = std::max<int>(client.bottom - (status.bottom - status.top), top);
    MoveWindow(zoomView_, 0, top, client.right, bottom - top, TRUE);
}

LRESULT CMainFrame::OnSize(WPARAM, LPARAM) {
    LayoutChildren();
    return 0;
}

LRESULT CMainFrame::OnSetFocus(WPARAM, LPARAM) {
    if (zoomView_) SetFocus(zoomView_);
    return 0;
}

void CMainFrame::ApplyButtonSize() {
    // Large buttons leave more room around the same images.
    if (HWND bar = commandBar_.ToolBar()) {
        const int padding = options_ & kOptionSmallButtons ? 7 : 15;
        SendMessageW(bar, TB_SETPADDING, 0, MAKELPARAM(padding, padding));
        SendMessageW(bar, TB_SETBUTTONSIZE, 0, MAKELPARAM(16 + padding, 16 + padding));
        SendMessageW(bar, TB_AUTOSIZE, 0, 0);
        commandBar_.Resize();
        LayoutChildren();
    }
}

void CMainFrame::UpdateZoomPane() {
    if (!zoomView_) return;
    const std::wstring text = ShownImage() ? ZoomText(static_cast<int>(SendMessageW(zoomView_, kZvGetZoom, 0, 0))) : L"";
    if (statusBar_.Text(1005) != text) statusBar_.SetText(1005, text);
}

void CMainFrame::OnViewNotify(const NMHDR* header) {
    const auto* notify = reinterpret_cast<const ZoomViewNotify*>(header);
    const ViewRect s{notify->selection.left, notify->selection.top, notify->selection.right, notify->selection.bottom};
    const ImageFacts& facts = document_.Facts();
    switch (header->code) {
    case kZvnCursor: {
        const POINT& at = notify->cursor;
        const bool onPicture = ShownImage() && at.x >= 0 && at.y >= 0 && at.x < facts.width && at.y < facts.height;
        statusBar_.SetText(1004, !s.empty()   ? CursorSelectionText(s.left, s.top, s.width(), s.height())
                                 : onPicture ? CursorText(at.x, at.y)
                                             : L"");
        break;
    }
    case kZvnSelectionSize: statusBar_.SetText(1006, s.empty() ? L"" : SelectionSizeText(s.width(), s.height())); break;
    case kZvnZoomChanged:
    case kZvnUserZoomChanged:
        UpdateZoomPane();
        navigator_.Refresh();
        break;
    }
}

LRESULT CMainFrame::OnNotify(WPARAM, LPARAM lParam) {
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    LRESULT result = 0;
    if (commandBar_.HandleNotify(header, result)) return result;
    if (header->idFrom == kZoomViewId && header->hwndFrom == zoomView_) OnViewNotify(header);
    return result;
}

LRESULT CMainFrame::OnCommand(WPARAM wParam, LPARAM lParam) {
    const bool handled = RunCommand(LOWORD(wParam));
    // A command sent from elsewhere leaves no message for the idle pass to follow.
    if (hwnd()) UpdateCommandStates();
    return handled ? 0 : Default(WM_COMMAND, wParam, lParam);
}

LRESULT CMainFrame::OnDropFiles(WPARAM wParam, LPARAM) {
    auto* drop = reinterpret_cast<HDROP>(wParam);
    const std::vector<std::wstring> paths = DropListPaths(drop);
    DragFinish(drop);
    if (!paths.empty()) {
        SetForegroundWindow(hwnd());
        Open(paths.front());
    }
    return 0;
}

LRESULT CMainFrame::OnInitMenuPopup(WPARAM, LPARAM) {
    UpdateCommandStates();
    return 0;
}

// The view's context menu: the fourth top-level menu of the menu as loaded, at the pointer, or
// at the view's top-left corner when the keyboard asked.
LRESULT CMainFrame::OnContextMenu(WPARAM wParam, LPARAM lParam) {
    if (reinterpret_cast<HWND>(wParam) != zoomView_) return Default(WM_CONTEXTMENU, wParam, lParam);
    HMENU popup = contextMenu_;
    if (!popup) return 0;
    POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    if (lParam == -1) {
        at = {0, 0};
        ClientToScreen(zoomView_, &at);
    }
    UpdateCommandStates();
    TrackPopupMenu(popup, TPM_LEFTALIGN | TPM_RIGHTBUTTON, at.x, at.y, 0, hwnd(), nullptr);
    return 0;
}

LRESULT CMainFrame::OnClose(WPARAM, LPARAM) {
    if (!AskToSave(true)) return 0;
    SaveSettings();
    DestroyWindow(hwnd());
    return 0;
}

void CMainFrame::SaveSettings() {
    SettingsStore settings;
    WINDOWPLACEMENT placement{sizeof placement};
    if (GetWindowPlacement(hwnd(), &placement)) settings.WriteBlock(kSection, kWndPos, &placement, sizeof placement);
    ZoomViewSettings view;
    view.mask = kStoredViewFields;
    SendMessageW(zoomView_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&view));
    view.mask = kStoredViewFields;
    uint8_t bytes[60];
    SettingsToBytes(view, bytes);
    settings.WriteBlock(kSection, kZoomViewInfo, bytes, sizeof bytes);
    if (navigator_.hwnd()) {
        const NaviPosRecord navi = navigator_.Record();
        settings.WriteBlock(kSection, kNaviPos, &navi, sizeof navi);
    }
    settings.WriteNumber(kSection, kDisplayStatus, options_);
}

LRESULT CMainFrame::OnDestroy(WPARAM, LPARAM) {
    document_.ClearUndo();
    SaveRecentDocuments();
    for (Icon& icon : paneIcons_) icon.reset();
    if (navigator_.hwnd()) DestroyWindow(navigator_.hwnd());
    // The view frees its picture with its window; the filters and the idle handler test
    // hwnd(), which is null from here on.
    PostQuitMessage(0);
    return 0;
}

void CMainFrame::UpdateCommandStates() {
    const EditorState state = CurrentState();
    for (const EditorCommand& command : EditorCommandTable())
        commandBar_.EnableCommand(command.id, CommandEnabled(command, state));
    ZoomViewSettings grid;
    grid.mask = kSettingsGridShown;
    SendMessageW(zoomView_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&grid));
    commandBar_.CheckCommand(2113, grid.gridShown != 0);
    commandBar_.CheckCommand(2104, navigator_.Shown());
    commandBar_.CheckCommand(2103, (options_ & kOptionSmallButtons) != 0);
}

EditorState CMainFrame::CurrentState() const {
    EditorState state;
    state.undoCount = document_.UndoCount();
    state.clipboardImage = IsClipboardFormatAvailable(CF_DIB) || IsClipboardFormatAvailable(CF_BITMAP);
    RECT selection{};
    SendMessageW(zoomView_, kZvGetSelection, 0, reinterpret_cast<LPARAM>(&selection));
    state.selection = selection.right > selection.left && selection.bottom > selection.top;
    state.depth = ViewImage() ? document_.Facts().depth : 0;
    const LRESULT zoom = SendMessageW(zoomView_, kZvCanZoom, 0, 0);
    state.canZoomIn = LOWORD(zoom) != 0;
    state.canZoomOut = HIWORD(zoom) != 0;
    return state;
}

void CMainFrame::SetTitle(const std::wstring& nameOrPath) {
    SetWindowTextW(hwnd(), DocumentTitle(nameOrPath, LoadResString(5)).c_str());
}

HGLOBAL CMainFrame::ViewImage() const {
    return zoomView_ ? reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvGetImage, 0, 0)) : nullptr;
}

// DocumentHost.

ViewRect CMainFrame::Selection() {
    RECT r{};
    SendMessageW(zoomView_, kZvGetSelection, 0, reinterpret_cast<LPARAM>(&r));
    return {r.left, r.top, r.right, r.bottom};
}

void CMainFrame::SetSelection(const ViewRect& selection) {
    RECT r{selection.left, selection.top, selection.right, selection.bottom};
    SendMessageW(zoomView_, kZvSetSelection, 0, reinterpret_cast<LPARAM>(&r));
}

ImageHandle CMainFrame::ShownImage() { return ViewImage(); }

ImageHandle CMainFrame::ReplaceImage(ImageHandle image) {
    return reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvReplaceImage, 1, reinterpret_cast<LPARAM>(image)));
}

// One block copy: the undo step costs no more than the picture's bytes.
ImageHandle CMainFrame::CopyImage(ImageHandle image) {
    const SIZE_T size = GlobalSize(image);
    if (!size) return nullptr;
    HGLOBAL copy = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!copy) return nullptr;
    const void* from = GlobalLock(image);
    void* to = GlobalLock(copy);
    if (from && to) std::memcpy(to, from, size);
    GlobalUnlock(copy);
    GlobalUnlock(image);
    if (!from || !to) {
        GlobalFree(copy);
        return nullptr;
    }
    return copy;
}

void CMainFrame::FreeImage(ImageHandle image) { GlobalFree(image); }

ImageFacts CMainFrame::Facts(ImageHandle image) {
    ImageFacts facts;
    const SIZE_T size = GlobalSize(image);
    if (size < sizeof(BITMAPINFOHEADER)) return facts;
    if (const auto* header = static_cast<const BITMAPINFOHEADER*>(GlobalLock(image))) {
        facts = {header->biWidth, std::abs(header->biHeight), header->biBitCount};
        GlobalUnlock(image);
    }
    return facts;
}

void CMainFrame::ShowFacts(const std::wstring& sizeText, const std::wstring& depthText) {
    statusBar_.SetText(1007, sizeText);
    statusBar_.SetText(1008, depthText);
}

void CMainFrame::ShowInNavigator(ImageHandle image) { navigator_.SetImage(static_cast<HGLOBAL>(image)); }

std::wstring CMainFrame::CommandText(int commandId) { return LoadResString(static_cast<UINT>(commandId)); }

std::unique_ptr<TopFrame> MakeEditorFrame() { return std::make_unique<CMainFrame>(); }

}  // namespace lx
