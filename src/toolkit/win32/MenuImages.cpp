#include "MenuImages.h"

#include <cstdint>

#include "ToolBarTemplate.h"

namespace lx {

namespace {

const wchar_t* const kToolBarResourceType = MAKEINTRESOURCEW(241);
// Room kept at each side of an image, so that it does not touch the menu's edge or the text.
constexpr int kMargin = 3;

// The strip as top-down 0x00RRGGBB words, whatever depth the resource was stored in.
std::vector<uint32_t> ReadStripPixels(HBITMAP strip, int& width, int& height) {
    BITMAP info{};
    if (!GetObjectW(strip, sizeof(info), &info) || info.bmWidth <= 0 || info.bmHeight <= 0) return {};
    width = info.bmWidth;
    height = info.bmHeight;
    BITMAPINFO request{};
    request.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB};
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * height);
    WindowDc screen(nullptr);
    if (GetDIBits(screen.get(), strip, 0, height, pixels.data(), &request, DIB_RGB_COLORS) != height) return {};
    return pixels;
}

// One image of the strip as a premultiplied-alpha DIB section: the transparent colour gets
// alpha 0 (and so colour 0), every other pixel is opaque.
Bitmap CutImage(const std::vector<uint32_t>& strip, int stripWidth, int left, int width, int height,
                uint32_t transparent) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB};
    void* bits = nullptr;
    Bitmap image(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!image) return {};
    auto* out = static_cast<uint32_t*>(bits);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint32_t rgb = strip[static_cast<size_t>(y) * stripWidth + left + x] & 0xFFFFFF;
            out[y * width + x] = rgb == transparent ? 0 : (0xFF000000 | rgb);
        }
    return image;
}

}  // namespace

bool MenuImages::Load(HINSTANCE instance, UINT id, COLORREF transparent) {
    images_.clear();
    HRSRC found = FindResourceW(instance, MAKEINTRESOURCEW(id), kToolBarResourceType);
    HGLOBAL loaded = found ? LoadResource(instance, found) : nullptr;
    const void* data = loaded ? LockResource(loaded) : nullptr;
    if (!data) return false;
    const auto layout = ParseToolBarTemplate(static_cast<const uint8_t*>(data), SizeofResource(instance, found));
    if (!layout) return false;

    Bitmap strip(static_cast<HBITMAP>(LoadImageW(instance, MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0,
                                                 LR_CREATEDIBSECTION)));
    if (!strip) return false;
    int width = 0, height = 0;
    const std::vector<uint32_t> pixels = ReadStripPixels(strip.get(), width, height);
    const int imageWidth = layout->imageWidth;
    const int imageHeight = layout->imageHeight;
    if (pixels.empty() || imageWidth <= 0 || imageHeight <= 0 || imageHeight > height ||
        static_cast<size_t>(width / imageWidth) < layout->ImageCount())
        return false;

    // COLORREF is 0x00BBGGRR; the pixels read back are 0x00RRGGBB.
    size_ = {imageWidth, imageHeight};
    const uint32_t key = (GetRValue(transparent) << 16) | (GetGValue(transparent) << 8) | GetBValue(transparent);
    int image = 0;
    for (uint16_t command : layout->commands) {
        if (command == 0) continue;
        Bitmap cut = CutImage(pixels, width, image++ * imageWidth, imageWidth, imageHeight, key);
        if (!cut) return false;
        images_.emplace_back(command, std::move(cut));
    }
    return true;
}

HBITMAP MenuImages::ImageOf(UINT command) const {
    for (const auto& [id, image] : images_)
        if (id == command) return image.get();
    return nullptr;
}

void MenuImages::ApplyTo(HMENU menu) const {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        MENUITEMINFOW item{sizeof(item)};
        item.fMask = MIIM_ID | MIIM_SUBMENU | MIIM_FTYPE;
        if (!GetMenuItemInfoW(menu, i, TRUE, &item) || (item.fType & MFT_SEPARATOR)) continue;
        if (item.hSubMenu) {
            ApplyTo(item.hSubMenu);
            continue;
        }
        if (ImageOf(item.wID)) {
            MENUITEMINFOW picture{sizeof(picture)};
            picture.fMask = MIIM_BITMAP;
            picture.hbmpItem = HBMMENU_CALLBACK;
            SetMenuItemInfoW(menu, i, TRUE, &picture);
        }
    }
}

bool MenuImages::Measure(MEASUREITEMSTRUCT& item) const {
    if (item.CtlType != ODT_MENU || !ImageOf(item.itemID)) return false;
    item.itemWidth = size_.cx + 2 * kMargin;
    item.itemHeight = size_.cy;
    return true;
}

bool MenuImages::Draw(const DRAWITEMSTRUCT& item) const {
    HBITMAP image = item.CtlType == ODT_MENU ? ImageOf(item.itemID) : nullptr;
    if (!image) return false;
    MemoryDc source(item.hDC);
    SelectScope use(source.get(), image);
    // A grayed command's image is faded like its text.
    const BYTE opacity = (item.itemState & ODS_GRAYED) ? 96 : 255;
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, opacity, AC_SRC_ALPHA};
    const RECT& r = item.rcItem;
    GdiAlphaBlend(item.hDC, r.left + kMargin, r.top + (r.bottom - r.top - size_.cy) / 2, size_.cx, size_.cy,
                  source.get(), 0, 0, size_.cx, size_.cy, blend);
    return true;
}

}  // namespace lx
