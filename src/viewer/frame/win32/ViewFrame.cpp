#include "ViewFrame.h"

#include <commctrl.h>
#include <shellapi.h>
#include <shlwapi.h>

#include "DropListPaths.h"
#include "ImageTypes.h"
#include "ModuleResources.h"
#include "SettingsStore.h"
#include "ShellServices.h"
#include "ToolFrameWindow.h"
#include "ZoomView.h"

namespace lx {
namespace {

constexpr int kRebarId = 59392;
constexpr int kStatusBarId = 59393;
constexpr int kOuterSplitterId = 59648;
constexpr int kInnerSplitterId = 59649;
constexpr int kInformationId = 6;
constexpr int kZoomViewId = 21;
constexpr int kListId = 23;
constexpr int kBarWidth = 4;
constexpr COLORREF kViewBackground = 0x464646;
constexpr UINT kFrameResource = 5;
constexpr UINT kMenuImages = 408;
constexpr int kRefreshInformation = 2108;
constexpr UINT kStatusPanes[] = {1004, 1005, 1006, 1007, 1008};
// Pane and its icon resource.
constexpr struct {
    int pane;
    int icon;
} kPaneIcons[] = {{1005, 205}, {1007, 201}, {1008, 204}};

const wchar_t* const kSection = MAKEINTRESOURCEW(4401);    // "MainViewer"
const wchar_t* const kWndPos = MAKEINTRESOURCEW(4602);     // "WndPos"
const wchar_t* const kImageInfo = MAKEINTRESOURCEW(4611);  // "ImageInfo"

HMENU ToMenuId(int id) { return reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)); }

}  // namespace

std::span<const MessageEntry<CViewFrame>> CViewFrame::Messages() {
    static const MessageEntry<CViewFrame> table[] = {
        {WM_CREATE, &CViewFrame::OnCreate},
        {WM_SIZE, &CViewFrame::OnSize},
        {WM_CLOSE, &CViewFrame::OnClose},
        {WM_DESTROY, &CViewFrame::OnDestroy},
        {WM_NOTIFY, &CViewFrame::OnNotify},
        {WM_COMMAND, &CViewFrame::OnCommand},
        {WM_DROPFILES, &CViewFrame::OnDropFiles},
        {WM_INITMENUPOPUP, &CViewFrame::OnInitMenuPopup},
        {WM_SETFOCUS, &CViewFrame::OnSetFocus},
    };
    return table;
}

UINT CViewFrame::LoadCompletedMessage() {
    static const UINT message = RegisterWindowMessageW(L"wm_gmil_loadimagecompleted");
    return message;
}

CViewFrame::CViewFrame() = default;

LRESULT CViewFrame::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == LoadCompletedMessage()) return OnLoadCompleted(wParam, lParam);
    return MappedWindow<CViewFrame>::HandleMessage(message, wParam, lParam);
}

CViewFrame::~CViewFrame() {
    if (hwnd()) DestroyWindow(hwnd());
}

HWND CViewFrame::Create(int showCmd) {
    if (!CreateToolFrameWindow(*this, kClassName, kFrameResource, commandBar_, accelerators_)) return nullptr;
    ShowWindow(hwnd(), showCmd);
    return hwnd();
}

// The first paint waits for the load to be started, so that it runs beside the decode.
void CViewFrame::OpenStartup(const std::wstring& path) {
    if (!Open(path, true)) statusBar_.SetText(0, LoadResString(4088));
    UpdateCommandStates();
    UpdateWindow(hwnd());
}

