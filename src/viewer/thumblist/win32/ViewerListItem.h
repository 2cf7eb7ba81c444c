// One listed file of the viewer's thumbnail list. The list owns its items: the folder lister
// makes them, the list control keeps a pointer to each as the item's parameter, and the
// list frees them (with their thumbnails) only after its listing thread has ended.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace lx {

// Bit of ViewerListItem::flags: making the thumbnail failed; it is not tried again.
constexpr uint32_t kThumbnailFailed = 1;
// Appends beyond this many entries are dropped.
constexpr size_t kMaxListItems = 0x0FFFFFFF;

struct ViewerListItem {
    ViewerListItem() = default;
    ViewerListItem(const ViewerListItem&) = delete;
    ViewerListItem& operator=(const ViewerListItem&) = delete;
    ~ViewerListItem() {
        if (thumbnail) DeleteObject(thumbnail);
    }

    std::wstring path;          // folder and found name joined
    uint32_t fileType = 0;      // the extension's image type, never 0 in a list
    WIN32_FIND_DATAW findData{};
    // Written once by the listing thread (size first, then the handle); the window reads it
    // after the item's redraw message or when painting.
    HBITMAP thumbnail = nullptr;
    uint32_t flags = 0;
    int32_t thumbWidth = 0;     // the thumbnail bitmap's own size
    int32_t thumbHeight = 0;
};

}  // namespace lx
