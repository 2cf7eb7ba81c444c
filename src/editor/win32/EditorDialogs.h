// The editor's own dialogs: the setup dialog (CSetupDlg), the new-image dialog (CNewImageDlg)
// and the about box.
#pragma once

#include <windows.h>

#include <cstdint>

namespace lx {

// What the setup dialog shows and changes: the zoom rule for newly opened images (0 original
// size, 1 original size unless larger than the view, 2 the last zoom), two values of the
// view's settings record (grid step, option word) and the small tool-bar buttons.
struct SetupValues {
    int zoomRule = 1;
    int32_t gridStep = 16;
    int32_t viewOptions = 0;
    bool smallButtons = false;
};
// True when confirmed, with `values` changed.
bool RunSetupDialog(HWND owner, SetupValues& values);

// The "NewImage" record under "Edit": 12 bytes.
struct NewImageSettings {
    int32_t width = 640;
    int32_t height = 480;
    int32_t depthAndFill = 24 | kFillWhite;  // bits per pixel in the low byte, kFillWhite
    static constexpr int32_t kFillWhite = 0x100;
};
static_assert(sizeof(NewImageSettings) == 12);

// Reads the stored record, shows the dialog, stores the record on OK; true then.
bool RunNewImageDialog(HWND owner, NewImageSettings& settings);
// A new picture as a packed DIB block (the caller's); null when the size is not one the
// editor takes or memory runs out.
HGLOBAL CreateNewImage(const NewImageSettings& settings);

void RunAboutBox(HWND owner);

}  // namespace lx
