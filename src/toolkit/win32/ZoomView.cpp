#include "ZoomView.h"

#include <windowsx.h>
#include <commctrl.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <optional>

#include "DibGlobal.h"
#include "GdiObjects.h"
#include "Window.h"
#include "mif.h"

namespace lx {

namespace {

// Scroll bars carry 32-bit positions; pictures larger than this at high zoom stop scrolling
// at the limit rather than overflow.
constexpr int64_t kScrollLimit = INT_MAX / 2;

enum class Drag { None, Select, Hand };

class ZoomView : public MappedWindow<ZoomView> {
public:
    static std::span<const MessageEntry<ZoomView>> Messages();

    ~ZoomView() override {
        if (image_) GlobalFree(image_);
    }

private:
    // --- the image and what is drawn from it ---
    // The block is the one copy of the picture the view keeps: it is drawn from directly.
    // Its size and the offset of its pixels are read once when it comes in; width 0 means
    // it holds no picture the view can show (a malformed block is kept, to be handed back,
    // but not drawn).
    HGLOBAL image_ = nullptr;
    int width_ = 0, height_ = 0;
    size_t bitsOffset_ = 0;
    PackedDib reduced_;     // the picture reduced for reducedZoom_
    int reducedZoom_ = 0;
    ZoomViewSettings settings_;
    int zoom_ = kZoomFull;
    int64_t scrollX_ = 0, scrollY_ = 0;
    ViewRect selection_;
    std::optional<ZoomCommand> fitCommand_;  // the last fit, redone on resize when asked
    bool updatingBars_ = false;

    // --- mouse ---
    Drag drag_ = Drag::None;
    bool leftAnchor_ = false;  // a selecting drag has left the pixel it started on
    int64_t anchorX_ = 0, anchorY_ = 0;
    POINT grab_{};
    POINT cursor_{};

    int imageWidth() const { return width_; }
    int imageHeight() const { return height_; }
    bool HasPicture() const { return width_ > 0; }

    RECT Client() const {
        RECT rc{};
        GetClientRect(hwnd(), &rc);
        return rc;
    }

    ViewMapping Mapping() const {
        const RECT rc = Client();
        return MapView(imageWidth(), imageHeight(), zoom_, rc.right, rc.bottom, scrollX_, scrollY_);
    }

    // ---------------------------------------------------------------- notifications
    void Notify(UINT code) {
        HWND parent = GetParent(hwnd());
        if (!parent) return;
        ZoomViewNotify note{};
        note.header.hwndFrom = hwnd();
        note.header.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(hwnd()));
        note.header.code = code;
        note.cursor = cursor_;
        note.selection = RECT{selection_.left, selection_.top, selection_.right, selection_.bottom};
        note.zoom = zoom_;
        SendMessageW(parent, WM_NOTIFY, note.header.idFrom, reinterpret_cast<LPARAM>(&note));
    }

    // ---------------------------------------------------------------- image
    LRESULT TakeImage(WPARAM wParam, LPARAM lParam, bool keepPosition) {
        HGLOBAL previous = image_;
        image_ = nullptr;
        width_ = height_ = 0;
        reduced_ = PackedDib();
        reducedZoom_ = 0;
        if (auto incoming = reinterpret_cast<HGLOBAL>(lParam)) image_ = Adopt(incoming, wParam == 1);
        selection_ = ClipSelection(selection_, imageWidth(), imageHeight());
        if (!keepPosition) scrollX_ = scrollY_ = 0;
        Relayout();
        return reinterpret_cast<LRESULT>(previous);
    }

    // The block the view keeps for `incoming`, taken (`take`) or only lent. Pixels are drawn
    // straight from it, so it must be laid out as PackedDib lays a DIB out (plain header,
    // bottom-up): a taken block that is is kept as it is, its header read in place; one in
    // any other layout (top-down, a larger header) is replaced by one that is, and a lent one
    // is copied, so the caller may free it at once. One copy of the picture stays.
    HGLOBAL Adopt(HGLOBAL incoming, bool take) {
        if (take && InPlace(incoming)) return incoming;
        std::optional<PackedDib> dib = DibFromGlobal(incoming);
        if (!dib) return take ? incoming : nullptr;
        Remember(*dib);
        HGLOBAL own = ReleaseToGlobal(std::move(*dib));
        if (!own) {
            width_ = height_ = 0;
            return take ? incoming : nullptr;
        }
        if (take) GlobalFree(incoming);
        return own;
    }

