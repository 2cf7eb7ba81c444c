// CViewFrame: the image viewer's top-level window ("LXIMAGEVIEW_FRAME", resource 5).
//
// It shows one file at a time in the image view (child 21), with the folder's thumbnail list
// (child 23) at the right of or below the picture and the information pane (child 6) at the
// left. Files are decoded by the loader thread only; the frame shows what comes back, matching
// results to requests by their tick-count stamp.
//
// Window tree: rebar (59392) at the top, status bar (59393) at the bottom, and between them the
// outer splitter (59648: information pane | picture area). The picture area is one of two inner
// splitters (both 59649): a vertical one when the list is at the right, a horizontal one when
// it is below. The image view and the list are re-parented between them when the placement
// changes.
#pragma once

#include <windows.h>

#include <memory>
#include <span>
#include <string>

#include "BusyAnimation.h"
#include "CommandLine.h"
#include "CommandBar.h"
#include "FrameRunner.h"
#include "GdiObjects.h"
#include "InformationView.h"
#include "LoaderThread.h"
#include "Splitter.h"
#include "StatusBar.h"
#include "ThumbnailListView.h"
#include "ViewerRules.h"
#include "Window.h"

namespace lx {

class CViewFrame : public TopFrame, public MappedWindow<CViewFrame> {
public:
    static std::span<const MessageEntry<CViewFrame>> Messages();
    static constexpr wchar_t kClassName[] = L"LXIMAGEVIEW_FRAME";

    CViewFrame();
    ~CViewFrame() override;

    HWND Create(int showCmd) override;
    void OpenStartup(const std::wstring& path) override;

    // Non-zero when a load was started.
    int Open(const std::wstring& path, bool listFolder);

    // The registered message the loader posts its result with.
    static UINT LoadCompletedMessage();

protected:
    // The loader's registered message has no fixed number for the table.
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    // Creation and layout (ViewFrame.cpp).
    LRESULT OnCreate(WPARAM, LPARAM);
    LRESULT OnSize(WPARAM, LPARAM);
    LRESULT OnClose(WPARAM, LPARAM);
    LRESULT OnDestroy(WPARAM, LPARAM);
    LRESULT OnNotify(WPARAM, LPARAM);
    LRESULT OnCommand(WPARAM, LPARAM);
    LRESULT OnDropFiles(WPARAM, LPARAM);
    LRESULT OnInitMenuPopup(WPARAM, LPARAM);
    LRESULT OnSetFocus(WPARAM, LPARAM);
    LRESULT OnLoadCompleted(WPARAM, LPARAM);
    void CreatePanes();
    void PlaceList();
    int ListPaneSize() const;
    Splitter& ImageArea() { return record_.listBelow ? belowSplitter_ : rightSplitter_; }
    void LayoutChildren();
    void ShowImage(HGLOBAL image);
    void ClearImage();
    void UpdateZoomPane();
    void OnViewNotify(const NMHDR* header);
    void OnListNotify(NMHDR* header, LRESULT& result);
    void SaveSettings();
    void LoadRecentFiles();
    void SaveRecentFiles();
    void RebuildRecentMenu();

    // Commands (ViewFrameCommands.cpp).
    bool RunCommand(UINT id);
    void OpenWithDialog();
    void OpenFolderWithDialog();
    void DeleteCurrent();
    void Step(bool forward);
    void Rotate(int code);
    void SelectBySize();
    void ToggleList();
    void SwapListPlacement();
    void ToggleInformation();
    void HandOver(UINT command);
    // Grays what cannot run now (no picture, one file, a tool not built) in the menu and on
    // the tool bar.
    void UpdateCommandStates();
    void OpenRecent(size_t index);
    void Print();
    void CopyToClipboard();

    std::wstring currentPath_;
    DWORD requestStamp_ = 0;
    SIZE imageSize_{};
    CLoaderThread loader_;
    std::unique_ptr<BusyAnimation> busyAnimation_;
    CThumbnaiListView thumbnailList_;
    CInformationView informationView_;
    HWND zoomView_ = nullptr;
    RecentFiles recentFiles_;
    ImageInfoRecord record_;
    CommandBar commandBar_;
    StatusBar statusBar_;
    Splitter outerSplitter_;
    Splitter rightSplitter_;   // list at the right of the picture
    Splitter belowSplitter_;   // list below the picture
    Icon paneIcons_[3];
    HACCEL accelerators_ = nullptr;
};

// The viewer's frame, for the frame runner (the module hands this factory in).
std::unique_ptr<TopFrame> MakeViewerFrame();

}  // namespace lx
