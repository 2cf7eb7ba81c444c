// The editor's commands: what each menu item, tool-bar button and accelerator does.
#include <shlwapi.h>

#include "DialogHelpers.h"
#include "EditorDialogs.h"
#include "ImageClipboard.h"
#include "ImageFormats.h"
#include "ImagePrint.h"
#include "MainFrame.h"
#include "MainFrameEdit.h"
#include "ModuleResources.h"
#include "SizeClipDialog.h"
#include "StatusTexts.h"
#include "ZoomView.h"
#include "mif.h"

namespace lx {
namespace {

constexpr struct {
    UINT command;
    ZoomCommand zoom;
} kZoomCommands[] = {
    {2121, kZoomOriginal}, {2122, kZoomWhole},    {2123, kZoomIn},
    {2124, kZoomOut},      {2125, kZoomFitWidth}, {2126, kZoomFitHeight},
};

MifRect ToMifRect(const ViewRect& r) { return {r.left, r.top, r.right, r.bottom}; }

}  // namespace

bool CMainFrame::RunCommand(UINT id) {
    if (const auto recent = recent_.IndexOfCommand(id)) {
        OpenRecent(*recent);
        return true;
    }
    const EditorCommand* command = FindEditorCommand(id);
    if (!command) return false;
    // The menu may be stale and a key never looks at it: a disabled command does nothing.
    if (!CommandEnabled(*command, CurrentState())) return true;
    if (!command->built) {
        MessageBeep(MB_ICONWARNING);
        return true;
    }
    for (const auto& z : kZoomCommands)
        if (z.command == id) {
            SendMessageW(zoomView_, kZvZoomCommand, static_cast<WPARAM>(z.zoom), 0);
            UpdateZoomPane();
            navigator_.Refresh();
            return true;
        }
    switch (id) {
    case 2001: PostMessageW(hwnd(), WM_CLOSE, 0, 0); break;
    case 2002: SaveAs(); break;
    case 2003: SaveAsWallpaper(); break;
    case 2005: Print(); break;
    case 2006: OpenWithDialog(); break;
    case 2008: Save(); break;
    case 2010: NewImage(); break;
    case 2013: OpenClipboardCommand(); break;
    case 2014: StepInFolder(false); break;
    case 2015: StepInFolder(true); break;
    case 2031: CopyToClipboard(); break;
    case 2032: Paste(); break;
    case 2033: document_.SelectAll(); break;
    case 2034: document_.ClearSelection(); break;
    case 2035: SelectBySize(); break;
    case 2036: document_.Undo(); break;
    case 2053: ReduceColoursCommand(); break;
    case 2054: EditPalette(); break;
    case 2071: ImageSize(); break;
    case 2073: CanvasSize(); break;
    case 2051: EditImage(id, true, [](mif& image, const ViewRect&) { return image.setdepth(24); }); break;
    case 2055: CountColours(); break;
    case 2072:
        EditImage(id, false, [](mif& image, const ViewRect& s) {
            const MifRect part = ToMifRect(s);
            return !s.empty() && image.crop(&part);
        });
        break;
    case 2081: EditImage(id, false, [](mif& image, const ViewRect&) { return image.rotate(1); }); break;
    case 2082: EditImage(id, false, [](mif& image, const ViewRect&) { return image.rotate(0); }); break;
    // Within the selection (all zero without one: the whole picture); the selection stays.
    case 2083:
        EditImage(id, true, [](mif& image, const ViewRect& s) { return image.mirror(s.left, s.top, s.width(), s.height()); });
        break;
    case 2084:
        EditImage(id, true, [](mif& image, const ViewRect& s) { return image.flip(s.left, s.top, s.width(), s.height()); });
        break;
    case 2103: ToggleSmallButtons(); break;
    case 2104: ToggleNavigator(); break;
    case 2110: RunSetup(); break;
    case 2113: ToggleGrid(); break;
    case 57664: RunAboutBox(hwnd()); break;
    }
    return true;
}

// The new picture replaces the document; the one it replaces becomes its first undo step.
void CMainFrame::NewImage() {
    if (!AskToSave(true)) return;
    document_.ClearUndo();
    NewImageSettings settings;
    if (!RunNewImageDialog(hwnd(), settings)) return;
    HGLOBAL image = CreateNewImage(settings);
    if (!image) {
        Ask(4172, L"", MB_OK | MB_ICONERROR);
        return;
    }
    const bool empty = !ViewImage();
    if (!document_.Commit(image, 2010, true, false)) return;
    path_.clear();
    fileType_ = kImageBmp;
    if (empty) SendMessageW(zoomView_, kZvSetZoom, kZoomFull, 0);
    SetWindowTextW(hwnd(), LoadResString(4).c_str());
}

void CMainFrame::CopyToClipboard() {
    RECT selection{};
    SendMessageW(zoomView_, kZvGetSelection, 0, reinterpret_cast<LPARAM>(&selection));
    PutImageOnClipboard(hwnd(), ViewImage(), selection, ClipboardForms::WithBitmap);
}

void CMainFrame::SelectBySize() {
    const ImageFacts& facts = document_.Facts();
    if (!ViewImage()) return;
    RECT selection{};
    if (RunSizeClipDialog(hwnd(), {facts.width, facts.height}, selection))
        SetSelection({selection.left, selection.top, selection.right, selection.bottom});
}

void CMainFrame::CountColours() {
    HGLOBAL shown = ViewImage();
    if (!shown) return;
    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const int colours = mif(shown).countcolors();
    SetCursor(previous);
    Ask(4100, std::to_wstring(colours), MB_OK | MB_ICONINFORMATION);
}

void CMainFrame::Print() {
    if (HGLOBAL shown = ViewImage()) PrintImage(hwnd(), shown, path_.empty() ? LoadResString(4) : TitleFileName(path_));
}

void CMainFrame::ToggleGrid() {
    ZoomViewSettings grid;
    grid.mask = kSettingsGridShown;
    SendMessageW(zoomView_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&grid));
    grid.gridShown = grid.gridShown ? 0 : 1;
    SendMessageW(zoomView_, kZvApplySettings, 0, reinterpret_cast<LPARAM>(&grid));
}

void CMainFrame::ToggleNavigator() {
    navigator_.Show(!navigator_.Shown());
    navigator_.Refresh();
}

void CMainFrame::ToggleSmallButtons() {
    options_ ^= kOptionSmallButtons;
    ApplyButtonSize();
}

void CMainFrame::RunSetup() {
    ZoomViewSettings view;
    view.size = sizeof view;
    view.mask = 99;
    SendMessageW(zoomView_, kZvReadSettings, 0, reinterpret_cast<LPARAM>(&view));
    SetupValues values{ZoomRuleOf(options_), view.gridStep, static_cast<int32_t>(view.options),
                       (options_ & kOptionSmallButtons) != 0};
    if (!RunSetupDialog(hwnd(), values)) return;
    view.gridStep = values.gridStep;
    view.options = static_cast<uint32_t>(values.viewOptions);
    SendMessageW(zoomView_, kZvApplySettings, 0, reinterpret_cast<LPARAM>(&view));
    options_ = OptionsWithZoomRule(options_, values.zoomRule);
    if (values.smallButtons != ((options_ & kOptionSmallButtons) != 0)) ToggleSmallButtons();
}

}  // namespace lx