    bool InPlace(HGLOBAL block) {
        const auto* p = static_cast<const uint8_t*>(GlobalLock(block));
        if (!p) return false;
        const std::optional<PackedDib> view = PackedDib::Borrow(p, GlobalSize(block));
        if (view) Remember(*view);
        GlobalUnlock(block);
        return view.has_value();
    }

    void Remember(const PackedDib& dib) {
        width_ = dib.width();
        height_ = dib.height();
        bitsOffset_ = dib.bitsOffset();
    }

    // The picture at the current zoom below 100 %, reduced once per zoom from the block's
    // own pixels (no copy of the full picture is made).
    bool Reduce() {
        if (reducedZoom_ == zoom_) return !reduced_.empty();
        reduced_ = PackedDib();
        reducedZoom_ = zoom_;
        const auto* block = static_cast<const uint8_t*>(GlobalLock(image_));
        if (!block) return false;
        if (std::optional<PackedDib> picture = PackedDib::Borrow(block, GlobalSize(image_))) {
            mif small;
            small.attachdib(std::move(*picture));
            if (small.zoom(static_cast<int>(ScaledExtent(imageWidth(), zoom_)),
                           static_cast<int>(ScaledExtent(imageHeight(), zoom_)), kZoomHighQuality, 0))
                reduced_ = small.detachdib();
        }
        GlobalUnlock(image_);
        return !reduced_.empty();
    }

    LRESULT OnSetImage(WPARAM wParam, LPARAM lParam) { return TakeImage(wParam, lParam, false); }
    LRESULT OnReplaceImage(WPARAM wParam, LPARAM lParam) { return TakeImage(wParam, lParam, true); }
    LRESULT OnGetImage(WPARAM, LPARAM) { return reinterpret_cast<LRESULT>(image_); }

    // ---------------------------------------------------------------- zoom
    // Changes the zoom keeping the image point under client point (cx, cy) in place.
    void ZoomAround(int zoom, int cx, int cy, UINT code) {
        zoom = ClampZoom(zoom);
        if (zoom == zoom_) return;
        const ViewMapping before = Mapping();
        const double scale = double{kZoomFull} / zoom_;
        const double x = (cx - before.originX + before.scrollX) * scale;
        const double y = (cy - before.originY + before.scrollY) * scale;
        zoom_ = zoom;
        ScrollToKeep(x, y, zoom_, cx, cy, scrollX_, scrollY_);
        Relayout();
        Notify(code);
    }

    void ZoomAroundCentre(int zoom) {
        const RECT rc = Client();
        ZoomAround(zoom, rc.right / 2, rc.bottom / 2, kZvnZoomChanged);
    }

    int FitFor(ZoomCommand command) const {
        // Fit against the whole window, as if no scroll bar were shown.
        RECT rc = Client();
        const DWORD style = static_cast<DWORD>(GetWindowLongPtrW(hwnd(), GWL_STYLE));
        const int barWidth = GetSystemMetrics(SM_CXVSCROLL), barHeight = GetSystemMetrics(SM_CYHSCROLL);
        if (style & WS_VSCROLL) rc.right += barWidth;
        if (style & WS_HSCROLL) rc.bottom += barHeight;
        return FitZoom(command, imageWidth(), imageHeight(), rc.right, rc.bottom, barWidth, barHeight,
                       (settings_.options & kOptionFitEnlarges) != 0);
    }

