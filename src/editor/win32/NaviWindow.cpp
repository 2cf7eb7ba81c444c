#include "NaviWindow.h"

#include <windowsx.h>

#include <algorithm>

#include "GdiObjects.h"
#include "ModuleResources.h"
#include "ZoomView.h"

namespace lx {
namespace {

constexpr int kReducedSide = 192;

}  // namespace

std::span<const MessageEntry<CNaviWindow>> CNaviWindow::Messages() {
    static const MessageEntry<CNaviWindow> table[] = {
        {WM_PAINT, &CNaviWindow::OnPaint},
        {WM_ERASEBKGND, &CNaviWindow::OnEraseBackground},
        {WM_CLOSE, &CNaviWindow::OnClose},
        {WM_LBUTTONDOWN, &CNaviWindow::OnMouse},
        {WM_MOUSEMOVE, &CNaviWindow::OnMouse},
        {WM_LBUTTONUP, &CNaviWindow::OnMouse},
    };
    return table;
}

bool CNaviWindow::Create(HWND frame, HWND view, const NaviPosRecord* record) {
    view_ = view;
    if (!RegisterWindowClass(kClassName, nullptr, CS_DBLCLKS, LoadCursorW(nullptr, IDC_ARROW), nullptr)) return false;
    RECT frameRect{};
    GetWindowRect(frame, &frameRect);
    const int size = kReducedSide + 2 * GetSystemMetrics(SM_CXSIZEFRAME) + 8;
    if (!Window::Create(kClassName, L"ナビゲータ", WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME,
                        WS_EX_TOOLWINDOW, frameRect.right - size - 24, frameRect.top + 96, size,
                        size + GetSystemMetrics(SM_CYSMCAPTION), frame, nullptr))
        return false;
    if (record) {
        WINDOWPLACEMENT placement = record->placement;
        placement.length = sizeof placement;
        placement.showCmd = SW_HIDE;
        SetWindowPlacement(hwnd(), &placement);
        if (record->shown) ShowWindow(hwnd(), SW_SHOWNOACTIVATE);
    }
    return true;
}

NaviPosRecord CNaviWindow::Record() const {
    NaviPosRecord record{};
    record.placement.length = sizeof record.placement;
    GetWindowPlacement(hwnd(), &record.placement);
    record.shown = Shown() ? 1 : 0;
    return record;
}

void CNaviWindow::Show(bool shown) {
    if (hwnd()) ShowWindow(hwnd(), shown ? SW_SHOWNOACTIVATE : SW_HIDE);
}

void CNaviWindow::SetImage(HGLOBAL image) {
    reduced_.destroy();
    imageSize_ = {};
    if (image) {
        mif picture(image);
        imageSize_ = {picture.width(), picture.height()};
        if (!picture.empty()) {
            const double scale = std::min(1.0, static_cast<double>(kReducedSide) / std::max(picture.width(), picture.height()));
            const int w = std::max(1, static_cast<int>(picture.width() * scale));
            const int h = std::max(1, static_cast<int>(picture.height() * scale));
            if (picture.zoom_near(w, h)) reduced_ = std::move(picture);
        }
    }
    shownPart_ = {};
    if (hwnd()) InvalidateRect(hwnd(), nullptr, FALSE);
}

// Where the reduced picture sits in the client area: centred, as large as fits.
RECT CNaviWindow::PictureRect() const {
    RECT client{};
    GetClientRect(hwnd(), &client);
    if (reduced_.empty() || imageSize_.cx <= 0) return {};
    const double scale = std::min(static_cast<double>(client.right) / imageSize_.cx,
                                  static_cast<double>(client.bottom) / imageSize_.cy);
    const int w = static_cast<int>(imageSize_.cx * scale), h = static_cast<int>(imageSize_.cy * scale);
    const int x = (client.right - w) / 2, y = (client.bottom - h) / 2;
    return {x, y, x + w, y + h};
}

// The image pixels the view shows now.
ViewRect CNaviWindow::VisiblePart() const {
    if (!view_ || imageSize_.cx <= 0) return {};
    ZoomViewSettings settings;
    settings.mask = kSettingsScroll | kSettingsZoom;
    SendMessageW(view_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&settings));
    RECT client{};
    GetClientRect(view_, &client);
    const int zoom = settings.zoom > 0 ? settings.zoom : kZoomFull;
    const ViewMapping map = MapView(imageSize_.cx, imageSize_.cy, zoom, client.right, client.bottom, settings.scrollX,
                                    settings.scrollY);
    return ClipSelection({static_cast<int32_t>(map.ToImageX(0)), static_cast<int32_t>(map.ToImageY(0)),
                          static_cast<int32_t>(map.ToImageX(client.right)), static_cast<int32_t>(map.ToImageY(client.bottom))},
                         imageSize_.cx, imageSize_.cy);
}