LRESULT CViewFrame::OnCreate(WPARAM, LPARAM) {
    currentPath_.clear();
    imageSize_ = {};
    requestStamp_ = 0;

    SettingsStore settings;
    record_ = DefaultImageInfo(GetSystemMetrics(SM_CXVSCROLL), GetSystemMetrics(SM_CYFULLSCREEN));
    ImageInfoRecord stored;
    if (settings.ReadBlock(kSection, kImageInfo, &stored, sizeof stored) == sizeof stored) record_ = stored;

    // The command bar takes the menu over; the window itself keeps none.
    commandBar_.Create(hwnd(), kRebarId, LoadMenuW(ModuleInstance(), MAKEINTRESOURCEW(kFrameResource)),
                       ModuleInstance(), kMenuImages, kMenuImages);
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

    CreatePanes();
    busyAnimation_ = std::make_unique<BusyAnimation>();
    if (!busyAnimation_->Create(zoomView_, ModuleInstance())) busyAnimation_.reset();
    loader_.Bind(hwnd(), LoadCompletedMessage());

    LoadRecentFiles();
    WINDOWPLACEMENT placement{};
    if (settings.ReadBlock(kSection, kWndPos, &placement, sizeof placement) == sizeof placement) {
        const RECT r = ClampToMonitor(placement.rcNormalPosition);
        SetWindowPos(hwnd(), nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    DragAcceptFiles(hwnd(), TRUE);
    SetFocus(outerSplitter_.hwnd());
    return 0;
}

void CViewFrame::CreatePanes() {
    outerSplitter_.Create(hwnd(), kOuterSplitterId, Splitter::Bar::Vertical, 0xBBBBBB, kBarWidth);
    rightSplitter_.Create(outerSplitter_.hwnd(), kInnerSplitterId, Splitter::Bar::Vertical, 0xBBBBBB, kBarWidth);
    belowSplitter_.Create(outerSplitter_.hwnd(), kInnerSplitterId, Splitter::Bar::Horizontal, 0xBBBBBB, kBarWidth);
    informationView_.Create(outerSplitter_.hwnd(), kInformationId);
    outerSplitter_.SetMinimums(GetSystemMetrics(SM_CXVSCROLL) + 80, 0);
    outerSplitter_.SetPosition(record_.infoWidth);

    zoomView_ = CreateWindowExW(WS_EX_CLIENTEDGE, kZoomViewClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0,
                                0, 0, ImageArea().hwnd(), ToMenuId(kZoomViewId), ModuleInstance(), nullptr);
    SendMessageW(zoomView_, kZvSetBackground, 0, kViewBackground);
    SendMessageW(zoomView_, kZvInitialize, 0, 0);
    SendMessageW(zoomView_, kZvSetOptions, record_.viewOptions, 0);
    thumbnailList_.Create(ImageArea().hwnd(), kListId);
    PlaceList();
    if (!record_.infoShown) outerSplitter_.ShowOnly(1);
}

int CViewFrame::ListPaneSize() const {
    if (record_.listSize >= 0) return record_.listSize;
    const SIZE item = thumbnailList_.ItemSize();
    return record_.listBelow ? item.cy + GetSystemMetrics(SM_CYHSCROLL) : item.cx + GetSystemMetrics(SM_CXVSCROLL);
}

// Puts the picture and the list into the inner splitter of the current placement, shows that
// splitter as the outer splitter's second pane and hides the other.
void CViewFrame::PlaceList() {
    Splitter& area = ImageArea();
    Splitter& other = record_.listBelow ? rightSplitter_ : belowSplitter_;
    // The list keeps its size as the window or the information pane changes; the picture
    // takes the rest. Set before the panes move in, so they are placed once, at that size.
    record_.listSize = ListPaneSize();
    area.SetSecondSize(record_.listSize);
    SetParent(zoomView_, area.hwnd());
    SetParent(thumbnailList_.hwnd(), area.hwnd());
    other.SetPanes(nullptr, nullptr);
    ShowWindow(other.hwnd(), SW_HIDE);
    area.SetPanes(zoomView_, thumbnailList_.hwnd());
    area.SetMinimums(32, 0);
    area.ShowOnly(record_.listShown ? -1 : 0);
    outerSplitter_.SetPanes(informationView_.hwnd(), area.hwnd());
    LayoutChildren();
}

void CViewFrame::LayoutChildren() {
    if (!hwnd() || !statusBar_.hwnd()) return;
    commandBar_.Resize();
    statusBar_.Resize();
    RECT client{};
    GetClientRect(hwnd(), &client);
    RECT status{};
    GetWindowRect(statusBar_.hwnd(), &status);
    const int top = commandBar_.Height();
    const int bottom = std::max<int>(client.bottom - (status.bottom - status.top), top);
    MoveWindow(outerSplitter_.hwnd(), 0, top, client.right, bottom - top, TRUE);
}

LRESULT CViewFrame::OnSize(WPARAM, LPARAM) {
    LayoutChildren();
    return 0;
}

LRESULT CViewFrame::OnSetFocus(WPARAM, LPARAM) {
    if (zoomView_) SetFocus(zoomView_);
    return 0;
}

int CViewFrame::Open(const std::wstring& path, bool listFolder) {
    if (!PathFileExistsW(path.c_str()) || PathIsDirectoryW(path.c_str())) return 0;
    if (ImageTypeFromPath(path.c_str()) == kImageUnknown) return 0;
    if (loader_.IsRunning()) {
        MessageBeep(0);
        return 0;
    }
    if (busyAnimation_) {
        RECT rc{};
        GetClientRect(zoomView_, &rc);
        busyAnimation_->Start({rc.right / 2, rc.bottom / 2});
    }
    currentPath_ = path;
    requestStamp_ = GetTickCount();
    thumbnailList_.HoldThumbnails(loader_.Start(requestStamp_, path));
    if (thumbnailList_.Find(path) >= 0 || !listFolder) return 1;
    thumbnailList_.List(path);
    return 1;
}

LRESULT CViewFrame::OnLoadCompleted(WPARAM wParam, LPARAM lParam) {
    auto* image = reinterpret_cast<HGLOBAL>(lParam);
    const DWORD stamp = static_cast<DWORD>(wParam);
    if (stamp != requestStamp_) {
        // A result of an earlier request: dropped, and the newer load goes on.
        if (image) GlobalFree(image);
        return 0;
    }
    requestStamp_ = 0;
    if (!image) {
        ClearImage();
    } else {
        recentFiles_.Add(currentPath_);
        RebuildRecentMenu();
        const std::wstring title = TitleFileName(currentPath_) + L" - " + LoadResString(kFrameResource);
        SetWindowTextW(hwnd(), title.c_str());
        ShowImage(image);
        PostMessageW(hwnd(), WM_COMMAND, kRefreshInformation, 0);
    }
    UpdateCommandStates();
    if (busyAnimation_) busyAnimation_->Pause();
    UpdateWindow(hwnd());
    loader_.Stop();
    thumbnailList_.HoldThumbnails(false);
    return 0;
}

void CViewFrame::ShowImage(HGLOBAL image) {
    BITMAPINFOHEADER header{};
    ReadDibHeader(image, header);
    const SIZE size{header.biWidth, std::abs(header.biHeight)};
    statusBar_.SetText(1007, ImageSizeText(size.cx, size.cy));
    statusBar_.SetText(1008, DepthText(header.biBitCount));
    ZoomViewSettings kept;
    kept.mask = kSettingsScroll | kSettingsZoom;
    SendMessageW(zoomView_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&kept));
    if (!IsWindowVisible(hwnd())) {
        ShowWindow(hwnd(), SW_SHOWNORMAL);
        UpdateWindow(hwnd());
    }
    RECT noSelection{};
    SendMessageW(zoomView_, kZvSetSelection, 0, reinterpret_cast<LPARAM>(&noSelection));
    const bool sameSize = size.cx == imageSize_.cx && size.cy == imageSize_.cy;
    if (!sameSize) SendMessageW(zoomView_, kZvSetZoom, 1000, 0);
    if (auto* previous = reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvSetImage, 1, reinterpret_cast<LPARAM>(image))))
        GlobalFree(previous);
    imageSize_ = size;
    if (sameSize) {
        SendMessageW(zoomView_, kZvApplySettings, 0, reinterpret_cast<LPARAM>(&kept));
    } else {
        RECT client{};
        GetClientRect(zoomView_, &client);
        SendMessageW(zoomView_, kZvZoomCommand, static_cast<WPARAM>(ChooseArrivalZoom(size.cx, size.cy, client.right,
                                                                                       client.bottom)),
                     0);
    }
    UpdateZoomPane();
    // The pointer's place and the selection belonged to the picture that went (clearing the
    // selection above reported them once more); the next move of the pointer fills them in.
    statusBar_.SetText(1004, L"");
    statusBar_.SetText(1006, L"");
}