    LRESULT OnZoomCommand(WPARAM wParam, LPARAM) {
        const auto command = static_cast<ZoomCommand>(wParam);
        switch (command) {
            case kZoomIn: fitCommand_.reset(); ZoomAroundCentre(ZoomStepIn(zoom_)); break;
            case kZoomOut: fitCommand_.reset(); ZoomAroundCentre(ZoomStepOut(zoom_)); break;
            case kZoomOriginal: fitCommand_.reset(); ZoomAroundCentre(kZoomFull); break;
            case kZoomWhole:
            case kZoomFitHeight:
            case kZoomFitWidth:
                fitCommand_ = command;
                if (!!HasPicture()) ZoomAroundCentre(FitFor(command));
                break;
            default: break;
        }
        return zoom_;
    }

    LRESULT OnGetZoom(WPARAM, LPARAM) { return zoom_; }
    LRESULT OnSetZoom(WPARAM wParam, LPARAM) {
        fitCommand_.reset();
        ZoomAroundCentre(static_cast<int>(wParam));
        return zoom_;
    }
    LRESULT OnCanZoom(WPARAM, LPARAM) { return MAKELONG(ZoomStepIn(zoom_) != zoom_, ZoomStepOut(zoom_) != zoom_); }

    // ---------------------------------------------------------------- options and settings
    LRESULT OnSetOptions(WPARAM wParam, LPARAM) {
        return std::exchange(settings_.options, static_cast<uint32_t>(wParam));
    }
    LRESULT OnGetOptions(WPARAM, LPARAM) { return settings_.options; }
    LRESULT OnSetBackground(WPARAM, LPARAM lParam) {
        const uint32_t previous = std::exchange(settings_.background, static_cast<uint32_t>(lParam));
        InvalidateRect(hwnd(), nullptr, FALSE);
        return previous;
    }

    LRESULT OnApplySettings(WPARAM, LPARAM lParam) {
        auto* record = reinterpret_cast<const ZoomViewSettings*>(lParam);
        if (!record || record->size < 8) return 0;
        ZoomViewSettings wanted = settings_;
        wanted.zoom = zoom_;
        wanted.scrollX = static_cast<int32_t>(scrollX_);
        wanted.scrollY = static_cast<int32_t>(scrollY_);
        CopySettingsFields(*record, wanted, record->mask, record->size);
        settings_ = wanted;
        if (zoom_ != ClampZoom(wanted.zoom)) {
            zoom_ = ClampZoom(wanted.zoom);
            fitCommand_.reset();
            Notify(kZvnZoomChanged);
        }
        scrollX_ = wanted.scrollX;
        scrollY_ = wanted.scrollY;
        Relayout();
        return 1;
    }

    LRESULT OnReadSettings(WPARAM, LPARAM lParam) {
        auto* record = reinterpret_cast<ZoomViewSettings*>(lParam);
        if (!record || record->size < 8) return 0;
        ZoomViewSettings current = settings_;
        current.zoom = zoom_;
        current.scrollX = static_cast<int32_t>(std::min(scrollX_, kScrollLimit));
        current.scrollY = static_cast<int32_t>(std::min(scrollY_, kScrollLimit));
        CopySettingsFields(current, *record, record->mask, record->size);
        return 1;
    }

    LRESULT OnInitialize(WPARAM, LPARAM) {
        Relayout();
        return 1;
    }

    // ---------------------------------------------------------------- selection
    void SetSelection(const ViewRect& rect) {
        selection_ = ClipSelection(rect, imageWidth(), imageHeight());
        InvalidateRect(hwnd(), nullptr, FALSE);
        Notify(kZvnCursor);
        Notify(kZvnSelectionSize);
    }

    LRESULT OnSetSelection(WPARAM, LPARAM lParam) {
        const auto* rect = reinterpret_cast<const RECT*>(lParam);
        SetSelection(rect ? ViewRect{rect->left, rect->top, rect->right, rect->bottom} : ViewRect{});
        return 1;
    }

    LRESULT OnGetSelection(WPARAM, LPARAM lParam) {
        if (auto* rect = reinterpret_cast<RECT*>(lParam))
            *rect = RECT{selection_.left, selection_.top, selection_.right, selection_.bottom};
        return !HasPicture() ? 0 : 1;
    }

