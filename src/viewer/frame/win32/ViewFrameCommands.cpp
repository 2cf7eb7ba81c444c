// The viewer's commands: what each menu item, tool-bar button and accelerator does.
#include <shlwapi.h>

#include "CoreServices.h"
#include "DialogHelpers.h"
#include "DibGlobal.h"
#include "FileOperations.h"
#include "ImageClipboard.h"
#include "ImagePrint.h"
#include "ImageTypes.h"
#include "ModuleResources.h"
#include "PathNames.h"
#include "SelectFolderDlg.h"
#include "SizeClipDialog.h"
#include "ViewFrame.h"
#include "ZoomView.h"
#include "mif.h"

namespace lx {
namespace {

constexpr UINT kFirstRecent = 0xE110;
constexpr UINT kOpenFolderCommand = 2007;

// The first viewable file of `folder` in the list's order (the shell's logical name order);
// empty when there is none.
std::wstring FirstViewableFile(const std::wstring& folder) {
    wchar_t pattern[kPathChars];
    if (!PathCombineW(pattern, folder.c_str(), L"*.*")) return {};
    WIN32_FIND_DATAW data{};
    HANDLE search = FindFirstFileW(pattern, &data);
    if (search == INVALID_HANDLE_VALUE) return {};
    std::wstring first;
    do {
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) || ImageTypeFromPath(data.cFileName) == kImageUnknown)
            continue;
        if (first.empty() || StrCmpLogicalW(data.cFileName, first.c_str()) < 0) first = data.cFileName;
    } while (FindNextFileW(search, &data));
    FindClose(search);
    wchar_t full[kPathChars];
    if (first.empty() || !PathCombineW(full, folder.c_str(), first.c_str())) return {};
    return full;
}
constexpr UINT kLastRecent = 0xE11F;

// Zoom commands of the menu and the view's zoom command numbers.
constexpr struct {
    UINT command;
    ZoomCommand zoom;
} kZoomCommands[] = {
    {2121, kZoomOriginal}, {2122, kZoomWhole},    {2123, kZoomIn},
    {2124, kZoomOut},      {2125, kZoomFitWidth}, {2126, kZoomFitHeight},
};

// The tools the viewer hands its file to, each started as a new call of this module. A tool
// whose frame is not built in yet would only open an empty window: its hand-over cannot start
// (the command is grayed, a key for it only beeps, and the viewer keeps its window and picture).
constexpr struct {
    UINT command;
    const wchar_t* entry;
    bool closesViewer;  // the slide show replaces the viewer; the editor opens beside it
    bool frameBuilt;
} kHandOvers[] = {
    {2107, L"slideRun", true, true},
    {2109, L"pxfRun", false, true},
};

}  // namespace

void CViewFrame::UpdateCommandStates() {
    const bool shown = imageSize_.cx > 0;
    const bool several = thumbnailList_.Count() > 1;
    const struct {
        UINT id;
        bool enabled;
    } rules[] = {{2005, shown}, {2009, !currentPath_.empty()}, {2031, shown}, {2033, shown}, {2034, shown},
                 {2035, shown}, {2081, shown}, {2082, shown}, {2014, several}, {2015, several}};
    for (const auto& rule : rules) commandBar_.EnableCommand(rule.id, rule.enabled);
    for (const auto& target : kHandOvers) commandBar_.EnableCommand(target.command, target.frameBuilt && shown);
}

bool CViewFrame::RunCommand(UINT id) {
    for (const auto& z : kZoomCommands)
        if (z.command == id) {
            SendMessageW(zoomView_, kZvZoomCommand, static_cast<WPARAM>(z.zoom), 0);
            UpdateZoomPane();
            return true;
        }
    if (id >= kFirstRecent && id <= kLastRecent) {
        OpenRecent(id - kFirstRecent);
        return true;
    }
    switch (id) {
    case 2001: PostMessageW(hwnd(), WM_CLOSE, 0, 0); return true;
    case 2005: Print(); return true;
    case 2006: OpenWithDialog(); return true;
    case kOpenFolderCommand: OpenFolderWithDialog(); return true;
    case 2009: DeleteCurrent(); return true;
    case 2014: Step(false); return true;
    case 2015: Step(true); return true;
    case 2031: CopyToClipboard(); return true;
    case 2033: {
        RECT all{0, 0, imageSize_.cx, imageSize_.cy};
        SendMessageW(zoomView_, kZvSetSelection, 0, reinterpret_cast<LPARAM>(&all));
        return true;
    }
    case 2034: {
        RECT none{};
        SendMessageW(zoomView_, kZvSetSelection, 0, reinterpret_cast<LPARAM>(&none));
        return true;
    }
    case 2035: SelectBySize(); return true;
    case 2064:
    case 2065: {
        ZoomViewSettings tool;
        tool.mask = kSettingsTool;
        tool.tool = id == 2064 ? kToolHand : kToolSelect;
        SendMessageW(zoomView_, kZvApplySettings, 0, reinterpret_cast<LPARAM>(&tool));
        return true;
    }
    case 2081: Rotate(1); return true;
    case 2082: Rotate(0); return true;
    case 2105: ToggleList(); return true;
    case 2106: SwapListPlacement(); return true;
    case 2107:
    case 2109: HandOver(id); return true;
    case 2108:
        informationView_.Show(currentPath_, reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvGetImage, 0, 0)));
        return true;
    case 2120: {
        const LRESULT options = SendMessageW(zoomView_, kZvGetOptions, 0, 0);
        SendMessageW(zoomView_, kZvSetOptions, options == 1 ? 3 : 1, 0);
        return true;
    }
    case 5511: ToggleInformation(); return true;
    }
    return false;
}

