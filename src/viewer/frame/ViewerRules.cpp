#include "ViewerRules.h"

#include <algorithm>
#include <cstdio>
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

std::wstring TitleFileName(const std::wstring& path) {
    const size_t slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

namespace {

bool SamePathIgnoringCase(const std::wstring& a, const std::wstring& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](wchar_t x, wchar_t y) { return std::towlower(x) == std::towlower(y); });
}

std::wstring Format(const wchar_t* format, int a, int b = 0, int c = 0, int d = 0) {
    wchar_t text[96];
    const int length = std::swprintf(text, std::size(text), format, a, b, c, d);
    return length > 0 ? std::wstring(text, length) : std::wstring();
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

std::wstring ZoomText(int tenths) {
    return tenths % 10 == 0 ? Format(L"%d%%", tenths / 10) : Format(L"%d.%d%%", tenths / 10, tenths % 10);
}
std::wstring CursorText(int x, int y) { return Format(L"X:%d Y:%d", x, y); }
std::wstring CursorSelectionText(int x, int y, int width, int height) {
    return Format(L"X:%d Y:%d W:%d H:%d", x, y, width, height);
}
std::wstring SelectionSizeText(int width, int height) { return Format(L"選択 %d x %d", width, height); }
std::wstring ImageSizeText(int width, int height) { return Format(L"%d x %d", width, height); }
std::wstring DepthText(int bitsPerPixel) { return Format(L"%dbpp", bitsPerPixel); }

}  // namespace lx
