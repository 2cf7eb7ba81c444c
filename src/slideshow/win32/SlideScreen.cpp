// Drawing a slide: the whole screen is composed once off screen (black, the picture centred,
// the caption at the bottom left), and painting only copies it.
#include "SlideFrame.h"

#include "SlidePicture.h"

namespace lx {
namespace {

constexpr int kCaptionMargin = 24;
constexpr COLORREF kCaptionText = 0xFFFFFF, kCaptionOutline = 0x000000;
// The outline: the text drawn dark at these offsets around the place of the light text, so
// the caption reads on any picture, light or dark.
constexpr POINT kOutline[] = {{-2, 0}, {2, 0}, {0, -2}, {0, 2}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}, {2, 2}};

// The caption font: "MS UI Gothic", its height following the screen's.
HFONT MakeCaptionFont(int screenHeight) {
    LOGFONTW font{};
    font.lfHeight = -std::max(14, screenHeight / 40);
    font.lfWeight = FW_BOLD;
    font.lfCharSet = SHIFTJIS_CHARSET;
    font.lfQuality = ANTIALIASED_QUALITY;
    lstrcpynW(font.lfFaceName, L"MS UI Gothic", LF_FACESIZE);
    return CreateFontIndirectW(&font);
}

void DrawCaption(HDC dc, const std::wstring& caption, SIZE screen) {
    constexpr UINT kFormat = DT_LEFT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS;
    RECT box{kCaptionMargin, 0, screen.cx - kCaptionMargin, screen.cy};
    DrawTextW(dc, caption.c_str(), static_cast<int>(caption.size()), &box, kFormat | DT_CALCRECT);
    const int height = std::min<int>(box.bottom - box.top, screen.cy - 2 * kCaptionMargin);
    box = {kCaptionMargin, screen.cy - kCaptionMargin - height, screen.cx - kCaptionMargin, screen.cy - kCaptionMargin};
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, kCaptionOutline);
    for (const POINT& offset : kOutline) {
        RECT shifted = box;
        OffsetRect(&shifted, offset.x, offset.y);
        DrawTextW(dc, caption.c_str(), static_cast<int>(caption.size()), &shifted, kFormat);
    }
    SetTextColor(dc, kCaptionText);
    DrawTextW(dc, caption.c_str(), static_cast<int>(caption.size()), &box, kFormat);
}

}  // namespace

void CSlideFrame::Compose(const Slide& slide) {
    WindowDc screenDc(hwnd());
    if (!offscreen_) offscreen_.reset(CreateCompatibleBitmap(screenDc.get(), screen_.cx, screen_.cy));
    if (!captionFont_) captionFont_.reset(MakeCaptionFont(screen_.cy));
    if (!offscreen_) return;
    MemoryDc dc(screenDc.get());
    SelectScope useBitmap(dc.get(), offscreen_.get());
    const RECT all{0, 0, screen_.cx, screen_.cy};
    FillRect(dc.get(), &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    if (!slide.failed()) {
        const PackedDib& picture = slide.picture;
        // Prepared for this screen already; placing it again only centres it.
        const SlidePlacement at = PlaceSlide(picture.width(), picture.height(), screen_.cx, screen_.cy);
        const auto* info = reinterpret_cast<const BITMAPINFO*>(picture.bytes().data());
        if (at.width == picture.width() && at.height == picture.height())
            SetDIBitsToDevice(dc.get(), at.x, at.y, at.width, at.height, 0, 0, 0, picture.height(), picture.bits(), info,
                              DIB_RGB_COLORS);
        else
            StretchDIBits(dc.get(), at.x, at.y, at.width, at.height, 0, 0, picture.width(), picture.height(),
                          picture.bits(), info, DIB_RGB_COLORS, SRCCOPY);
    }
    SelectScope useFont(dc.get(), captionFont_.get());
    DrawCaption(dc.get(), slide.caption, screen_);
}

}  // namespace lx
