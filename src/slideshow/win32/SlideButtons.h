// The slide show's buttons: small square windows that draw a 32 x 32 glyph from a bitmap
// resource on a dark face (lighter under the pointer, lighter still while pressed) and, when
// clicked, send WM_COMMAND with their id and notification code 0 to their parent. Their window
// text names them. CStartButtonWnd shows "start" while the show is paused and "pause" while it
// runs.
#pragma once

#include <windows.h>

#include <span>

#include "ImageStrip.h"
#include "Window.h"

namespace lx {

class CImageButtonWnd : public MappedWindow<CImageButtonWnd> {
public:
    static constexpr int kSize = 32;
    static std::span<const MessageEntry<CImageButtonWnd>> Messages();

    // A visible child of `parent` at its top-left corner, showing the first image of bitmap
    // `bitmapId` and named by string `nameId`.
    bool Create(HWND parent, int id, int bitmapId, UINT nameId);

protected:
    void ShowImage(int index, UINT nameId);

private:
    LRESULT OnPaint(WPARAM, LPARAM);
    LRESULT OnEraseBackground(WPARAM, LPARAM) { return 1; }
    LRESULT OnMouseMove(WPARAM, LPARAM);
    LRESULT OnMouseLeave(WPARAM, LPARAM);
    LRESULT OnButtonDown(WPARAM, LPARAM);
    LRESULT OnButtonUp(WPARAM, LPARAM);
    LRESULT OnCaptureChanged(WPARAM, LPARAM);
    bool Inside(LPARAM point) const;

    ImageList images_;
    int image_ = 0;
    bool hot_ = false;
    bool pressed_ = false;
};

class CStartButtonWnd : public CImageButtonWnd {
public:
    bool Create(HWND parent, int id);
    void SetPaused(bool paused);
};

}  // namespace lx
