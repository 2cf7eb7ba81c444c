#include "ThumbnailListView.h"

#include <objidl.h>  // gdiplus.h needs it under WIN32_LEAN_AND_MEAN
#include <gdiplus.h>
#include <shlwapi.h>
#include <windowsx.h>

#include <algorithm>

#include "CoreServices.h"
#include "ImageTypes.h"
#include "ModuleResources.h"
#include "Thumbnail.h"
#include "ThumbnailLayout.h"

namespace lx {
namespace {

constexpr UINT_PTR kSubclassId = 23;

RECT ToRect(const LayoutRect& r) { return {r.left, r.top, r.right, r.bottom}; }

bool IsSet(HANDLE event) { return event && WaitForSingleObject(event, 0) == WAIT_OBJECT_0; }

// Waits for `thread` while still answering messages sent to this thread's windows: the
// listing thread may be inside its synchronous SendMessageW to the list when it is told to
// stop, and would otherwise wait for us while we wait for it.
void WaitAnsweringSentMessages(HANDLE thread) {
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1) {
        MSG msg;
        PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

void FillSolid(HDC dc, const RECT& rc, COLORREF colour) {
    SetBkColor(dc, colour);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &rc, nullptr, 0, nullptr);
}

// The selection box: white, corners of radius 6, anti-aliased against the list's grey.
void FillRoundedWhite(HDC dc, const RECT& rc) {
    Gdiplus::Graphics graphics(dc);
    if (graphics.GetLastStatus() != Gdiplus::Ok) {
        SelectScope brush(dc, GetStockObject(WHITE_BRUSH)), pen(dc, GetStockObject(NULL_PEN));
        RoundRect(dc, rc.left, rc.top, rc.right + 1, rc.bottom + 1, 12, 12);
        return;
    }
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
    const float d = 12.0f, l = static_cast<float>(rc.left), t = static_cast<float>(rc.top);
    const float r = static_cast<float>(rc.right), b = static_cast<float>(rc.bottom);
    Gdiplus::GraphicsPath path;
    path.AddArc(l, t, d, d, 180, 90);
    path.AddArc(r - d, t, d, d, 270, 90);
    path.AddArc(r - d, b - d, d, d, 0, 90);
    path.AddArc(l, b - d, d, d, 90, 90);
    path.CloseFigure();
    Gdiplus::SolidBrush white(Gdiplus::Color(255, 255, 255, 255));
    graphics.FillPath(&white, &path);
}

}  // namespace

CThumbnaiListView::CThumbnaiListView() {
    listUpDone_ = RegisterWindowMessageW(L"lxi_listupdone");
    imageLoaded_ = RegisterWindowMessageW(L"lxi_imageloaded");
    getDragImage_ = RegisterWindowMessageW(L"ShellGetDragImage");
    thumbnailsGo_ = CreateEventW(nullptr, TRUE, TRUE, nullptr);
}

CThumbnaiListView::~CThumbnaiListView() {
    if (hwnd_) DestroyWindow(hwnd_);
    Clear();
    if (gdiplusToken_) Gdiplus::GdiplusShutdown(gdiplusToken_);
    if (thumbnailsGo_) CloseHandle(thumbnailsGo_);
}

bool CThumbnaiListView::Create(HWND parent, int id) {
    if (hwnd_) return false;
    // The frame runs GDI+ already; starting it again here only counts up, and lets the list
    // draw its rounded selection wherever it is hosted.
    Gdiplus::GdiplusStartupInput input;
    if (!gdiplusToken_ && Gdiplus::GdiplusStartup(&gdiplusToken_, &input, nullptr) != Gdiplus::Ok) gdiplusToken_ = 0;
    hwnd_ = CreateWindowExW(0, WC_LISTVIEWW, L"",
                            WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | LVS_ICON | LVS_SINGLESEL |
                                LVS_SHOWSELALWAYS | LVS_AUTOARRANGE,
                            0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ModuleInstance(),
                            nullptr);
    if (!hwnd_) return false;
    ListView_SetExtendedListViewStyleEx(hwnd_, LVS_EX_DOUBLEBUFFER, LVS_EX_DOUBLEBUFFER);
    SetWindowSubclass(hwnd_, SubclassProc, kSubclassId, reinterpret_cast<DWORD_PTR>(this));
    SetUpCells();
    shadowImages_ = ImageList(LoadImageListStrip(ModuleInstance(), kShadowPiece, kShadowBitmap, 0, 0xFF00FF));
    return true;
}

void CThumbnaiListView::SetUpCells() {
    ListView_SetTextColor(hwnd_, kBackground);
    ListView_SetBkColor(hwnd_, kBackground);
    ListView_SetTextBkColor(hwnd_, kBackground);
    // One line of the list's font below a blank icon: the cell is 96 by about 90 pixels.
    TEXTMETRICW metrics{};
    {
        WindowDc dc(hwnd_);
        HFONT font = reinterpret_cast<HFONT>(SendMessageW(hwnd_, WM_GETFONT, 0, 0));
        SelectScope useFont(dc.get(), font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
        GetTextMetricsW(dc.get(), &metrics);
    }
    const int height = kCellHeight - (metrics.tmHeight + metrics.tmExternalLeading);
    cellImages_ = ImageList(ImageList_Create(kCellWidth, height, ILC_COLOR24 | ILC_MASK, 1, 0));
    if (!cellImages_) return;
    {
        WindowDc screen(nullptr);
        Bitmap blank(CreateCompatibleBitmap(screen.get(), kCellWidth, height));
        MemoryDc dc(screen.get());
        {
            SelectScope use(dc.get(), blank.get());
            const RECT all{0, 0, kCellWidth, height};
            FillSolid(dc.get(), all, 0xFF00FF);
        }
        ImageList_AddMasked(cellImages_.get(), blank.get(), 0xFF00FF);
    }
    ListView_SetImageList(hwnd_, cellImages_.get(), LVSIL_NORMAL);
    // The spacing runs from one icon's top to the next one's and must leave room for the
    // label as well: with the icon's own height the text line would overlap the next row.
    ListView_SetIconSpacing(hwnd_, kCellWidth, kCellHeight);
}

LRESULT CALLBACK CThumbnaiListView::SubclassProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                                 DWORD_PTR data) {
    auto* self = reinterpret_cast<CThumbnaiListView*>(data);
    bool handled = false;
    const LRESULT result = self->OnMessage(message, wParam, lParam, handled);
    if (handled) return result;
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(hwnd, SubclassProc, kSubclassId);
        self->hwnd_ = nullptr;
    }
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

LRESULT CThumbnaiListView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled) {
    handled = true;
    if (message == listUpDone_) return OnListUpDone(wParam, lParam);
    if (message == imageLoaded_) {
        ListView_RedrawItems(hwnd_, static_cast<int>(lParam), static_cast<int>(lParam));
        return 0;
    }
    // The drag image is supplied by the drag-and-drop piece; until then the shell draws its own.
    if (message == getDragImage_) return 0;
    if (message == WM_MOUSEWHEEL) {
        OnMouseWheel(wParam);
        return 0;
    }
    if (message == WM_DESTROY) Clear();
    handled = false;
    return 0;
}