void CNaviWindow::Refresh() {
    if (!Shown()) return;
    const ViewRect part = VisiblePart();
    if (part == shownPart_) return;
    InvalidateRect(hwnd(), nullptr, FALSE);
}

LRESULT CNaviWindow::OnPaint(WPARAM, LPARAM) {
    PaintDc paint(hwnd());
    RECT client{};
    GetClientRect(hwnd(), &client);
    // Drawn off screen first, so the frame over the picture does not flicker while dragging.
    MemoryDc memory(paint.get());
    Bitmap canvas(CreateCompatibleBitmap(paint.get(), std::max<int>(client.right, 1), std::max<int>(client.bottom, 1)));
    SelectScope selected(memory.get(), canvas.get());
    HDC buffer = memory.get();
    FillRect(buffer, &client, GetSysColorBrush(COLOR_APPWORKSPACE));
    const RECT picture = PictureRect();
    if (!reduced_.empty() && picture.right > picture.left) {
        const PackedDib& dib = reduced_.dib();
        SetStretchBltMode(buffer, HALFTONE);
        StretchDIBits(buffer, picture.left, picture.top, picture.right - picture.left, picture.bottom - picture.top, 0,
                      0, dib.width(), dib.height(), dib.bits(), reinterpret_cast<const BITMAPINFO*>(dib.bytes().data()),
                      DIB_RGB_COLORS, SRCCOPY);
        shownPart_ = VisiblePart();
        const double sx = static_cast<double>(picture.right - picture.left) / imageSize_.cx;
        const double sy = static_cast<double>(picture.bottom - picture.top) / imageSize_.cy;
        RECT frame{picture.left + static_cast<int>(shownPart_.left * sx), picture.top + static_cast<int>(shownPart_.top * sy),
                   picture.left + static_cast<int>(shownPart_.right * sx), picture.top + static_cast<int>(shownPart_.bottom * sy)};
        Brush red(CreateSolidBrush(RGB(255, 0, 0)));
        FrameRect(buffer, &frame, red.get());
    }
    BitBlt(paint.get(), 0, 0, client.right, client.bottom, buffer, 0, 0, SRCCOPY);
    return 0;
}

LRESULT CNaviWindow::OnClose(WPARAM, LPARAM) {
    Show(false);
    return 0;
}

// Pressing or dragging centres the view on the point.
LRESULT CNaviWindow::OnMouse(WPARAM wParam, LPARAM lParam) {
    if (!(wParam & MK_LBUTTON) || reduced_.empty()) return 0;
    const RECT picture = PictureRect();
    if (picture.right <= picture.left) return 0;
    const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    const double x = static_cast<double>(at.x - picture.left) * imageSize_.cx / (picture.right - picture.left);
    const double y = static_cast<double>(at.y - picture.top) * imageSize_.cy / (picture.bottom - picture.top);
    ZoomViewSettings settings;
    settings.mask = kSettingsScroll | kSettingsZoom;
    SendMessageW(view_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&settings));
    RECT client{};
    GetClientRect(view_, &client);
    int64_t scrollX = 0, scrollY = 0;
    ScrollToKeep(x, y, settings.zoom, client.right / 2, client.bottom / 2, scrollX, scrollY);
    settings.mask = kSettingsScroll;
    settings.scrollX = static_cast<int32_t>(std::max<int64_t>(scrollX, 0));
    settings.scrollY = static_cast<int32_t>(std::max<int64_t>(scrollY, 0));
    SendMessageW(view_, kZvApplySettings, 0, reinterpret_cast<LPARAM>(&settings));
    Refresh();
    return 0;
}

}  // namespace lx