void CViewFrame::OpenWithDialog() {
    wchar_t path[kPathChars] = {};
    lstrcpynW(path, currentPath_.c_str(), kPathChars);
    if (ShowImageFileDialog(hwnd(), 0, 4092, path, true)) Open(path, true);
}

// A folder chosen in the folder dialog shows its first picture with the folder listed.
void CViewFrame::OpenFolderWithDialog() {
    const std::wstring folder = SelectFolderPath(hwnd(), currentPath_.empty() ? L"" : FolderOf(currentPath_));
    if (folder.empty()) return;
    const std::wstring first = FirstViewableFile(folder);
    if (first.empty() || !Open(first, true)) statusBar_.SetText(0, LoadResString(4088));
}

void CViewFrame::DeleteCurrent() {
    if (currentPath_.empty() || !PathFileExistsW(currentPath_.c_str())) return;
    const std::wstring question = FormatWithArgument(LoadResString(4138), TitleFileName(currentPath_));
    const std::wstring caption = LoadResString(5);
    if (MessageBoxW(hwnd(), question.c_str(), caption.c_str(), MB_YESNO | MB_ICONQUESTION) != IDYES) return;
    const std::wstring path = currentPath_;
    if (GetKeyState(VK_SHIFT) < 0)
        ShellDeleteFiles(hwnd(), ShellPathList(path).c_str(), FOF_ALLOWUNDO);
    else
        DeleteOneFile(path.c_str());
    if (PathFileExistsW(path.c_str())) return;
    const int count = thumbnailList_.Count();
    if (count <= 1) {
        PostMessageW(hwnd(), WM_CLOSE, 0, 0);
        return;
    }
    InvalidateRect(zoomView_, nullptr, TRUE);
    int deleted = thumbnailList_.SelectedIndex();
    if (deleted < 0 || _wcsicmp(thumbnailList_.PathAt(deleted).c_str(), path.c_str()) != 0)
        deleted = thumbnailList_.Find(path);
    if (deleted < 0) return;
    thumbnailList_.RemoveAt(deleted);
    const int next = IndexAfterDelete(deleted, count);
    if (next >= 0) Open(thumbnailList_.PathAt(next), false);
}

void CViewFrame::Step(bool forward) {
    const int count = thumbnailList_.Count();
    const int selected = thumbnailList_.SelectedIndex();
    const int target = forward ? NextIndex(selected, count) : PreviousIndex(selected, count);
    if (target < 0) return;
    std::wstring path = thumbnailList_.PathAt(target);
    if (path.size() >= kPathChars) path.resize(kPathChars - 1);
    Open(path, false);
}

void CViewFrame::Rotate(int code) {
    auto* shown = reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvGetImage, 0, 0));
    if (!shown) return;
    mif image(shown);
    if (!image.rotate(code)) return;
    if (HGLOBAL rotated = ReleaseToGlobal(image.detachdib())) ShowImage(rotated);
}

void CViewFrame::SelectBySize() {
    if (!imageSize_.cx) return;
    RECT selection{};
    if (RunSizeClipDialog(hwnd(), imageSize_, selection))
        SendMessageW(zoomView_, kZvSetSelection, 0, reinterpret_cast<LPARAM>(&selection));
}

void CViewFrame::CopyToClipboard() {
    RECT selection{};
    SendMessageW(zoomView_, kZvGetSelection, 0, reinterpret_cast<LPARAM>(&selection));
    PutImageOnClipboard(hwnd(), reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvGetImage, 0, 0)), selection);
}

void CViewFrame::Print() {
    PrintImage(hwnd(), reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvGetImage, 0, 0)),
               TitleFileName(currentPath_));
}

void CViewFrame::ToggleList() {
    Splitter& area = ImageArea();
    record_.listShown = area.ShownOnly() >= 0;
    area.ShowOnly(record_.listShown ? -1 : 0);
}

void CViewFrame::SwapListPlacement() {
    record_.listBelow = !record_.listBelow;
    record_.listSize = -1;
    PlaceList();
}

void CViewFrame::ToggleInformation() {
    outerSplitter_.ShowOnly(outerSplitter_.ShownOnly() < 0 ? 1 : -1);
    record_.infoShown = outerSplitter_.ShownOnly() < 0;
}

void CViewFrame::HandOver(UINT command) {
    if (currentPath_.empty() || !PathFileExistsW(currentPath_.c_str())) return;
    for (const auto& target : kHandOvers) {
        if (target.command != command) continue;
        if (!target.frameBuilt) {
            MessageBeep(MB_ICONWARNING);
            return;
        }
        // The viewer closes only when the other tool really started: the user keeps a window.
        if (RunThisModule(hwnd(), target.entry, currentPath_.c_str(), L"/image") && target.closesViewer)
            PostMessageW(hwnd(), WM_CLOSE, 0, 0);
    }
}

void CViewFrame::OpenRecent(size_t index) {
    if (index >= recentFiles_.Paths().size()) return;
    const std::wstring path = recentFiles_.Paths()[index];
    if (!PathFileExistsW(path.c_str())) {
        recentFiles_.Remove(index);
        RebuildRecentMenu();
        return;
    }
    Open(path, true);
}

}  // namespace lx
