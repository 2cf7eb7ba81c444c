#include "ImagePrint.h"

#include <commdlg.h>

#include <algorithm>

namespace lx {
namespace {

class LockedDib {
public:
    explicit LockedDib(HGLOBAL block) : block_(block), info_(static_cast<BITMAPINFO*>(GlobalLock(block))) {}
    ~LockedDib() {
        if (info_) GlobalUnlock(block_);
    }
    LockedDib(const LockedDib&) = delete;
    LockedDib& operator=(const LockedDib&) = delete;
    const BITMAPINFO* info() const { return info_; }
    const void* bits() const {
        const BITMAPINFOHEADER& h = info_->bmiHeader;
        DWORD colours = h.biClrUsed ? h.biClrUsed : (h.biBitCount <= 8 ? 1u << h.biBitCount : 0);
        const DWORD masks = h.biCompression == BI_BITFIELDS && h.biSize == sizeof(BITMAPINFOHEADER) ? 3 : 0;
        return reinterpret_cast<const BYTE*>(info_) + h.biSize + (colours + masks) * sizeof(RGBQUAD);
    }

private:
    HGLOBAL block_;
    BITMAPINFO* info_;
};

bool PrintOnDc(HDC dc, HGLOBAL image, const std::wstring& documentName) {
    LockedDib dib(image);
    if (!dib.info()) return false;
    const int width = dib.info()->bmiHeader.biWidth;
    const int height = std::abs(dib.info()->bmiHeader.biHeight);
    const int pageWidth = GetDeviceCaps(dc, HORZRES);
    const int pageHeight = GetDeviceCaps(dc, VERTRES);
    if (width <= 0 || height <= 0 || pageWidth <= 0 || pageHeight <= 0) return false;
    // Fit the page: the scale is the smaller of the two ratios, in 64-bit to avoid overflow.
    int outWidth = pageWidth;
    int outHeight = static_cast<int>(int64_t(height) * pageWidth / width);
    if (outHeight > pageHeight) {
        outHeight = pageHeight;
        outWidth = static_cast<int>(int64_t(width) * pageHeight / height);
    }
    DOCINFOW doc{sizeof doc};
    doc.lpszDocName = documentName.c_str();
    if (StartDocW(dc, &doc) <= 0) return false;
    bool printed = StartPage(dc) > 0;
    if (printed) {
        SetStretchBltMode(dc, HALFTONE);
        SetBrushOrgEx(dc, 0, 0, nullptr);
        printed = StretchDIBits(dc, (pageWidth - outWidth) / 2, (pageHeight - outHeight) / 2, outWidth, outHeight, 0,
                                0, width, height, dib.bits(), dib.info(), DIB_RGB_COLORS, SRCCOPY) > 0;
        printed = EndPage(dc) > 0 && printed;
    }
    if (printed)
        EndDoc(dc);
    else
        AbortDoc(dc);
    return printed;
}

}  // namespace

bool PrintImage(HWND owner, HGLOBAL image, const std::wstring& documentName) {
    if (!image) return false;
    PRINTDLGW dialog{sizeof dialog};
    dialog.hwndOwner = owner;
    dialog.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_USEDEVMODECOPIESANDCOLLATE;
    if (!PrintDlgW(&dialog) || !dialog.hDC) return false;
    const bool printed = PrintOnDc(dialog.hDC, image, documentName);
    DeleteDC(dialog.hDC);
    if (dialog.hDevMode) GlobalFree(dialog.hDevMode);
    if (dialog.hDevNames) GlobalFree(dialog.hDevNames);
    return printed;
}

}  // namespace lx