void CThumbnaiListView::OnMouseWheel(WPARAM wParam) {
    // One cell per notch, along whichever way the list scrolls (down when it stands at the
    // right of the image, across when it lies below it).
    const int notches = -GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA;
    if (notches == 0) return;
    const SIZE cell = ItemSize();
    const bool across = (GetWindowLongW(hwnd_, GWL_STYLE) & WS_VSCROLL) == 0;
    if (across)
        ListView_Scroll(hwnd_, notches * cell.cx, 0);
    else
        ListView_Scroll(hwnd_, 0, notches * cell.cy);
}

LRESULT CThumbnaiListView::OnListUpDone(WPARAM count, LPARAM array) {
    auto* found = reinterpret_cast<std::vector<std::unique_ptr<ViewerListItem>>*>(array);
    // Sent while Clear waits for the thread: the items stay with the thread, which frees them.
    if (!found || found->size() != count || StopRequested()) return -1;
    SendMessageW(hwnd_, WM_SETREDRAW, FALSE, 0);
    currentIndex_ = 0;
    items_ = std::move(*found);
    found->clear();
    ListView_SetItemCount(hwnd_, static_cast<int>(items_.size()));
    for (size_t i = 0; i < items_.size(); ++i) {
        ViewerListItem* item = items_[i].get();
        LVITEMW row{};
        row.mask = LVIF_PARAM | LVIF_IMAGE | LVIF_TEXT;
        row.iItem = static_cast<int>(i);
        row.iImage = 0;
        row.lParam = reinterpret_cast<LPARAM>(item);
        row.pszText = item->findData.cFileName;
        ListView_InsertItem(hwnd_, &row);
        if (!currentFile_.empty() && StrCmpIW(item->path.c_str(), currentFile_.c_str()) == 0)
            currentIndex_ = static_cast<int>(i);
    }
    if (!items_.empty()) ListView_SetItemState(hwnd_, currentIndex_, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    SendMessageW(hwnd_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(hwnd_, nullptr, TRUE);
    if (!items_.empty()) ListView_EnsureVisible(hwnd_, currentIndex_, FALSE);
    return ThumbnailStartIndex(currentIndex_);
}

void CThumbnaiListView::List(const std::wstring& path) {
    Clear();
    if (!hwnd_ || path.empty() || path.size() >= kPathChars) return;
    if (PathIsDirectoryW(path.c_str())) {
        folder_ = path;
        currentFile_.clear();
    } else if (PathFileExistsW(path.c_str())) {
        currentFile_ = path;
        wchar_t folder[kPathChars];
        lstrcpynW(folder, path.c_str(), kPathChars);
        PathRemoveFileSpecW(folder);
        folder_ = folder;
    } else {
        return;
    }
    StartThread(true, 0);
}

void CThumbnaiListView::Clear() {
    StopThread();
    if (hwnd_) ListView_DeleteAllItems(hwnd_);
    items_.clear();
    currentIndex_ = 0;
}

void CThumbnaiListView::HoldThumbnails(bool hold) {
    if (!thumbnailsGo_) return;
    if (hold)
        ResetEvent(thumbnailsGo_);
    else
        SetEvent(thumbnailsGo_);
}

void CThumbnaiListView::StartThread(bool enumerate, int thumbnailStart) {
    enumerate_ = enumerate;
    thumbnailStart_ = thumbnailStart;
    stopEvent_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!stopEvent_) return;
    thread_ = CreateThread(nullptr, 0, ThreadMain, this, CREATE_SUSPENDED, nullptr);
    if (!thread_) {
        CloseHandle(stopEvent_);
        stopEvent_ = nullptr;
        return;
    }
    SetThreadPriority(thread_, THREAD_PRIORITY_BELOW_NORMAL);
    ResumeThread(thread_);
}

void CThumbnaiListView::StopThread() {
    if (thread_) {
        SetEvent(stopEvent_);
        ResumeThread(thread_);
        WaitAnsweringSentMessages(thread_);
        CloseHandle(thread_);
        thread_ = nullptr;
    }
    if (stopEvent_) {
        CloseHandle(stopEvent_);
        stopEvent_ = nullptr;
    }
}

bool CThumbnaiListView::StopRequested() const { return IsSet(stopEvent_); }

DWORD WINAPI CThumbnaiListView::ThreadMain(void* param) {
    auto* self = static_cast<CThumbnaiListView*>(param);
    const HRESULT com = CoInitialize(nullptr);
    int start = self->thumbnailStart_;
    bool go = true;
    if (self->enumerate_) {
        // The thread owns what it finds until the window takes it in "lxi_listupdone".
        std::vector<std::unique_ptr<ViewerListItem>> found;
        self->Enumerate(found);
        go = !self->StopRequested();
        if (go) {
            const LRESULT answer = SendMessageW(self->hwnd_, self->listUpDone_, found.size(), reinterpret_cast<LPARAM>(&found));
            go = answer >= 0 && found.empty();
            start = static_cast<int>(answer);
        }
    }
    if (go) self->MakeThumbnails(start);
    if (SUCCEEDED(com)) CoUninitialize();
    return 0;
}

void CThumbnaiListView::Enumerate(std::vector<std::unique_ptr<ViewerListItem>>& found) {
    wchar_t pattern[kPathChars];
    if (!PathCombineW(pattern, folder_.c_str(), L"*.*")) return;
    WIN32_FIND_DATAW data{};
    HANDLE search = FindFirstFileW(pattern, &data);
    if (search == INVALID_HANDLE_VALUE) return;
    for (;;) {
        if (StopRequested()) break;
        const ImageType type = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? 0 : ImageTypeFromPath(data.cFileName);
        wchar_t full[kPathChars];
        if (type != 0 && found.size() < kMaxListItems && PathCombineW(full, folder_.c_str(), data.cFileName)) {
            // Grows by doubling from one entry.
            if (found.size() == found.capacity()) found.reserve(std::max<size_t>(1, found.capacity() * 2));
            auto item = std::make_unique<ViewerListItem>();
            item->path = full;
            item->fileType = static_cast<uint32_t>(type);
            item->findData = data;
            found.push_back(std::move(item));
        }
        if (!FindNextFileW(search, &data) && GetLastError() != ERROR_MORE_DATA) break;
    }
    FindClose(search);
    if (found.size() > 1)
        std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
            return StrCmpLogicalW(a->path.c_str(), b->path.c_str()) < 0;
        });
}

