// Paste (2032): the clipboard's picture becomes the document of an empty editor, or is laid
// over the document as the paste dialog says, placed by its anchor or by hand in the view.
#include <algorithm>
#include <new>

#include "ImageClipboard.h"
#include "ImageFormats.h"
#include "MainFrame.h"

#include <commctrl.h>

#include "ModuleResources.h"
#include "PasteBlend.h"
#include "PasteDlg.h"
#include "ZoomView.h"

namespace lx {

void CMainFrame::Paste() {
    // A picture the class cannot take (malformed, compressed) or one too large to edit
    // changes nothing.
    std::optional<PackedDib> clip = ReadClipboardPicture(hwnd());
    mif layer;
    if (!clip || !EditableSize(clip->width(), clip->height()) || !layer.attachdib(std::move(*clip))) {
        MessageBeep(MB_OK);
        return;
    }
    if ((layer.depth() > 24 || layer.depth() == 16) && !layer.setdepth(24)) return;

    if (!ViewImage()) {
        HGLOBAL image = static_cast<HGLOBAL>(layer.createglobaldib());
        if (!image || !document_.Commit(image, 2032, true, false)) return;
        path_.clear();
        fileType_ = kImageBmp;
        SendMessageW(zoomView_, kZvSetZoom, kZoomFull, 0);
        SetWindowTextW(hwnd(), LoadResString(4).c_str());
        return;
    }

    PasteSettings settings;
    if (!RunPasteDialog(hwnd(), settings)) return;
    POINT at{};
    if (settings.byHand) {
        const std::optional<POINT> placed = PlaceByHand(layer);
        if (!placed) return;
        at = *placed;
    } else {
        const ImageFacts target = Facts(ViewImage());
        const PastePoint anchored = AnchorPosition(settings.anchor, target.width, target.height, layer.width(), layer.height());
        at = {anchored.x + settings.offsetX, anchored.y + settings.offsetY};
    }

    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    HGLOBAL result = nullptr;
    try {
        mif target(static_cast<void*>(ViewImage()));
        if (BlendLayer(target, layer, at.x, at.y, settings)) result = static_cast<HGLOBAL>(target.createglobaldib());
    } catch (const std::bad_alloc&) {
        result = nullptr;
    }
    layer.destroy();
    SetCursor(previous);
    if (result) document_.Commit(result, 2032, true, false);
}

std::optional<POINT> CMainFrame::PlaceByHand(const mif& picture) {
    // The view shows the floating picture at its zoom: scaled here, nearest neighbour, as the
    // view draws the document above 100 %.
    mif shown(picture);
    const int zoom = static_cast<int>(SendMessageW(zoomView_, kZvGetZoom, 0, 0));
    if (zoom > 0 && zoom != kZoomFull) {
        const int width = std::max(1, static_cast<int>(int64_t{shown.width()} * zoom / kZoomFull));
        const int height = std::max(1, static_cast<int>(int64_t{shown.height()} * zoom / kZoomFull));
        if (!shown.zoom_near(width, height)) return std::nullopt;
    }
    Bitmap bitmap(shown.createbitmap(nullptr));
    if (!bitmap) return std::nullopt;
    HIMAGELIST list = ImageList_Create(shown.width(), shown.height(), ILC_COLOR24 | ILC_MASK, 1, 0);
    if (!list) return std::nullopt;
    // White is the mask colour: white parts of the picture show the document through.
    ImageList_AddMasked(list, bitmap.get(), RGB(255, 255, 255));
    bitmap.reset();
    shown.destroy();
    POINT place{0, 0};
    const LRESULT placed = SendMessageW(zoomView_, kZvFloatImage, reinterpret_cast<WPARAM>(list), reinterpret_cast<LPARAM>(&place));
    ImageList_Destroy(list);
    if (!placed) return std::nullopt;
    return place;
}

}  // namespace lx