void CViewFrame::ClearImage() {
    if (auto* previous = reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvSetImage, 1, 0))) GlobalFree(previous);
    imageSize_ = {};
    for (UINT pane : kStatusPanes) statusBar_.SetText(pane, L"");
    informationView_.Clear();
}

void CViewFrame::UpdateZoomPane() {
    statusBar_.SetText(1005, ZoomText(static_cast<int>(SendMessageW(zoomView_, kZvGetZoom, 0, 0))));
}

void CViewFrame::OnViewNotify(const NMHDR* header) {
    const auto* notify = reinterpret_cast<const ZoomViewNotify*>(header);
    const RECT& s = notify->selection;
    const bool selected = s.right > s.left && s.bottom > s.top;
    switch (header->code) {
    case kZvnCursor: {
        // Only a pointer over the picture has a pixel to report.
        const POINT& at = notify->cursor;
        const bool onPicture = at.x >= 0 && at.y >= 0 && at.x < imageSize_.cx && at.y < imageSize_.cy;
        statusBar_.SetText(1004, selected    ? CursorSelectionText(s.left, s.top, s.right - s.left, s.bottom - s.top)
                                 : onPicture ? CursorText(at.x, at.y)
                                             : L"");
        break;
    }
    case kZvnSelectionSize:
        statusBar_.SetText(1006, selected ? SelectionSizeText(s.right - s.left, s.bottom - s.top) : L"");
        break;
    case kZvnZoomChanged:
    case kZvnUserZoomChanged:
        UpdateZoomPane();
        break;
    }
}

