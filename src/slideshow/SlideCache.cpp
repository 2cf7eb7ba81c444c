#include "SlideCache.h"

#include <algorithm>
#include <cwchar>

namespace lx {

SlidePtr SlideCache::Find(const std::wstring& path) const {
    for (const SlidePtr& slide : slides_)
        if (slide->path == path) return slide;
    return nullptr;
}

void SlideCache::Put(SlidePtr slide) {
    if (!slide) return;
    std::erase_if(slides_, [&](const SlidePtr& held) { return held->path == slide->path; });
    if (slides_.size() >= kCapacity) slides_.erase(slides_.begin());
    slides_.push_back(std::move(slide));
}

std::vector<std::wstring> SlideCache::Paths() const {
    std::vector<std::wstring> paths;
    for (const SlidePtr& slide : slides_) paths.push_back(slide->path);
    return paths;
}

std::wstring SlideCaption(int position, int count, const std::wstring& fileName, const std::wstring& note) {
    const wchar_t* index = count < 100 ? L"[%d" : count < 1000 ? L"[%03d" : L"[%04d";
    wchar_t text[64];
    std::swprintf(text, std::size(text), index, position);
    std::wstring caption = text;
    std::swprintf(text, std::size(text), L" / %d] ", count);
    caption += text;
    caption += fileName;
    if (!note.empty()) caption += L"\n\n" + note;
    return caption;
}

}  // namespace lx
