// The dialogs of the editor's image operations: image size (CZoomDlg), canvas size
// (CResizeDlg with its anchor), colour reduction (CQuantizeDlg) and the colour table editor
// (CPalEditDlg). Each refuses a bad number by a beep and the focus on its box; each returns
// true only when confirmed, with the choice filled in.
#pragma once

#include <windows.h>

#include <vector>

#include "PackedDib.h"

namespace lx {

struct ImageSizeChoice {
    int width = 0;   // pixels
    int height = 0;
    int method = 0;  // list 4137: 0 nearest, 1 linear, 2 cubic
    int cubic = 5;   // the cubic kernel's parameter, 0 (smooth) to 9 (sharp)
};
// Starts from the present size; `depth` is only shown.
bool RunImageSizeDialog(HWND owner, int width, int height, int depth, ImageSizeChoice& choice);

struct CanvasChoice {
    int width = 0;
    int height = 0;
    int anchor = 4;               // cell 0..8
    COLORREF background = 0xFFFFFF;
};
bool RunCanvasDialog(HWND owner, int width, int height, CanvasChoice& choice);

struct QuantizeChoice {
    int method = 1;   // list 4133
    int count = 256;  // 2 to 256
};
bool RunQuantizeDialog(HWND owner, QuantizeChoice& choice);

// Shows `table` (at most 256 entries) as a grid; the user picks an entry and changes its
// colour with the system colour dialog. True on OK with `table` changed.
bool RunPaletteDialog(HWND owner, std::vector<Rgbq>& table);

}  // namespace lx
