// CNaviWindow: the editor's floating navigator ("ナビゲータ"), a tool window owned by the
// frame that shows the whole picture reduced and frames the part the image view shows.
// Pressing or dragging in it moves the view there.
//
// Its placement is kept as "NaviPos": the window placement followed by a shown flag, 48
// bytes. The reduced picture is its own; the view's image is only lent while it is made.
#pragma once

#include <windows.h>

#include <span>

#include "Window.h"
#include "ZoomGeometry.h"
#include "mif.h"

namespace lx {

struct NaviPosRecord {
    WINDOWPLACEMENT placement;
    int32_t shown;
};
static_assert(sizeof(NaviPosRecord) == 48);

class CNaviWindow : public MappedWindow<CNaviWindow> {
public:
    static std::span<const MessageEntry<CNaviWindow>> Messages();
    static constexpr wchar_t kClassName[] = L"LXPHOTOEDIT_NAVI";

    // Creates the window owned by `frame`, watching `view`; placed and shown as `record` says
    // (null: the default place, hidden).
    bool Create(HWND frame, HWND view, const NaviPosRecord* record);
    NaviPosRecord Record() const;
    bool Shown() const { return hwnd() && IsWindowVisible(hwnd()); }
    void Show(bool shown);

    // A new picture (lent; null: none).
    void SetImage(HGLOBAL image);
    // Redraws when the part the view shows has moved.
    void Refresh();

private:
    LRESULT OnPaint(WPARAM, LPARAM);
    LRESULT OnClose(WPARAM, LPARAM);
    LRESULT OnMouse(WPARAM, LPARAM);
    LRESULT OnEraseBackground(WPARAM, LPARAM) { return 1; }
    RECT PictureRect() const;
    ViewRect VisiblePart() const;

    HWND view_ = nullptr;
    mif reduced_;
    SIZE imageSize_{};
    ViewRect shownPart_;
};

}  // namespace lx
