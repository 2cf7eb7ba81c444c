// Owners for GDI handles, so that every exit path of a drawing routine frees what it made.
#pragma once

#include <windows.h>

#include <utility>

namespace lx {

// One owned handle, freed by `Free` (DeleteObject for GDI objects, ImageList_Destroy ...).
template <class Handle, auto Free>
class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(Handle handle) : handle_(handle) {}
    OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        if (this != &other) reset(std::exchange(other.handle_, nullptr));
        return *this;
    }
    ~OwnedHandle() { reset(); }

    Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    void reset(Handle handle = nullptr) {
        if (handle_) Free(handle_);
        handle_ = handle;
    }
    Handle release() { return std::exchange(handle_, nullptr); }

private:
    Handle handle_ = nullptr;
};

// HBITMAP, HBRUSH, HPEN, HFONT, HPALETTE: freed with DeleteObject.
inline void DeleteGdiObject(HGDIOBJ object) { DeleteObject(object); }
template <class Handle>
using GdiObject = OwnedHandle<Handle, &DeleteGdiObject>;

using Bitmap = GdiObject<HBITMAP>;
using Brush = GdiObject<HBRUSH>;
using Pen = GdiObject<HPEN>;
using Font = GdiObject<HFONT>;
using Palette = GdiObject<HPALETTE>;

inline void DestroyIconHandle(HICON icon) { DestroyIcon(icon); }
using Icon = OwnedHandle<HICON, &DestroyIconHandle>;

// A memory DC compatible with `reference` (null: the screen), deleted at the end.
class MemoryDc {
public:
    explicit MemoryDc(HDC reference) : dc_(CreateCompatibleDC(reference)) {}
    MemoryDc(const MemoryDc&) = delete;
    MemoryDc& operator=(const MemoryDc&) = delete;
    ~MemoryDc() {
        if (dc_) DeleteDC(dc_);
    }
    HDC get() const { return dc_; }

private:
    HDC dc_;
};

// GetDC / ReleaseDC.
class WindowDc {
public:
    explicit WindowDc(HWND hwnd) : hwnd_(hwnd), dc_(GetDC(hwnd)) {}
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    ~WindowDc() {
        if (dc_) ReleaseDC(hwnd_, dc_);
    }
    HDC get() const { return dc_; }

private:
    HWND hwnd_;
    HDC dc_;
};

// BeginPaint / EndPaint.
class PaintDc {
public:
    explicit PaintDc(HWND hwnd) : hwnd_(hwnd) { dc_ = BeginPaint(hwnd, &paint_); }
    PaintDc(const PaintDc&) = delete;
    PaintDc& operator=(const PaintDc&) = delete;
    ~PaintDc() { EndPaint(hwnd_, &paint_); }
    HDC get() const { return dc_; }
    const RECT& dirty() const { return paint_.rcPaint; }

private:
    HWND hwnd_;
    PAINTSTRUCT paint_{};
    HDC dc_;
};

// Selects an object into a DC and puts the previous one back at the end, so the object can be
// deleted afterwards.
class SelectScope {
public:
    SelectScope(HDC dc, HGDIOBJ object) : dc_(dc), old_(SelectObject(dc, object)) {}
    SelectScope(const SelectScope&) = delete;
    SelectScope& operator=(const SelectScope&) = delete;
    ~SelectScope() {
        if (old_) SelectObject(dc_, old_);
    }

private:
    HDC dc_;
    HGDIOBJ old_;
};

}  // namespace lx
