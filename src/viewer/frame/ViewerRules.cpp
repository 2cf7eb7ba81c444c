#include "ViewerRules.h"

#include <algorithm>
#include <cwctype>
#include <iterator>

namespace lx {

ImageInfoRecord DefaultImageInfo(int verticalScrollWidth, int fullScreenHeight) {
    ImageInfoRecord record;
    // Room for the names and a date and time value ("2008/10/12 12:34:56") side by side.
    record.infoWidth = verticalScrollWidth + 224;
    // Small screens: let a fitted picture follow the window as it is resized.
    record.viewOptions = fullScreenHeight < 800 ? 1 : 0;
    return record;
}

int NextIndex(int selected, int count) {
    if (count <= 1) return -1;
    return selected < 0 || selected + 1 >= count ? 0 : selected + 1;
}

int PreviousIndex(int selected, int count) {
    if (count <= 1) return -1;
    return selected <= 0 || selected >= count ? count - 1 : selected - 1;
}

int IndexAfterDelete(int deleted, int countBefore) {
    const int countAfter = countBefore - 1;
    if (countAfter <= 0 || deleted < 0) return -1;
    return std::min(deleted, countAfter - 1);
}

ArrivalZoom ChooseArrivalZoom(int imageWidth, int imageHeight, int clientWidth, int clientHeight) {
    return imageWidth <= clientWidth && imageHeight <= clientHeight ? ArrivalZoom::OriginalSize
                                                                    : ArrivalZoom::WholeImage;
}

namespace {

bool SamePathIgnoringCase(const std::wstring& a, const std::wstring& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](wchar_t x, wchar_t y) { return std::towlower(x) == std::towlower(y); });
}

}  // namespace

void RecentFiles::Add(const std::wstring& path) {
    if (path.empty()) return;
    std::erase_if(paths_, [&](const std::wstring& p) { return SamePathIgnoringCase(p, path); });
    paths_.insert(paths_.begin(), path);
    if (paths_.size() > kMaxRecent) paths_.resize(kMaxRecent);
}

void RecentFiles::Remove(size_t index) {
    if (index < paths_.size()) paths_.erase(paths_.begin() + static_cast<std::ptrdiff_t>(index));
}

void RecentFiles::Assign(std::vector<std::wstring> paths) {
    paths_.clear();
    // Oldest first, so that each Add puts the newer one in front and drops repeats.
    for (auto it = paths.rbegin(); it != paths.rend(); ++it) Add(*it);
}

}  // namespace lx
