// The editor's image operations that ask first: image size, canvas size, colour reduction and
// the colour table. Each ends in one undo step, or changes nothing.
#include "ImageDialogs.h"
#include "ImageOperations.h"
#include "MainFrame.h"
#include "MainFrameEdit.h"

namespace lx {

void CMainFrame::ImageSize() {
    HGLOBAL shown = ViewImage();
    if (!shown) return;
    const ImageFacts now = Facts(shown);
    ImageSizeChoice choice{now.width, now.height, lastResampleMethod_, lastCubic_};
    if (!RunImageSizeDialog(hwnd(), now.width, now.height, now.depth, choice)) return;
    lastResampleMethod_ = choice.method;
    lastCubic_ = choice.cubic;
    // The same size is no step at all.
    if (choice.width == now.width && choice.height == now.height) return;
    const bool done = EditImage(2071, false, [&](mif& image, const ViewRect&) {
        return ResampleImage(image, choice.width, choice.height, choice.method, choice.cubic);
    });
    if (!done) MessageBeep(MB_OK);
}

void CMainFrame::CanvasSize() {
    HGLOBAL shown = ViewImage();
    if (!shown) return;
    const ImageFacts now = Facts(shown);
    CanvasChoice choice{now.width, now.height, 4, RGB(255, 255, 255)};
    // Cancel, the same size, or No to cutting the picture all yield nothing, told by a beep.
    const bool asked = RunCanvasDialog(hwnd(), now.width, now.height, choice) &&
                       (choice.width != now.width || choice.height != now.height);
    const bool cuts = asked && (choice.width < now.width || choice.height < now.height);
    if (!asked || (cuts && Ask(4102, L"", MB_YESNO | MB_ICONQUESTION) != IDYES) ||
        !EditImage(2073, false, [&](mif& image, const ViewRect&) {
            return ResizeCanvas(image, choice.width, choice.height, choice.anchor, choice.background);
        }))
        MessageBeep(MB_OK);
}

void CMainFrame::ReduceColoursCommand() {
    if (!ViewImage()) return;
    QuantizeChoice choice{lastQuantizeMethod_, lastQuantizeCount_};
    if (!RunQuantizeDialog(hwnd(), choice)) return;
    lastQuantizeMethod_ = choice.method;
    lastQuantizeCount_ = choice.count;
    EditImage(2053, false, [&](mif& image, const ViewRect&) { return ReduceColours(image, choice.method, choice.count); });
}

void CMainFrame::EditPalette() {
    HGLOBAL shown = ViewImage();
    if (!shown) return;
    const mif image(shown);
    if (image.empty() || image.depth() > 8) return;
    const std::vector<Rgbq> before(image.palette().begin(), image.palette().end());
    std::vector<Rgbq> table = before;
    // An unchanged table is no step.
    if (!RunPaletteDialog(hwnd(), table) || table == before) return;
    EditImage(2054, false, [&](mif& picture, const ViewRect&) { return picture.replace_palette(table); });
}

}  // namespace lx
