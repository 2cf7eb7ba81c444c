// CMainFrame: the photo editor's top-level window ("LXPHOTOEDIT_FRAME", resource 4: caption
// "フォト レタッチ", menu and accelerators).
//
// Window tree: rebar (59392: tool bar and menu bar) at the top, status bar (59393) at the
// bottom, the image view (child 21, "NCCZoomView") between them, and the floating navigator.
// The picture lives in the view; everything that makes it a document (its path and file
// type, the undo list, the modified state) is the EditorDocument this frame hosts. Commands
// are enabled on idle from the command table (EditorCommands.h).
//
// Settings (section "MainEditor"): "WndPos" (the frame's placement), "ZoomViewInfo" (the view
// settings record, zoom at byte 48), "NaviPos" (the navigator), "DisplayStatus" (the option
// word); each record is used only when exactly its size is read back. The recent documents
// are kept under "Recent Document List".
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "CommandBar.h"
#include "EditorCommands.h"
#include "EditorDocument.h"
#include "FrameRunner.h"
#include "GdiObjects.h"
#include "NaviWindow.h"
#include "RecentDocuments.h"
#include "StatusBar.h"
#include "Window.h"
#include "mif.h"

namespace lx {

class CMainFrame : public TopFrame, public MappedWindow<CMainFrame>, private DocumentHost {
public:
    static std::span<const MessageEntry<CMainFrame>> Messages();
    static constexpr wchar_t kClassName[] = L"LXPHOTOEDIT_FRAME";

    CMainFrame();
    ~CMainFrame() override;

    HWND Create(int showCmd) override;
    void OpenStartup(const std::wstring& commandLine) override;

    // Opens a file path (quoted or not) or "/clip"; 1 when a document was opened, else 0.
    int Open(const std::wstring& argument);

private:
    // Creation, layout, settings (MainFrame.cpp).
    LRESULT OnCreate(WPARAM, LPARAM);
    LRESULT OnSize(WPARAM, LPARAM);
    LRESULT OnClose(WPARAM, LPARAM);
    LRESULT OnDestroy(WPARAM, LPARAM);
    LRESULT OnNotify(WPARAM, LPARAM);
    LRESULT OnCommand(WPARAM, LPARAM);
    LRESULT OnDropFiles(WPARAM, LPARAM);
    LRESULT OnInitMenuPopup(WPARAM, LPARAM);
    LRESULT OnContextMenu(WPARAM, LPARAM);
    LRESULT OnSetFocus(WPARAM, LPARAM);
    void CreateView();
    void LayoutChildren();
    void SaveSettings();
    void UpdateZoomPane();
    void OnViewNotify(const NMHDR* header);
    // Enables and checks every command of the table for the present state.
    void UpdateCommandStates();
    void ApplyButtonSize();

    // Opening (MainFrameOpen.cpp).
    bool OpenClipboard();
    bool OpenFile(const std::wstring& path);
    // Decodes `path`, reduced to 256 colours on a display of 8 bits or fewer, and shows it;
    // false when it cannot be read.
    bool LoadForDisplay(const std::wstring& path);
    void ShowLoaded(HGLOBAL image);
    // The modified-document question; false when the user cancelled (Cancel only with
    // `withCancel`).
    bool AskToSave(bool withCancel);
    void OpenWithDialog();
    void OpenClipboardCommand();
    void OpenRecent(size_t index);
    void StepInFolder(bool forward);
    void LoadRecentDocuments();
    void SaveRecentDocuments();
    void RebuildRecentMenu();

    // Saving (MainFrameSave.cpp).
    bool Save();
    bool SaveAs();
    // Writes `image` to `path` as `type` after Write's checks; false when a check said no or
    // the write failed.
    bool Write(HGLOBAL image, const std::wstring& path, int type);
    void SaveAsWallpaper();
    void ShowSaveFailure(const std::wstring& path);
    int Ask(UINT textId, const std::wstring& argument, UINT flags);

    // Commands (MainFrameCommands.cpp).
    bool RunCommand(UINT id);
    void ZoomCommand(UINT id);
    // Runs a mif operation on a copy of the picture and commits it as an undo step of `id`;
    // false when there is no picture or the operation yields nothing (nothing changes then).
    template <typename Operation>
    bool EditImage(UINT id, bool restoreSelection, Operation operation);
    void NewImage();
    void CopyToClipboard();
    void SelectBySize();
    void CountColours();

    // Image operations with a dialog (MainFrameImage.cpp).
    void ImageSize();
    void CanvasSize();
    void ReduceColoursCommand();
    void EditPalette();

    // Paste (MainFramePaste.cpp).
    void Paste();
    // Floats the picture over the view for the user to place; its top-left in image pixels,
    // or nothing when the user gave up.
    std::optional<POINT> PlaceByHand(const mif& picture);
    void ToggleGrid();
    void ToggleNavigator();
    void ToggleSmallButtons();
    void RunSetup();
    void Print();
    EditorState CurrentState() const;

    // DocumentHost: the view, the panes and the navigator (MainFrame.cpp).
    ViewRect Selection() override;
    void SetSelection(const ViewRect& selection) override;
    ImageHandle ShownImage() override;
    ImageHandle ReplaceImage(ImageHandle image) override;
    ImageHandle CopyImage(ImageHandle image) override;
    void FreeImage(ImageHandle image) override;
    ImageFacts Facts(ImageHandle image) override;
    void ShowFacts(const std::wstring& sizeText, const std::wstring& depthText) override;
    void ShowInNavigator(ImageHandle image) override;
    std::wstring CommandText(int commandId) override;

    HGLOBAL ViewImage() const;
    void SetTitle(const std::wstring& nameOrPath);

    EditorDocument document_;
    std::wstring path_;
    int fileType_ = 0;
    uint32_t options_ = 0;
    int savedZoom_ = 1000;
    HWND zoomView_ = nullptr;
    CommandBar commandBar_;
    StatusBar statusBar_;
    CNaviWindow navigator_;
    RecentDocuments recent_;
    Icon paneIcons_[3];
    HACCEL accelerators_ = nullptr;
    HMENU contextMenu_ = nullptr;  // a popup of the command bar's menu
    int lastResampleMethod_ = 2;   // the image-size dialog starts from the last choice
    int lastCubic_ = 5;
    int lastQuantizeMethod_ = 1;
    int lastQuantizeCount_ = 256;
};

// The editor's frame, for the frame runner (the module hands this factory in).
std::unique_ptr<TopFrame> MakeEditorFrame();

}  // namespace lx
