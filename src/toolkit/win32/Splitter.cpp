#include "Splitter.h"

#include <windowsx.h>

#include "GdiObjects.h"
#include "PaneLayout.h"

namespace lx {

namespace {
constexpr wchar_t kSplitterClass[] = L"LxSplitter";
}

std::span<const MessageEntry<Splitter>> Splitter::Messages() {
    static const MessageEntry<Splitter> table[] = {
        {WM_SIZE, &Splitter::OnSize},
        {WM_PAINT, &Splitter::OnPaint},
        {WM_LBUTTONDOWN, &Splitter::OnLButtonDown},
        {WM_MOUSEMOVE, &Splitter::OnMouseMove},
        {WM_LBUTTONUP, &Splitter::OnLButtonUp},
        {WM_SETCURSOR, &Splitter::OnSetCursor},
        {WM_NOTIFY, &Splitter::OnNotify},
        {WM_COMMAND, &Splitter::OnCommand},
    };
    return table;
}

bool Splitter::Create(HWND parent, int id, Bar bar, COLORREF barColour, int barWidth) {
    bar_ = bar;
    barColour_ = barColour;
    barWidth_ = barWidth;
    if (!RegisterWindowClass(kSplitterClass, nullptr)) return false;
    return Window::Create(kSplitterClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0, 0, parent,
                          reinterpret_cast<HMENU>(static_cast<INT_PTR>(id))) != nullptr;
}

void Splitter::SetPanes(HWND first, HWND second) {
    panes_[0] = first;
    panes_[1] = second;
    Layout();
}

void Splitter::SetMinimums(int first, int second) {
    minimums_[0] = first;
    minimums_[1] = second;
    Layout();
}

void Splitter::SetPosition(int position) {
    kept_ = keepSecond_ ? Extent() - position - barWidth_ : position;
    Layout();
}

int Splitter::Position() const { return keepSecond_ ? Extent() - kept_ - barWidth_ : kept_; }

void Splitter::SetSecondSize(int size) {
    keepSecond_ = true;
    kept_ = size;
    Layout();
}

int Splitter::BarAt() const {
    return ClampSplitPosition(Position(), Extent(), barWidth_, minimums_[0], minimums_[1]);
}

void Splitter::ShowOnly(int index) {
    only_ = index;
    Layout();
}

int Splitter::Extent() const {
    RECT rc{};
    GetClientRect(hwnd(), &rc);
    return Vertical() ? rc.right : rc.bottom;
}

int Splitter::Along(LPARAM lParam) const { return Vertical() ? GET_X_LPARAM(lParam) : GET_Y_LPARAM(lParam); }

bool Splitter::OnBar(int at) const { return only_ < 0 && at >= BarAt() && at < BarAt() + barWidth_; }

void Splitter::Layout() {
    if (!hwnd()) return;
    RECT rc{};
    GetClientRect(hwnd(), &rc);
    // The stored size is what was asked for; it is clamped only for placing, so a window
    // that shrinks and grows again gets its old split back.
    const int at = BarAt();
    RECT parts[2] = {rc, rc};
    if (Vertical()) {
        parts[0].right = at;
        parts[1].left = at + barWidth_;
    } else {
        parts[0].bottom = at;
        parts[1].top = at + barWidth_;
    }
    for (int i = 0; i < 2; ++i) {
        if (!panes_[i]) continue;
        const bool shown = only_ < 0 || only_ == i;
        const RECT& r = only_ == i ? rc : parts[i];
        SetWindowPos(panes_[i], nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top,
                     SWP_NOZORDER | SWP_NOACTIVATE | (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
    }
    InvalidateRect(hwnd(), nullptr, TRUE);
}

LRESULT Splitter::OnSize(WPARAM, LPARAM) {
    Layout();
    return 0;
}

LRESULT Splitter::OnPaint(WPARAM, LPARAM) {
    PaintDc dc(hwnd());
    if (only_ >= 0) return 0;
    RECT rc{};
    GetClientRect(hwnd(), &rc);
    const int at = BarAt();
    RECT barRect = Vertical() ? RECT{at, 0, at + barWidth_, rc.bottom} : RECT{0, at, rc.right, at + barWidth_};
    Brush brush(CreateSolidBrush(barColour_));
    FillRect(dc.get(), &barRect, brush.get());
    return 0;
}

LRESULT Splitter::OnLButtonDown(WPARAM, LPARAM lParam) {
    const int at = Along(lParam);
    if (!OnBar(at)) return 0;
    dragging_ = true;
    grabOffset_ = at - BarAt();
    SetCapture(hwnd());
    return 0;
}

LRESULT Splitter::OnMouseMove(WPARAM, LPARAM lParam) {
    if (!dragging_) return 0;
    SetPosition(ClampSplitPosition(Along(lParam) - grabOffset_, Extent(), barWidth_, minimums_[0], minimums_[1]));
    return 0;
}

LRESULT Splitter::OnLButtonUp(WPARAM, LPARAM) {
    if (dragging_) {
        dragging_ = false;
        ReleaseCapture();
    }
    return 0;
}

LRESULT Splitter::OnSetCursor(WPARAM wParam, LPARAM lParam) {
    if (reinterpret_cast<HWND>(wParam) == hwnd() && LOWORD(lParam) == HTCLIENT && only_ < 0) {
        SetCursor(LoadCursorW(nullptr, Vertical() ? IDC_SIZEWE : IDC_SIZENS));
        return TRUE;
    }
    return Default(WM_SETCURSOR, wParam, lParam);
}

// The panes' notifications and commands belong to the frame, not to the splitter.
LRESULT Splitter::OnNotify(WPARAM wParam, LPARAM lParam) {
    return SendMessageW(GetParent(hwnd()), WM_NOTIFY, wParam, lParam);
}
LRESULT Splitter::OnCommand(WPARAM wParam, LPARAM lParam) {
    return SendMessageW(GetParent(hwnd()), WM_COMMAND, wParam, lParam);
}

}  // namespace lx
