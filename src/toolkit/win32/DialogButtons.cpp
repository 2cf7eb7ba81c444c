#include "DialogButtons.h"

#include <commdlg.h>

#include "GdiObjects.h"
#include "Window.h"

namespace lx {

namespace {

// Presses done by mouse or keyboard, shared by both buttons: a click is a press and a
// release inside the button; Space works as on a standard button.
class PushButtonBase : public Window {
protected:
    virtual void Press() = 0;
    virtual void DrawFace(HDC dc, RECT area) = 0;

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
        case WM_LBUTTONDOWN:
            SetFocus(hwnd());
            SetCapture(hwnd());
            pressed_ = true;
            Redraw();
            return 0;
        case WM_LBUTTONUP:
            if (pressed_) Release({static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
            return 0;
        case WM_KEYUP:
            if (wParam == VK_SPACE) Press();
            return 0;
        case WM_GETDLGCODE:
            return DLGC_BUTTON;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_ENABLE:
            Redraw();
            return 0;
        case WM_MOUSEMOVE:
            if (!hot_) {
                hot_ = true;
                TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, hwnd(), 0};
                TrackMouseEvent(&track);
                Redraw();
            }
            return 0;
        case WM_MOUSELEAVE:
            hot_ = false;
            Redraw();
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        default:
            return Window::HandleMessage(message, wParam, lParam);
        }
    }

    void Redraw() { InvalidateRect(hwnd(), nullptr, TRUE); }

    void NotifyParent() {
        SendMessageW(GetParent(hwnd()), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hwnd()), BN_CLICKED),
                     reinterpret_cast<LPARAM>(hwnd()));
    }

private:
    void Release(POINT at) {
        pressed_ = false;
        ReleaseCapture();
        Redraw();
        RECT client;
        GetClientRect(hwnd(), &client);
        if (PtInRect(&client, at)) Press();
    }

    void Paint() {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(hwnd(), &paint);
        RECT client;
        GetClientRect(hwnd(), &client);
        FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
        DrawFace(dc, client);
        if (pressed_ || hot_) DrawEdge(dc, &client, pressed_ ? BDR_SUNKENOUTER : BDR_RAISEDINNER, BF_RECT);
        if (GetFocus() == hwnd()) {
            RECT focus = client;
            InflateRect(&focus, -3, -3);
            DrawFocusRect(dc, &focus);
        }
        EndPaint(hwnd(), &paint);
    }

    bool pressed_ = false;
    bool hot_ = false;
};

class ColorPick : public PushButtonBase {
protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == kColorPickGet) return colour_;
        if (message == kColorPickSet) {
            colour_ = static_cast<COLORREF>(lParam) & 0xFFFFFF;
            Redraw();
            return 0;
        }
        return PushButtonBase::HandleMessage(message, wParam, lParam);
    }
    void Press() override {
        static COLORREF custom[16] = {};
        CHOOSECOLORW choose = {};
        choose.lStructSize = sizeof choose;
        choose.hwndOwner = hwnd();
        choose.rgbResult = colour_;
        choose.lpCustColors = custom;
        choose.Flags = CC_RGBINIT | CC_FULLOPEN;
        if (!ChooseColorW(&choose)) return;
        colour_ = choose.rgbResult & 0xFFFFFF;
        Redraw();
        NotifyParent();
    }
    void DrawFace(HDC dc, RECT area) override {
        InflateRect(&area, -5, -5);
        GdiObject<HBRUSH> swatch(CreateSolidBrush(IsWindowEnabled(hwnd()) ? colour_ : GetSysColor(COLOR_BTNFACE)));
        FillRect(dc, &area, swatch.get());
        FrameRect(dc, &area, GetSysColorBrush(COLOR_WINDOWTEXT));
    }

private:
    COLORREF colour_ = 0;
};

class FlatButton : public PushButtonBase {
protected:
    void Press() override { NotifyParent(); }
    void DrawFace(HDC dc, RECT area) override {
        wchar_t text[64] = {};
        GetWindowTextW(hwnd(), text, 64);
        const HFONT font = reinterpret_cast<HFONT>(SendMessageW(GetParent(hwnd()), WM_GETFONT, 0, 0));
        const HGDIOBJ old = font ? SelectObject(dc, font) : nullptr;
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, GetSysColor(IsWindowEnabled(hwnd()) ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
        DrawTextW(dc, text, -1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        if (old) SelectObject(dc, old);
    }
};

}  // namespace

bool RegisterDialogButtons() {
    const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    return RegisterWindowClass(L"NCCColorPick", [] { return static_cast<Window*>(new ColorPick); }, 0, arrow) &&
           RegisterWindowClass(L"NCCFlatButton", [] { return static_cast<Window*>(new FlatButton); }, 0, arrow);
}

}  // namespace lx
