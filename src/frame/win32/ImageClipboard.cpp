#include "ImageClipboard.h"

#include <cstring>

#include "DibGlobal.h"
#include "mif.h"

namespace lx {
namespace {

// A device-dependent bitmap of the screen's format showing the DIB.
HBITMAP DeviceBitmapOf(const PackedDib& dib, HPALETTE palette) {
    HDC screen = GetDC(nullptr);
    HPALETTE old = palette ? SelectPalette(screen, palette, FALSE) : nullptr;
    if (palette) RealizePalette(screen);
    const auto* info = reinterpret_cast<const BITMAPINFO*>(dib.bytes().data());
    HBITMAP bitmap = CreateDIBitmap(screen, &info->bmiHeader, CBM_INIT, dib.bits(), info, DIB_RGB_COLORS);
    if (old) SelectPalette(screen, old, FALSE);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

// The pixels of a device-dependent bitmap as a 24-bit DIB, its colours looked up in
// `palette` when it has one.
std::optional<PackedDib> DibOfBitmap(HBITMAP bitmap, HPALETTE palette) {
    BITMAP facts{};
    if (!GetObjectW(bitmap, sizeof facts, &facts) || facts.bmWidth <= 0 || facts.bmHeight <= 0) return std::nullopt;
    PackedDib dib = PackedDib::Create(facts.bmWidth, facts.bmHeight, 24);
    if (dib.empty()) return std::nullopt;
    HDC screen = GetDC(nullptr);
    HPALETTE old = palette ? SelectPalette(screen, palette, FALSE) : nullptr;
    if (palette) RealizePalette(screen);
    BITMAPINFO info{};
    std::memcpy(&info.bmiHeader, dib.bytes().data(), sizeof info.bmiHeader);
    const int rows = GetDIBits(screen, bitmap, 0, static_cast<UINT>(facts.bmHeight), dib.bits(), &info, DIB_RGB_COLORS);
    if (old) SelectPalette(screen, old, FALSE);
    ReleaseDC(nullptr, screen);
    if (rows != facts.bmHeight) return std::nullopt;
    return dib;
}

}  // namespace

std::optional<PackedDib> ReadClipboardPicture(HWND owner) {
    if (!OpenClipboard(owner)) return std::nullopt;
    std::optional<PackedDib> dib;
    if (HGLOBAL data = GetClipboardData(CF_DIB)) {
        dib = DibFromGlobal(data);
    } else if (auto bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP))) {
        dib = DibOfBitmap(bitmap, static_cast<HPALETTE>(GetClipboardData(CF_PALETTE)));
    }
    CloseClipboard();
    return dib;
}

bool PutImageOnClipboard(HWND owner, HGLOBAL image, const RECT& selection, ClipboardForms forms) {
    if (!image) return false;
    mif copy(image);
    if (copy.width() <= 0) return false;
    if (selection.right > selection.left && selection.bottom > selection.top) {
        const MifRect part{selection.left, selection.top, selection.right, selection.bottom};
        if (!copy.crop(&part)) return false;
    }
    HGLOBAL dib = static_cast<HGLOBAL>(copy.createglobaldib());
    if (!dib) return false;
    HPALETTE palette = nullptr;
    if (copy.depth() <= 8) {
        if (HBITMAP shown = copy.createbitmap(&palette)) DeleteObject(shown);
    } else if (forms == ClipboardForms::WithBitmap) {
        HDC screen = GetDC(nullptr);
        palette = CreateHalftonePalette(screen);
        ReleaseDC(nullptr, screen);
    }
    HBITMAP bitmap = forms == ClipboardForms::WithBitmap ? DeviceBitmapOf(copy.dib(), palette) : nullptr;
    if (!OpenClipboard(owner)) {
        GlobalFree(dib);
        if (palette) DeleteObject(palette);
        if (bitmap) DeleteObject(bitmap);
        return false;
    }
    EmptyClipboard();
    // The clipboard owns what it accepted; what it refused is still ours.
    if (!SetClipboardData(CF_DIB, dib)) GlobalFree(dib);
    if (palette && !SetClipboardData(CF_PALETTE, palette)) DeleteObject(palette);
    if (bitmap && !SetClipboardData(CF_BITMAP, bitmap)) DeleteObject(bitmap);
    CloseClipboard();
    return true;
}

}  // namespace lx