    // ---------------------------------------------------------------- layout and scrolling
    // Scroll bars, clamped position and a repaint after anything that moves the picture.
    void Relayout() {
        if (updatingBars_) return;
        updatingBars_ = true;
        // Showing one bar narrows the client area, which may call for the other: two rounds
        // settle it.
        for (int round = 0; round < 2; ++round) {
            const RECT rc = Client();
            const int64_t width = !HasPicture() ? 0 : ScaledExtent(imageWidth(), zoom_);
            const int64_t height = !HasPicture() ? 0 : ScaledExtent(imageHeight(), zoom_);
            scrollX_ = ClampScroll(scrollX_, width, rc.right);
            scrollY_ = ClampScroll(scrollY_, height, rc.bottom);
            SetBar(SB_HORZ, width, rc.right, scrollX_);
            SetBar(SB_VERT, height, rc.bottom, scrollY_);
        }
        updatingBars_ = false;
        InvalidateRect(hwnd(), nullptr, FALSE);
    }

    void SetBar(int bar, int64_t content, int page, int64_t position) {
        SCROLLINFO info{sizeof(info), SIF_RANGE | SIF_PAGE | SIF_POS};
        info.nMin = 0;
        info.nMax = static_cast<int>(std::min(content, kScrollLimit)) - 1;
        info.nPage = static_cast<UINT>(std::max(page, 0));
        info.nPos = static_cast<int>(std::min(position, kScrollLimit));
        if (content <= page) info.nMax = 0, info.nPage = 0, info.nPos = 0;
        // Each change of a bar redraws the window's frame, which is slow enough under some
        // window systems to be felt when a picture arrives: bars are touched only to change.
        SCROLLINFO now{sizeof(now), SIF_RANGE | SIF_PAGE | SIF_POS};
        if (!GetScrollInfo(hwnd(), bar, &now) || now.nMin != info.nMin || now.nMax != info.nMax ||
            now.nPage != info.nPage || now.nPos != info.nPos)
            SetScrollInfo(hwnd(), bar, &info, TRUE);
        const DWORD style = static_cast<DWORD>(GetWindowLongPtrW(hwnd(), GWL_STYLE));
        const bool shown = (style & (bar == SB_HORZ ? WS_HSCROLL : WS_VSCROLL)) != 0;
        if (shown != (content > page)) ShowScrollBar(hwnd(), bar, content > page);
    }

    LRESULT Scroll(int bar, WPARAM wParam) {
        SCROLLINFO info{sizeof(info), SIF_ALL};
        GetScrollInfo(hwnd(), bar, &info);
        int64_t& position = bar == SB_HORZ ? scrollX_ : scrollY_;
        const int line = 32;
        switch (LOWORD(wParam)) {
            case SB_LINEUP: position -= line; break;
            case SB_LINEDOWN: position += line; break;
            case SB_PAGEUP: position -= info.nPage; break;
            case SB_PAGEDOWN: position += info.nPage; break;
            case SB_THUMBTRACK:
            case SB_THUMBPOSITION: position = info.nTrackPos; break;
            case SB_TOP: position = 0; break;
            case SB_BOTTOM: position = kScrollLimit; break;
            default: return 0;
        }
        Relayout();
        return 0;
    }

    LRESULT OnHScroll(WPARAM wParam, LPARAM) { return Scroll(SB_HORZ, wParam); }

    // The keyboard scrolls as the bars' arrows and pages do.
    LRESULT OnKeyDown(WPARAM wParam, LPARAM lParam) {
        switch (wParam) {
            case VK_LEFT: return Scroll(SB_HORZ, SB_LINEUP);
            case VK_RIGHT: return Scroll(SB_HORZ, SB_LINEDOWN);
            case VK_UP: return Scroll(SB_VERT, SB_LINEUP);
            case VK_DOWN: return Scroll(SB_VERT, SB_LINEDOWN);
            case VK_PRIOR: return Scroll(SB_VERT, SB_PAGEUP);
            case VK_NEXT: return Scroll(SB_VERT, SB_PAGEDOWN);
            case VK_HOME: return Scroll(SB_VERT, SB_TOP);
            case VK_END: return Scroll(SB_VERT, SB_BOTTOM);
            default: return Default(WM_KEYDOWN, wParam, lParam);
        }
    }
    LRESULT OnVScroll(WPARAM wParam, LPARAM) { return Scroll(SB_VERT, wParam); }

