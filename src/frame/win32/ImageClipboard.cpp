#include "ImageClipboard.h"

#include "mif.h"

namespace lx {

bool PutImageOnClipboard(HWND owner, HGLOBAL image, const RECT& selection) {
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
    if (copy.depth() <= 8)
        if (HBITMAP shown = copy.createbitmap(&palette)) DeleteObject(shown);
    if (!OpenClipboard(owner)) {
        GlobalFree(dib);
        if (palette) DeleteObject(palette);
        return false;
    }
    EmptyClipboard();
    // The clipboard owns what it accepted; what it refused is still ours.
    if (!SetClipboardData(CF_DIB, dib)) GlobalFree(dib);
    if (palette && !SetClipboardData(CF_PALETTE, palette)) DeleteObject(palette);
    CloseClipboard();
    return true;
}

}  // namespace lx