void CThumbnaiListView::MakeThumbnails(int start) {
    // The window changes items_ only after stopping this thread, so reading it here is safe.
    for (int index : ThumbnailOrder(static_cast<int>(items_.size()), start)) {
        const HANDLE events[] = {stopEvent_, thumbnailsGo_};
        if (thumbnailsGo_ && WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0) return;
        if (StopRequested()) return;
        ViewerListItem* item = items_[static_cast<size_t>(index)].get();
        if (item->thumbnail || (item->flags & kThumbnailFailed)) continue;
        HBITMAP bitmap = MakeThumbnail(item->path);
        BITMAP info{};
        if (!bitmap || !GetObjectW(bitmap, sizeof(info), &info)) {
            if (bitmap) DeleteObject(bitmap);
            item->flags |= kThumbnailFailed;
            continue;
        }
        item->thumbWidth = info.bmWidth;
        item->thumbHeight = info.bmHeight;
        // The size must be seen before the handle by a paint that races this store.
        InterlockedExchangePointer(reinterpret_cast<void**>(&item->thumbnail), bitmap);
        PostMessageW(hwnd_, imageLoaded_, 0, index);
    }
}

int CThumbnaiListView::Find(const std::wstring& path) {
    for (size_t i = 0; i < items_.size(); ++i)
        if (StrCmpIW(items_[i]->path.c_str(), path.c_str()) == 0) {
            Select(static_cast<int>(i));
            return static_cast<int>(i);
        }
    return -1;
}