    LRESULT OnSize(WPARAM, LPARAM) {
        if (fitCommand_ && (settings_.options & kOptionRefitOnResize) && !!HasPicture() && !updatingBars_) {
            const int zoom = FitFor(*fitCommand_);
            if (zoom != zoom_) {
                zoom_ = zoom;
                Notify(kZvnZoomChanged);
            }
        }
        Relayout();
        return 0;
    }

    // ---------------------------------------------------------------- mouse
    bool HandTool() const { return settings_.tool == kToolHand || GetKeyState(VK_SPACE) < 0; }

    LRESULT OnLButtonDown(WPARAM, LPARAM lParam) {
        SetFocus(hwnd());
        if (!HasPicture()) return 0;
        SetCapture(hwnd());
        grab_ = POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        if (HandTool()) {
            drag_ = Drag::Hand;
            anchorX_ = scrollX_;
            anchorY_ = scrollY_;
        } else {
            drag_ = Drag::Select;
            const ViewMapping map = Mapping();
            anchorX_ = map.ToImageX(grab_.x);
            anchorY_ = map.ToImageY(grab_.y);
            // A click alone selects nothing: the selection starts when the mouse moves on.
            leftAnchor_ = false;
            SetSelection(ViewRect{});
        }
        return 0;
    }

    LRESULT OnMouseMove(WPARAM, LPARAM lParam) {
        const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        const ViewMapping map = Mapping();
        cursor_ = POINT{static_cast<LONG>(map.ToImageX(at.x)), static_cast<LONG>(map.ToImageY(at.y))};
        if (drag_ == Drag::Hand) {
            scrollX_ = anchorX_ - (at.x - grab_.x);
            scrollY_ = anchorY_ - (at.y - grab_.y);
            Relayout();
        } else if (drag_ == Drag::Select && (leftAnchor_ || cursor_.x != anchorX_ || cursor_.y != anchorY_)) {
            leftAnchor_ = true;
            SetSelection(SelectionFromDrag(anchorX_, anchorY_, cursor_.x, cursor_.y, imageWidth(), imageHeight()));
            return 0;
        }
        Notify(kZvnCursor);
        return 0;
    }

    LRESULT OnLButtonUp(WPARAM, LPARAM) {
        if (drag_ != Drag::None) {
            drag_ = Drag::None;
            ReleaseCapture();
        }
        return 0;
    }

    LRESULT OnCaptureChanged(WPARAM, LPARAM) {
        drag_ = Drag::None;
        return 0;
    }

    LRESULT OnMouseWheel(WPARAM wParam, LPARAM lParam) {
        const int delta = GET_WHEEL_DELTA_WPARAM(wParam);
        if (GET_KEYSTATE_WPARAM(wParam) & MK_CONTROL) {
            POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};  // screen coordinates
            ScreenToClient(hwnd(), &at);
            fitCommand_.reset();
            ZoomAround(delta > 0 ? ZoomStepIn(zoom_) : ZoomStepOut(zoom_), at.x, at.y, kZvnUserZoomChanged);
            return 0;
        }
        int64_t& position = (GET_KEYSTATE_WPARAM(wParam) & MK_SHIFT) ? scrollX_ : scrollY_;
        position -= delta * 48 / WHEEL_DELTA;
        Relayout();
        return 0;
    }

    LRESULT OnSetCursor(WPARAM wParam, LPARAM lParam) {
        if (LOWORD(lParam) != HTCLIENT) return Default(WM_SETCURSOR, wParam, lParam);
        SetCursor(LoadCursorW(nullptr, HandTool() ? IDC_HAND : IDC_CROSS));
        return TRUE;
    }

