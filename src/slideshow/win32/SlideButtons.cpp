#include "SlideButtons.h"

#include <windowsx.h>

#include "GdiObjects.h"
#include "ModuleResources.h"

namespace lx {
namespace {

constexpr wchar_t kButtonClass[] = L"LXSLIDESHOW_BUTTON";
constexpr COLORREF kFace = 0x303030, kHotFace = 0x585858, kPressedFace = 0x808080, kEdge = 0x909090;
constexpr int kStartBitmap = 419;
constexpr UINT kStartName = 4152, kPauseName = 4153;

}  // namespace

std::span<const MessageEntry<CImageButtonWnd>> CImageButtonWnd::Messages() {
    static const MessageEntry<CImageButtonWnd> table[] = {
        {WM_PAINT, &CImageButtonWnd::OnPaint},
        {WM_ERASEBKGND, &CImageButtonWnd::OnEraseBackground},
        {WM_MOUSEMOVE, &CImageButtonWnd::OnMouseMove},
        {WM_MOUSELEAVE, &CImageButtonWnd::OnMouseLeave},
        {WM_LBUTTONDOWN, &CImageButtonWnd::OnButtonDown},
        {WM_LBUTTONUP, &CImageButtonWnd::OnButtonUp},
        {WM_CAPTURECHANGED, &CImageButtonWnd::OnCaptureChanged},
    };
    return table;
}

bool CImageButtonWnd::Create(HWND parent, int id, int bitmapId, UINT nameId) {
    // No double clicks: two quick clicks are two clicks.
    if (!RegisterWindowClass(kButtonClass, nullptr, 0)) return false;
    images_ = LoadImageStrip(ModuleInstance(), bitmapId, kSize, 0xFF00FF);
    const std::wstring name = LoadResString(nameId);
    return Window::Create(kButtonClass, name.c_str(), WS_CHILD | WS_VISIBLE, 0, 0, 0, kSize, kSize, parent,
                          reinterpret_cast<HMENU>(static_cast<INT_PTR>(id))) != nullptr;
}

void CImageButtonWnd::ShowImage(int index, UINT nameId) {
    image_ = index;
    SetWindowTextW(hwnd(), LoadResString(nameId).c_str());
    InvalidateRect(hwnd(), nullptr, FALSE);
}

LRESULT CImageButtonWnd::OnPaint(WPARAM, LPARAM) {
    PaintDc paint(hwnd());
    RECT face{0, 0, kSize, kSize};
    Brush fill(CreateSolidBrush(pressed_ ? kPressedFace : hot_ ? kHotFace : kFace));
    FillRect(paint.get(), &face, fill.get());
    Brush edge(CreateSolidBrush(kEdge));
    FrameRect(paint.get(), &face, edge.get());
    if (images_) ImageList_Draw(images_.get(), image_, paint.get(), 0, 0, ILD_TRANSPARENT);
    return 0;
}

bool CImageButtonWnd::Inside(LPARAM point) const {
    const int x = GET_X_LPARAM(point), y = GET_Y_LPARAM(point);
    return x >= 0 && y >= 0 && x < kSize && y < kSize;
}

LRESULT CImageButtonWnd::OnMouseMove(WPARAM, LPARAM lParam) {
    const bool hot = GetCapture() == hwnd() ? Inside(lParam) : true;
    if (!hot_) {
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, hwnd(), 0};
        TrackMouseEvent(&track);
    }
    if (hot != hot_ || (GetCapture() == hwnd() && hot != pressed_)) {
        hot_ = hot;
        if (GetCapture() == hwnd()) pressed_ = hot;
        InvalidateRect(hwnd(), nullptr, FALSE);
    }
    return 0;
}

LRESULT CImageButtonWnd::OnMouseLeave(WPARAM, LPARAM) {
    hot_ = false;
    InvalidateRect(hwnd(), nullptr, FALSE);
    return 0;
}

LRESULT CImageButtonWnd::OnButtonDown(WPARAM, LPARAM) {
    SetCapture(hwnd());
    pressed_ = true;
    InvalidateRect(hwnd(), nullptr, FALSE);
    return 0;
}

LRESULT CImageButtonWnd::OnButtonUp(WPARAM, LPARAM lParam) {
    if (GetCapture() != hwnd()) return 0;
    const bool clicked = Inside(lParam);
    ReleaseCapture();  // clears pressed_ through WM_CAPTURECHANGED
    if (clicked)
        SendMessageW(GetParent(hwnd()), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hwnd()), 0),
                     reinterpret_cast<LPARAM>(hwnd()));
    return 0;
}

LRESULT CImageButtonWnd::OnCaptureChanged(WPARAM, LPARAM) {
    pressed_ = false;
    InvalidateRect(hwnd(), nullptr, FALSE);
    return 0;
}

bool CStartButtonWnd::Create(HWND parent, int id) {
    if (!CImageButtonWnd::Create(parent, id, kStartBitmap, kPauseName)) return false;
    SetPaused(false);
    return true;
}

void CStartButtonWnd::SetPaused(bool paused) { ShowImage(paused ? 0 : 1, paused ? kStartName : kPauseName); }

}  // namespace lx
