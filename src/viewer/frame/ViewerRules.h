// The viewer frame's rules that need no window: its layout record, moving through the file
// list, the zoom chosen when a picture arrives and the recent-files list. The status texts
// are the toolkit's (StatusTexts.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "StatusTexts.h"

namespace lx {

// The "ImageInfo" value under "MainViewer": six 32-bit integers, exactly 24 bytes.
struct ImageInfoRecord {
    int32_t infoShown = 1;
    int32_t listShown = 1;
    int32_t listBelow = 0;   // 0: the list at the right of the picture, 1: below it
    int32_t infoWidth = 0;
    int32_t listSize = -1;   // width at the right, height below; -1: from the item size
    int32_t viewOptions = 0;
};
static_assert(sizeof(ImageInfoRecord) == 24);

// The record used when none is stored (or the stored one has another length).
ImageInfoRecord DefaultImageInfo(int verticalScrollWidth, int fullScreenHeight);

// Next and previous in a list of `count` items with wrap-around; -1 when there is nowhere to
// go (one item or none). With no selection (-1) next starts at the first, previous at the last.
int NextIndex(int selected, int count);
int PreviousIndex(int selected, int count);

// After the item at `deleted` is removed from a list that had `countBefore` items, the index
// to open: the item that moved into its place, or the one before when it was the last.
// -1 when the list is now empty.
int IndexAfterDelete(int deleted, int countBefore);

enum class ArrivalZoom { OriginalSize = 3, WholeImage = 2 };
// Original size when the picture fits the view's client area both ways, else the whole picture.
ArrivalZoom ChooseArrivalZoom(int imageWidth, int imageHeight, int clientWidth, int clientHeight);

// The recent files, newest first, at most kMaxRecent; equal paths (ignoring case) appear once.
class RecentFiles {
public:
    static constexpr size_t kMaxRecent = 16;
    void Add(const std::wstring& path);
    void Remove(size_t index);
    void Assign(std::vector<std::wstring> paths);
    const std::vector<std::wstring>& Paths() const { return paths_; }

private:
    std::vector<std::wstring> paths_;
};

}  // namespace lx