    // ---------------------------------------------------------------- painting
    // Blits the picture at the current zoom: below 100 % from the area-averaged copy made
    // once per zoom, at 100 % from the full-size bitmap, above it by repeating pixels of the
    // full-size bitmap (nearest neighbour, the visible part only).
    void DrawPicture(HDC target, const ViewMapping& map, const RECT& client) {
        if (!HasPicture()) return;
        if (zoom_ < kZoomFull) {
            if (!Reduce()) return;
            // The visible part, one reduced pixel to one screen pixel; DIB rows count from
            // the bottom.
            const int64_t width = std::min<int64_t>(reduced_.width() - map.scrollX, client.right - map.originX);
            const int64_t height = std::min<int64_t>(reduced_.height() - map.scrollY, client.bottom - map.originY);
            if (width <= 0 || height <= 0) return;
            SetDIBitsToDevice(target, static_cast<int>(map.originX), static_cast<int>(map.originY), static_cast<DWORD>(width),
                              static_cast<DWORD>(height), static_cast<int>(map.scrollX),
                              static_cast<int>(reduced_.height() - map.scrollY - height), 0,
                              static_cast<UINT>(reduced_.height()), reduced_.bits(),
                              reinterpret_cast<const BITMAPINFO*>(reduced_.bytes().data()), DIB_RGB_COLORS);
            return;
        }
        const int64_t x0 = std::max<int64_t>(0, map.ToImageX(client.left));
        const int64_t y0 = std::max<int64_t>(0, map.ToImageY(client.top));
        const int64_t x1 = std::min<int64_t>(imageWidth(), map.ToImageX(client.right - 1) + 1);
        const int64_t y1 = std::min<int64_t>(imageHeight(), map.ToImageY(client.bottom - 1) + 1);
        if (x1 <= x0 || y1 <= y0) return;
        const auto* block = static_cast<const uint8_t*>(GlobalLock(image_));
        if (!block) return;
        SetStretchBltMode(target, COLORONCOLOR);
        const int64_t left = map.ToClientX(x0), top = map.ToClientY(y0);
        // The DIB is bottom-up: its source rows count from the last image row.
        StretchDIBits(target, static_cast<int>(left), static_cast<int>(top), static_cast<int>(map.ToClientX(x1) - left),
                      static_cast<int>(map.ToClientY(y1) - top), static_cast<int>(x0), static_cast<int>(height_ - y1),
                      static_cast<int>(x1 - x0), static_cast<int>(y1 - y0), block + bitsOffset_,
                      reinterpret_cast<const BITMAPINFO*>(block), DIB_RGB_COLORS, SRCCOPY);
        GlobalUnlock(image_);
    }

    // Grid lines every gridStep image pixels, drawn only where they are at least 4 screen
    // pixels apart.
    void DrawGrid(HDC target, const ViewMapping& map, const RECT& client) {
        if (!settings_.gridShown || !HasPicture() || settings_.gridStep <= 0) return;
        if (ScaledExtent(settings_.gridStep, zoom_) < 4) return;
        Pen pen(CreatePen(PS_SOLID, 1, settings_.gridColour));
        SelectScope select(target, pen.get());
        const int64_t right = std::min<int64_t>(client.right, map.ToClientX(imageWidth()));
        const int64_t bottom = std::min<int64_t>(client.bottom, map.ToClientY(imageHeight()));
        const int step = settings_.gridStep;
        for (int64_t i = std::max<int64_t>(0, map.ToImageX(0)) / step * step; i < imageWidth(); i += step) {
            const int64_t x = map.ToClientX(i);
            if (x >= client.right) break;
            MoveToEx(target, static_cast<int>(x), static_cast<int>(std::max<int64_t>(0, map.ToClientY(0))), nullptr);
            LineTo(target, static_cast<int>(x), static_cast<int>(bottom));
        }
        for (int64_t j = std::max<int64_t>(0, map.ToImageY(0)) / step * step; j < imageHeight(); j += step) {
            const int64_t y = map.ToClientY(j);
            if (y >= client.bottom) break;
            MoveToEx(target, static_cast<int>(std::max<int64_t>(0, map.ToClientX(0))), static_cast<int>(y), nullptr);
            LineTo(target, static_cast<int>(right), static_cast<int>(y));
        }
    }