void CViewFrame::OnListNotify(NMHDR* header, LRESULT& result) {
    if (thumbnailList_.HandleNotify(header, result)) return;
    if (header->code == LVN_INSERTITEM || header->code == LVN_DELETEITEM || header->code == LVN_DELETEALLITEMS) {
        UpdateCommandStates();  // stepping needs a second file
        return;
    }
    const int selected = thumbnailList_.SelectedIndex();
    if (selected < 0) return;
    if (header->code == NM_DBLCLK) {
        Open(thumbnailList_.PathAt(selected), false);
    } else if (header->code == NM_RCLICK) {
        POINT at{};
        GetCursorPos(&at);
        ShowShellContextMenu(hwnd(), thumbnailList_.PathAt(selected), at);
    }
}

LRESULT CViewFrame::OnNotify(WPARAM, LPARAM lParam) {
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    LRESULT result = 0;
    if (commandBar_.HandleNotify(header, result)) return result;
    if (header->idFrom == kZoomViewId && header->hwndFrom == zoomView_)
        OnViewNotify(header);
    else if (header->idFrom == kListId && header->hwndFrom == thumbnailList_.hwnd())
        OnListNotify(header, result);
    return result;
}

LRESULT CViewFrame::OnCommand(WPARAM wParam, LPARAM lParam) {
    if (RunCommand(LOWORD(wParam))) return 0;
    return Default(WM_COMMAND, wParam, lParam);
}

LRESULT CViewFrame::OnDropFiles(WPARAM wParam, LPARAM) {
    auto* drop = reinterpret_cast<HDROP>(wParam);
    const std::vector<std::wstring> paths = DropListPaths(drop);
    if (!paths.empty() && ImageTypeFromPath(paths.front().c_str()) != kImageUnknown) Open(paths.front(), true);
    DragFinish(drop);
    return 0;
}

LRESULT CViewFrame::OnClose(WPARAM, LPARAM) {
    SaveSettings();
    DestroyWindow(hwnd());
    return 0;
}

void CViewFrame::SaveSettings() {
    record_.infoShown = outerSplitter_.ShownOnly() < 0;
    record_.listShown = ImageArea().ShownOnly() < 0;
    record_.infoWidth = outerSplitter_.Position();
    record_.viewOptions = static_cast<int32_t>(SendMessageW(zoomView_, kZvGetOptions, 0, 0));
    record_.listSize = std::max(ImageArea().SecondSize(), 0);
    SettingsStore settings;
    settings.WriteBlock(kSection, kImageInfo, &record_, sizeof record_);
    WINDOWPLACEMENT placement{sizeof placement};
    if (GetWindowPlacement(hwnd(), &placement)) settings.WriteBlock(kSection, kWndPos, &placement, sizeof placement);
    SaveRecentFiles();
}

LRESULT CViewFrame::OnDestroy(WPARAM, LPARAM) {
    loader_.Stop();
    // A result posted just before the loader stopped would die with the queue: free it here.
    MSG pending;
    while (PeekMessageW(&pending, hwnd(), LoadCompletedMessage(), LoadCompletedMessage(), PM_REMOVE))
        if (pending.lParam) GlobalFree(reinterpret_cast<HGLOBAL>(pending.lParam));
    thumbnailList_.Clear();
    busyAnimation_.reset();
    PostQuitMessage(0);
    return 0;
}

}  // namespace lx

namespace lx {

std::unique_ptr<TopFrame> MakeViewerFrame() { return std::make_unique<CViewFrame>(); }

}  // namespace lx
