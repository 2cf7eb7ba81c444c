// CThumbnaiListView: the viewer's thumbnail list, a list view control in icon view (child of
// the frame) showing every viewable file of one folder with a 72-pixel thumbnail.
//
// List(path) clears the list and starts the listing thread: it finds the folder's image
// files, sorts them in natural order, hands them to the window in one synchronous message
// ("lxi_listupdone") and then makes their thumbnails, starting 16 items before the shown
// file, posting "lxi_imageloaded" for each. The items and their bitmaps belong to the list;
// Clear (also on WM_DESTROY) always ends the thread before it frees them.
//
// RemoveAt while thumbnails are being made stops the thread, removes the item and starts a
// new thumbnail pass over the items that still have none (failed ones are not retried).
//
// The frame forwards WM_NOTIFY of the list to HandleNotify, which draws the items (custom
// draw): the thumbnail centred in its cell with a soft shadow at the right and bottom, a
// white rounded box behind the selected one, a grey box while a thumbnail is missing or
// could not be made, and the file name below.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <memory>
#include <string>
#include <vector>

#include "ImageStrip.h"
#include "ViewerListItem.h"

namespace lx {

class CThumbnaiListView {
public:
    static constexpr COLORREF kBackground = 0x696969;
    static constexpr COLORREF kTextColour = 0xF0F0F0;
    static constexpr int kShadowBitmap = 412;
    static constexpr int kCellWidth = 96;
    static constexpr int kCellHeight = 90;

    CThumbnaiListView();
    ~CThumbnaiListView();
    CThumbnaiListView(const CThumbnaiListView&) = delete;
    CThumbnaiListView& operator=(const CThumbnaiListView&) = delete;

    // Creates the control as child `id` of `parent` (extended style LVS_EX_DOUBLEBUFFER).
    bool Create(HWND parent, int id);
    HWND hwnd() const { return hwnd_; }

    // Lists the folder of `path` (a file, which becomes the selected item) or `path` itself
    // (a folder). A path that is neither leaves the list empty.
    void List(const std::wstring& path);
    // Ends the listing thread, then removes and frees every item.
    void Clear();
    // While held, the listing thread lists but makes no thumbnail: the frame holds them while
    // the picture it shows is loading, so that a thumbnail (maybe of that very file) does not
    // compete with it for the processor.
    void HoldThumbnails(bool hold);

    // The index of the item whose path equals `path` (case-insensitively), selected and
    // scrolled into view; -1 when there is none.
    int Find(const std::wstring& path);
    int Count() const { return static_cast<int>(items_.size()); }
    int SelectedIndex() const;
    std::wstring PathAt(int index) const;
    // Selects the item and scrolls it into view.
    void Select(int index);
    // Removes the item and frees it (after a delete).
    void RemoveAt(int index);
    // The size one item takes, as the control computes it (the frame sizes its pane by it).
    SIZE ItemSize() const;
    // WM_NOTIFY of the list: draws the items (NM_CUSTOMDRAW). False when the notification is
    // not the list's to handle.
    bool HandleNotify(NMHDR* header, LRESULT& result);

    // The listing thread while one runs (owned by the list), else null.
    HANDLE ListingThread() const { return thread_; }
    const ViewerListItem* ItemAt(int index) const;
    // The part of item `index`'s cell that holds its picture (the cell less its name line).
    bool PictureArea(int index, RECT& area) const;

private:
    static LRESULT CALLBACK SubclassProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
    static DWORD WINAPI ThreadMain(void* self);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);
    LRESULT OnListUpDone(WPARAM count, LPARAM array);
    void OnMouseWheel(WPARAM wParam);
    void SetUpCells();

    void StartThread(bool enumerate, int thumbnailStart);
    void StopThread();
    bool StopRequested() const;
    void Enumerate(std::vector<std::unique_ptr<ViewerListItem>>& found);
    void MakeThumbnails(int start);

    void DrawItem(HDC dc, int index, bool selected);
    void DrawShadow(HDC dc, const RECT& picture);

    HWND hwnd_ = nullptr;
    UINT listUpDone_ = 0, imageLoaded_ = 0, getDragImage_ = 0;
    std::vector<std::unique_ptr<ViewerListItem>> items_;
    int currentIndex_ = 0;
    std::wstring currentFile_, folder_;
    HANDLE thread_ = nullptr;
    HANDLE stopEvent_ = nullptr;
    HANDLE thumbnailsGo_ = nullptr;  // manual-reset, set unless held
    bool enumerate_ = true;
    int thumbnailStart_ = 0;
    ImageList shadowImages_;
    ImageList cellImages_;
    ULONG_PTR gdiplusToken_ = 0;
};

}  // namespace lx