    void DrawSelection(HDC target, const ViewMapping& map) {
        if (selection_.empty()) return;
        Pen pen(CreatePen(PS_DOT, 1, settings_.selectionColour));
        SelectScope selectPen(target, pen.get());
        SelectScope selectBrush(target, GetStockObject(NULL_BRUSH));
        SetBkColor(target, RGB(255, 255, 255));
        const auto clampToInt = [](int64_t v) { return static_cast<int>(std::clamp<int64_t>(v, -32000, 32000)); };
        Rectangle(target, clampToInt(map.ToClientX(selection_.left)), clampToInt(map.ToClientY(selection_.top)),
                  clampToInt(map.ToClientX(selection_.right)), clampToInt(map.ToClientY(selection_.bottom)));
    }

    // ---------------------------------------------------------------- floating image
    // A picture laid over the view (already scaled to the zoom) that the user drags into
    // place: Enter or a double click takes the place, Esc or the right button gives up.
    HIMAGELIST floating_ = nullptr;
    POINT floatAt_{};  // image pixels of its top-left corner

    void DrawFloating(HDC target, const ViewMapping& map) {
        if (!floating_) return;
        ImageList_Draw(floating_, 0, target, static_cast<int>(map.ToClientX(floatAt_.x)),
                       static_cast<int>(map.ToClientY(floatAt_.y)), ILD_TRANSPARENT);
    }

    LRESULT OnFloatImage(WPARAM wParam, LPARAM lParam) {
        auto* list = reinterpret_cast<HIMAGELIST>(wParam);
        auto* place = reinterpret_cast<POINT*>(lParam);
        if (!list || !place || !HasPicture() || floating_) return 0;
        floating_ = list;
        floatAt_ = *place;
        InvalidateRect(hwnd(), nullptr, FALSE);
        const bool placed = TrackFloating();
        floating_ = nullptr;
        InvalidateRect(hwnd(), nullptr, FALSE);
        if (placed) *place = floatAt_;
        return placed ? 1 : 0;
    }

    // The view's own loop while the floating picture is placed; messages for other windows
    // go on as usual.
    bool TrackFloating() {
        SetFocus(hwnd());
        bool dragging = false;
        POINT last{};
        MSG msg;
        while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
            if (!IsWindow(hwnd())) return false;
            const bool ours = msg.hwnd == hwnd();
            if (ours && (msg.message == WM_KEYDOWN && msg.wParam == VK_ESCAPE || msg.message == WM_RBUTTONDOWN)) break;
            if (ours && (msg.message == WM_KEYDOWN && msg.wParam == VK_RETURN || msg.message == WM_LBUTTONDBLCLK)) {
                if (GetCapture() == hwnd()) ReleaseCapture();
                return true;
            }
            if (ours && msg.message == WM_LBUTTONDOWN) {
                dragging = true;
                last = {GET_X_LPARAM(msg.lParam), GET_Y_LPARAM(msg.lParam)};
                SetCapture(hwnd());
                continue;
            }
            if (ours && msg.message == WM_MOUSEMOVE && dragging) {
                const POINT at{GET_X_LPARAM(msg.lParam), GET_Y_LPARAM(msg.lParam)};
                const ViewMapping map = Mapping();
                const int64_t dx = map.ToImageX(at.x) - map.ToImageX(last.x);
                const int64_t dy = map.ToImageY(at.y) - map.ToImageY(last.y);
                if (dx || dy) {
                    floatAt_.x += static_cast<LONG>(dx);
                    floatAt_.y += static_cast<LONG>(dy);
                    last = at;
                    InvalidateRect(hwnd(), nullptr, FALSE);
                }
                continue;
            }
            if (ours && msg.message == WM_LBUTTONUP) {
                dragging = false;
                ReleaseCapture();
                continue;
            }
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        if (msg.message == WM_QUIT) PostQuitMessage(static_cast<int>(msg.wParam));
        if (GetCapture() == hwnd()) ReleaseCapture();
        return false;
    }