int CThumbnaiListView::SelectedIndex() const {
    return hwnd_ ? ListView_GetNextItem(hwnd_, -1, LVNI_SELECTED) : -1;
}

std::wstring CThumbnaiListView::PathAt(int index) const {
    const ViewerListItem* item = ItemAt(index);
    return item ? item->path : std::wstring();
}

const ViewerListItem* CThumbnaiListView::ItemAt(int index) const {
    return index >= 0 && index < Count() ? items_[static_cast<size_t>(index)].get() : nullptr;
}

void CThumbnaiListView::Select(int index) {
    if (!hwnd_ || index < 0 || index >= Count()) return;
    ListView_SetItemState(hwnd_, index, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(hwnd_, index, FALSE);
}

void CThumbnaiListView::RemoveAt(int index) {
    if (index < 0 || index >= Count()) return;
    // Only a pass that was still running is resumed; a finished list has nothing left to make.
    const bool wasMaking = thread_ && WaitForSingleObject(thread_, 0) == WAIT_TIMEOUT;
    StopThread();
    if (hwnd_) ListView_DeleteItem(hwnd_, index);
    items_.erase(items_.begin() + index);
    if (!wasMaking) return;
    const bool anyMissing = std::any_of(items_.begin(), items_.end(), [](const auto& item) {
        return !item->thumbnail && !(item->flags & kThumbnailFailed);
    });
    if (anyMissing) StartThread(false, ThumbnailStartIndex(std::max(SelectedIndex(), 0)));
}

SIZE CThumbnaiListView::ItemSize() const {
    if (!hwnd_) return {0, 0};
    // The icon spacing is the cell (see the cell layout). The control's view-rectangle
    // estimate depends on its present size and items, which the frame asks about just when
    // the list moves to a new place.
    const DWORD size = ListView_GetItemSpacing(hwnd_, FALSE);
    return {LOWORD(size), HIWORD(size)};
}

bool CThumbnaiListView::HandleNotify(NMHDR* header, LRESULT& result) {
    if (!header || !hwnd_ || header->hwndFrom != hwnd_ || header->code != static_cast<UINT>(NM_CUSTOMDRAW)) return false;
    auto* draw = reinterpret_cast<NMLVCUSTOMDRAW*>(header);
    switch (draw->nmcd.dwDrawStage) {
    case CDDS_PREPAINT: result = CDRF_NOTIFYITEMDRAW; break;
    case CDDS_ITEMPREPAINT: {
        const int index = static_cast<int>(draw->nmcd.dwItemSpec);
        RECT bounds{};
        if (ListView_GetItemRect(hwnd_, index, &bounds, LVIR_BOUNDS) && RectVisible(draw->nmcd.hdc, &bounds))
            DrawItem(draw->nmcd.hdc, index, ListView_GetItemState(hwnd_, index, LVIS_SELECTED) != 0);
        result = CDRF_SKIPDEFAULT;
        break;
    }
    default: result = CDRF_DODEFAULT; break;
    }
    return true;
}

// The control's own icon and label rectangles add padding that runs past the 90-pixel row
// into the next one; the cell is laid out here instead: picture above, name in the last line.
bool CThumbnaiListView::PictureArea(int index, RECT& area) const {
    RECT bounds{};
    if (!ListView_GetItemRect(hwnd_, index, &bounds, LVIR_BOUNDS)) return false;
    WindowDc screen(hwnd_);
    HFONT font = reinterpret_cast<HFONT>(SendMessageW(hwnd_, WM_GETFONT, 0, 0));
    SelectScope useFont(screen.get(), font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
    TEXTMETRICW metrics{};
    GetTextMetricsW(screen.get(), &metrics);
    area = {bounds.left, bounds.top, bounds.left + kCellWidth, bounds.top + kCellHeight - metrics.tmHeight - 1};
    return true;
}

void CThumbnaiListView::DrawItem(HDC dc, int index, bool selected) {
    const ViewerListItem* item = ItemAt(index);
    RECT icon{};
    if (!item || !PictureArea(index, icon)) return;
    const RECT cell{icon.left, icon.top, icon.left + kCellWidth, icon.top + kCellHeight};
    const RECT label{cell.left + 2, icon.bottom, cell.right - 2, cell.bottom - 1};
    HFONT font = reinterpret_cast<HFONT>(SendMessageW(hwnd_, WM_GETFONT, 0, 0));
    SelectScope useFont(dc, font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
    FillSolid(dc, cell, kBackground);
    HBITMAP thumbnail = item->thumbnail;
    const ThumbSize size = thumbnail ? ThumbSize{item->thumbWidth, item->thumbHeight} : ThumbSize{kThumbnailBox, kThumbnailBox};
    const ItemBoxes boxes = LayOutItem({icon.left, icon.top, icon.right, icon.bottom}, size);
    const RECT background = ToRect(boxes.background), picture = ToRect(boxes.picture), inner = ToRect(boxes.thumbnail);
    FillSolid(dc, background, kBackground);
    if (selected) FillRoundedWhite(dc, background);
    if (thumbnail) {
        MemoryDc source(dc);
        SelectScope use(source.get(), thumbnail);
        BitBlt(dc, inner.left, inner.top, size.width, size.height, source.get(), 0, 0, SRCCOPY);
    } else {
        FillRect(dc, &inner, GetSysColorBrush(COLOR_BTNSHADOW));
    }
    DrawShadow(dc, picture);

    const int oldMode = SetBkMode(dc, TRANSPARENT);
    const COLORREF oldColour = SetTextColor(dc, kTextColour);
    RECT text = label;
    DrawTextW(dc, PathFindFileNameW(item->path.c_str()), -1, &text,
              DT_CENTER | DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    SetTextColor(dc, oldColour);
    SetBkMode(dc, oldMode);
}

void CThumbnaiListView::DrawShadow(HDC dc, const RECT& picture) {
    const int saved = SaveDC(dc);
    if (shadowImages_) {
        for (const ShadowPlacement& piece : ShadowLayout({picture.left, picture.top, picture.right, picture.bottom})) {
            ImageList_Draw(shadowImages_.get(), piece.piece, dc, piece.x, piece.y, ILD_TRANSPARENT);
            // Edge pieces that reach into a corner must not draw over it.
            if (piece.piece <= kShadowTopRight)
                ExcludeClipRect(dc, piece.x, piece.y, piece.x + kShadowPiece, piece.y + kShadowPiece);
        }
    } else {
        RECT shadow = picture;
        OffsetRect(&shadow, 3, 3);
        ExcludeClipRect(dc, picture.left, picture.top, picture.right, picture.bottom);
        FillRect(dc, &shadow, GetSysColorBrush(COLOR_BTNSHADOW));
    }
    RestoreDC(dc, saved);
}

}  // namespace lx
