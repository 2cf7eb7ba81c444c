#include "SlideFrame.h"

#include <windowsx.h>
#include <shlwapi.h>

#include "DialogHelpers.h"
#include "DibGlobal.h"
#include "ExifReader.h"
#include "ImageTypes.h"
#include "ModuleResources.h"
#include "SettingsStore.h"
#include "SlideSet.h"

namespace lx {
namespace {

constexpr UINT kCaptionId = 7;  // the caption, the menu and the accelerators
constexpr UINT kNoFilesMessage = 4150;
constexpr UINT kFailedNote = 4151;
constexpr UINT_PTR kSlideTimer = 1001;
constexpr UINT_PTR kHideTimer = 1010;
constexpr UINT kHideAfterMs = 2500;
constexpr int kStartButtonId = 1002;
// The image buttons: id, bitmap, name.
constexpr struct {
    int id;
    int bitmap;
    UINT name;
} kImageButtons[] = {{1003, 416, 4154}, {1004, 417, 4155}, {1005, 418, 4156}};
constexpr int kButtonGap = 4;
constexpr int kButtonMargin = 12;
constexpr UINT kFirstIntervalCommand = 2211;  // one per kSlideIntervals entry, in order
constexpr UINT kCloseCommand = 57665;

const wchar_t* const kSection = MAKEINTRESOURCEW(4410);   // "SlideShow"
const wchar_t* const kInterval = MAKEINTRESOURCEW(4622);  // "Interval"

std::wstring WideFromUtf8(const std::string& utf8) {
    if (utf8.empty()) return {};
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring text(static_cast<size_t>(std::max(length, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(), length);
    return text;
}

}  // namespace

std::span<const MessageEntry<CSlideFrame>> CSlideFrame::Messages() {
    static const MessageEntry<CSlideFrame> table[] = {
        {WM_CREATE, &CSlideFrame::OnCreate},
        {WM_PAINT, &CSlideFrame::OnPaint},
        {WM_ERASEBKGND, &CSlideFrame::OnEraseBackground},
        {WM_COMMAND, &CSlideFrame::OnCommand},
        {WM_TIMER, &CSlideFrame::OnTimer},
        {WM_CONTEXTMENU, &CSlideFrame::OnContextMenu},
        {WM_MOUSEMOVE, &CSlideFrame::OnMouseMove},
        {WM_SETCURSOR, &CSlideFrame::OnSetCursor},
        {WM_DESTROY, &CSlideFrame::OnDestroy},
    };
    return table;
}

UINT CSlideFrame::ImageLoadedMessage() {
    static const UINT message = RegisterWindowMessageW(L"wm_imageloaded");
    return message;
}

CSlideFrame::CSlideFrame() = default;

CSlideFrame::~CSlideFrame() {
    if (hwnd()) DestroyWindow(hwnd());
}

LRESULT CSlideFrame::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == ImageLoadedMessage()) return OnImageLoaded(wParam, lParam);
    return MappedWindow<CSlideFrame>::HandleMessage(message, wParam, lParam);
}

void CSlideFrame::OpenStartup(const std::wstring& path) { BuildFileSet(path); }

bool CSlideFrame::BuildFileSet(const std::wstring& path) {
    ready_ = false;
    const bool isFolder = PathIsDirectoryW(path.c_str()) != FALSE;
    const std::wstring folder = SlideFolder(path, isFolder);
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    HANDLE search = FindFirstFileW((folder + L"*.*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(found.cFileName);
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }
    const SlideNameRules rules{
        [](const std::wstring& a, const std::wstring& b) { return StrCmpLogicalW(a.c_str(), b.c_str()); },
        [](const std::wstring& a, const std::wstring& b) { return lstrcmpiW(a.c_str(), b.c_str()) == 0; }};
    SlideSet set = MakeSlideSet(folder, std::move(names), isFolder ? std::wstring() : path, rules);
    if (set.paths.empty()) {
        ShowMessage(MAKEINTRESOURCEW(kNoFilesMessage), MAKEINTRESOURCEW(kCaptionId), nullptr, MB_OK | MB_ICONSTOP);
        return false;
    }
    show_ = std::make_unique<SlideShow>(static_cast<SlideShowHost&>(*this), std::move(set.paths), set.start, LoadResString(kFailedNote));
    ready_ = true;
    if (hwnd()) PostMessageW(hwnd(), WM_COMMAND, 2201, 0);
    return true;
}

HWND CSlideFrame::Create(int) {
    if (!ready_) return nullptr;
    if (!RegisterWindowClass(kClassName, nullptr, 0, LoadCursorW(nullptr, IDC_ARROW), nullptr)) return nullptr;
    const std::wstring title = LoadResString(kCaptionId);
    // Popup, visible, clip siblings; top-most tool window. WM_CREATE spreads it over the screen.
    if (!Window::Create(kClassName, title.c_str(), 0x94000000, 0x88, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                        CW_USEDEFAULT, nullptr, nullptr))
        return nullptr;
    accelerators_ = LoadAcceleratorsW(ModuleInstance(), MAKEINTRESOURCEW(kCaptionId));
    if (MessageLoop* loop = CurrentMessageLoop()) {
        loop->AddFilter([this](MSG& msg) {
            return hwnd() && accelerators_ && (msg.hwnd == hwnd() || IsChild(hwnd(), msg.hwnd)) &&
                   TranslateAcceleratorW(hwnd(), accelerators_, &msg);
        });
    }
    SetForegroundWindow(hwnd());
    return hwnd();
}

LRESULT CSlideFrame::OnCreate(WPARAM, LPARAM) {
    if (HMENU menu = GetMenu(hwnd())) {
        SetMenu(hwnd(), nullptr);
        DestroyMenu(menu);
    }
    screen_ = {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    MoveWindow(hwnd(), 0, 0, screen_.cx, screen_.cy, FALSE);
    busyAnimation_ = std::make_unique<BusyAnimation>();
    if (busyAnimation_->Create(hwnd(), ModuleInstance()))
        busyAnimation_->Start({screen_.cx / 2, screen_.cy / 2});
    else
        busyAnimation_.reset();
    CreateButtons();
    loader_.SetScreen(screen_);
    loader_.Bind(hwnd(), ImageLoadedMessage());
    SettingsStore settings;
    if (show_) show_->SetInterval(ValidSlideInterval(settings.ReadNumber(kSection, kInterval, kDefaultSlideInterval)));
    SetTimer(hwnd(), kHideTimer, kHideAfterMs, nullptr);
    if (ready_) PostMessageW(hwnd(), WM_COMMAND, 2201, 0);
    return 0;
}

void CSlideFrame::CreateButtons() {
    const int count = 1 + static_cast<int>(std::size(kImageButtons));
    int x = screen_.cx - kButtonMargin - count * CImageButtonWnd::kSize - (count - 1) * kButtonGap;
    auto place = [&](HWND button) {
        SetWindowPos(button, nullptr, x, kButtonMargin, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        x += CImageButtonWnd::kSize + kButtonGap;
    };
    if (startButton_.Create(hwnd(), kStartButtonId)) place(startButton_.hwnd());
    for (size_t i = 0; i < std::size(kImageButtons); ++i)
        if (imageButtons_[i].Create(hwnd(), kImageButtons[i].id, kImageButtons[i].bitmap, kImageButtons[i].name))
            place(imageButtons_[i].hwnd());
}

LRESULT CSlideFrame::OnPaint(WPARAM, LPARAM) {
    PaintDc paint(hwnd());
    const RECT& dirty = paint.dirty();
    if (offscreen_) {
        MemoryDc source(paint.get());
        SelectScope use(source.get(), offscreen_.get());
        BitBlt(paint.get(), dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top, source.get(),
               dirty.left, dirty.top, SRCCOPY);
    } else {
        FillRect(paint.get(), &dirty, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    }
    return 0;
}

LRESULT CSlideFrame::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const bool clicked = HIWORD(wParam) == 0;  // the buttons act on a click only
    if (id >= kFirstIntervalCommand && id < kFirstIntervalCommand + std::size(kSlideIntervals)) {
        ChooseInterval(kSlideIntervals[id - kFirstIntervalCommand]);
        return 0;
    }
    if (!show_) return Default(WM_COMMAND, wParam, lParam);
    switch (id) {
    case 2201: show_->Advance(); return 0;
    case 2202: show_->TogglePause(); return 0;
    case 2204: show_->Previous(); return 0;
    case 2205: show_->Next(); return 0;
    case kCloseCommand: PostMessageW(hwnd(), WM_CLOSE, 0, 0); return 0;
    case 1002:
        if (clicked) show_->TogglePause();
        return 0;
    case 1003:
        if (clicked) show_->Previous();
        return 0;
    case 1004:
        if (clicked) show_->Next();
        return 0;
    case 1005:
        if (clicked) PostMessageW(hwnd(), WM_CLOSE, 0, 0);
        return 0;
    }
    return Default(WM_COMMAND, wParam, lParam);
}

void CSlideFrame::ChooseInterval(uint32_t milliseconds) {
    if (show_) show_->SetInterval(milliseconds);
    SettingsStore settings;
    settings.WriteNumber(kSection, kInterval, milliseconds);
}

LRESULT CSlideFrame::OnTimer(WPARAM wParam, LPARAM) {
    if (wParam == kSlideTimer) {
        if (show_) show_->OnTimer();
    } else if (wParam == kHideTimer) {
        // Not while the pointer rests on a button: the user is about to use it.
        POINT at{};
        GetCursorPos(&at);
        HWND under = WindowFromPoint(at);
        if (under == hwnd() || !IsChild(hwnd(), under)) {
            KillTimer(hwnd(), kHideTimer);
            ShowControls(false);
        }
    }
    return 0;
}

void CSlideFrame::ShowControls(bool shown) {
    if (shown == controlsShown_) return;
    controlsShown_ = shown;
    ShowWindow(startButton_.hwnd(), shown ? SW_SHOWNA : SW_HIDE);
    for (auto& button : imageButtons_) ShowWindow(button.hwnd(), shown ? SW_SHOWNA : SW_HIDE);
    // WM_SETCURSOR keeps the cursor away while the controls are hidden; it comes only with a
    // movement, so a still pointer over the show goes now.
    POINT at{};
    if (!shown && GetCursorPos(&at) && WindowFromPoint(at) == hwnd()) SetCursor(nullptr);
}

LRESULT CSlideFrame::OnMouseMove(WPARAM, LPARAM lParam) {
    // Windows repeats the last position when windows change under a still pointer: only a
    // real movement brings the controls back.
    const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (at.x == lastMouse_.x && at.y == lastMouse_.y) return 0;
    lastMouse_ = at;
    ShowControls(true);
    SetTimer(hwnd(), kHideTimer, kHideAfterMs, nullptr);
    return 0;
}

LRESULT CSlideFrame::OnSetCursor(WPARAM wParam, LPARAM lParam) {
    if (!controlsShown_ && LOWORD(lParam) == HTCLIENT) {
        SetCursor(nullptr);
        return TRUE;
    }
    return Default(WM_SETCURSOR, wParam, lParam);
}

LRESULT CSlideFrame::OnContextMenu(WPARAM, LPARAM lParam) {
    HMENU menu = LoadMenuW(ModuleInstance(), MAKEINTRESOURCEW(kCaptionId));
    if (!menu) return 0;
    HMENU popup = GetSubMenu(menu, 0);
    if (show_) {
        CheckMenuItem(popup, 2202, MF_BYCOMMAND | (show_->paused() ? MF_CHECKED : MF_UNCHECKED));
        for (size_t i = 0; i < std::size(kSlideIntervals); ++i)
            CheckMenuItem(popup, kFirstIntervalCommand + static_cast<UINT>(i),
                          MF_BYCOMMAND | (kSlideIntervals[i] == show_->interval() ? MF_CHECKED : MF_UNCHECKED));
    }
    POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (at.x == -1 && at.y == -1) at = {screen_.cx / 2, screen_.cy / 2};  // from the keyboard
    ShowControls(true);
    TrackPopupMenu(popup, TPM_RIGHTBUTTON, at.x, at.y, 0, hwnd(), nullptr);
    DestroyMenu(menu);
    return 0;
}

LRESULT CSlideFrame::OnDestroy(WPARAM, LPARAM) {
    KillTimer(hwnd(), kSlideTimer);
    KillTimer(hwnd(), kHideTimer);
    loader_.Stop();
    // A result posted just before the loader stopped would die with the queue: free it here.
    MSG pending;
    while (PeekMessageW(&pending, hwnd(), ImageLoadedMessage(), ImageLoadedMessage(), PM_REMOVE))
        if (pending.lParam) GlobalFree(reinterpret_cast<HGLOBAL>(pending.lParam));
    busyAnimation_.reset();
    show_.reset();
    offscreen_.reset();
    PostQuitMessage(0);
    return 0;
}

LRESULT CSlideFrame::OnImageLoaded(WPARAM wParam, LPARAM lParam) {
    auto* image = reinterpret_cast<HGLOBAL>(lParam);
    const auto stamp = static_cast<uint32_t>(wParam);
    if (!show_ || !show_->Awaits(stamp)) {
        // A result of an earlier request: dropped unseen.
        if (image) GlobalFree(image);
        return 0;
    }
    show_->OnLoaded(stamp, AdoptGlobal(image));
    return 0;
}

void CSlideFrame::StartLoad(uint32_t stamp, const std::wstring& path) { loader_.Start(stamp, path); }

std::optional<PackedDib> CSlideFrame::LoadNow(const std::wstring& path) {
    HCURSOR wait = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    std::optional<PackedDib> picture = LoadSlidePicture(path, screen_);
    SetCursor(wait);
    return picture;
}

std::wstring CSlideFrame::Describe(const std::wstring& path) {
    if (!MayCarryExif(ImageTypeFromPath(path.c_str()))) return {};
    return WideFromUtf8(ReadDescription(std::filesystem::path(path)));
}

void CSlideFrame::Show(const Slide& slide) {
    Compose(slide);
    SetWindowTextW(hwnd(), slide.caption.c_str());
    RedrawWindow(hwnd(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
}

void CSlideFrame::StartTimer(uint32_t milliseconds) { SetTimer(hwnd(), kSlideTimer, milliseconds, nullptr); }

void CSlideFrame::StopTimer() { KillTimer(hwnd(), kSlideTimer); }

void CSlideFrame::SetBusy(bool busy) {
    if (!busyAnimation_) return;
    if (busy) {
        busyAnimation_->Start({screen_.cx / 2, screen_.cy / 2});
    } else if (!busyAnimation_->paused()) {
        busyAnimation_->Pause();
        // The ring's last frame goes with the slide drawn over it.
        RedrawWindow(hwnd(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
    }
}

std::unique_ptr<TopFrame> MakeSlideFrame() { return std::make_unique<CSlideFrame>(); }

}  // namespace lx