    // Everything is drawn into a bitmap first, so scrolling and dragging do not flicker.
    void Paint(HDC dc) {
        const RECT client = Client();
        if (client.right <= 0 || client.bottom <= 0) return;
        MemoryDc buffer(dc);
        Bitmap canvas(CreateCompatibleBitmap(dc, client.right, client.bottom));
        if (!buffer.get() || !canvas) return;
        SelectScope select(buffer.get(), canvas.get());
        Brush background(CreateSolidBrush(settings_.background));
        FillRect(buffer.get(), &client, background.get());
        const ViewMapping map = Mapping();
        DrawPicture(buffer.get(), map, client);
        DrawGrid(buffer.get(), map, client);
        DrawSelection(buffer.get(), map);
        DrawFloating(buffer.get(), map);
        BitBlt(dc, 0, 0, client.right, client.bottom, buffer.get(), 0, 0, SRCCOPY);
    }

    LRESULT OnPaint(WPARAM, LPARAM) {
        PaintDc dc(hwnd());
        Paint(dc.get());
        return 0;
    }
    LRESULT OnPrintClient(WPARAM wParam, LPARAM) {
        Paint(reinterpret_cast<HDC>(wParam));
        return 0;
    }
    LRESULT OnEraseBackground(WPARAM, LPARAM) { return 1; }
    LRESULT OnGetDlgCode(WPARAM, LPARAM) { return DLGC_WANTARROWS; }
};

std::span<const MessageEntry<ZoomView>> ZoomView::Messages() {
    static const MessageEntry<ZoomView> table[] = {
        {kZvSetImage, &ZoomView::OnSetImage},
        {kZvReplaceImage, &ZoomView::OnReplaceImage},
        {kZvGetImage, &ZoomView::OnGetImage},
        {kZvGetZoom, &ZoomView::OnGetZoom},
        {kZvZoomCommand, &ZoomView::OnZoomCommand},
        {kZvSetZoom, &ZoomView::OnSetZoom},
        {kZvCanZoom, &ZoomView::OnCanZoom},
        {kZvSetOptions, &ZoomView::OnSetOptions},
        {kZvGetOptions, &ZoomView::OnGetOptions},
        {kZvSetBackground, &ZoomView::OnSetBackground},
        {kZvSetSelection, &ZoomView::OnSetSelection},
        {kZvGetSelection, &ZoomView::OnGetSelection},
        {kZvApplySettings, &ZoomView::OnApplySettings},
        {kZvReadSettings, &ZoomView::OnReadSettings},
        {kZvInitialize, &ZoomView::OnInitialize},
        {kZvFloatImage, &ZoomView::OnFloatImage},
        {WM_SIZE, &ZoomView::OnSize},
        {WM_HSCROLL, &ZoomView::OnHScroll},
        {WM_VSCROLL, &ZoomView::OnVScroll},
        {WM_KEYDOWN, &ZoomView::OnKeyDown},
        {WM_LBUTTONDOWN, &ZoomView::OnLButtonDown},
        {WM_MOUSEMOVE, &ZoomView::OnMouseMove},
        {WM_LBUTTONUP, &ZoomView::OnLButtonUp},
        {WM_CAPTURECHANGED, &ZoomView::OnCaptureChanged},
        {WM_MOUSEWHEEL, &ZoomView::OnMouseWheel},
        {WM_SETCURSOR, &ZoomView::OnSetCursor},
        {WM_PAINT, &ZoomView::OnPaint},
        {WM_PRINTCLIENT, &ZoomView::OnPrintClient},
        {WM_ERASEBKGND, &ZoomView::OnEraseBackground},
        {WM_GETDLGCODE, &ZoomView::OnGetDlgCode},
        };
    return table;
}

}  // namespace

bool RegisterZoomViewClass() {
    return RegisterWindowClass(kZoomViewClass, [] { return static_cast<Window*>(new ZoomView); });
}

}  // namespace lx
