#include "SlideSet.h"

#include <algorithm>

#include "ImageTypes.h"
#include "PathNames.h"

namespace lx {

std::wstring SlideFolder(const std::wstring& path, bool isFolder) {
    if (!isFolder) return FolderOf(path);
    if (path.empty() || IsPathSeparator(path.back())) return path;
    return path + L"\\";
}

bool IsSlideName(const std::wstring& name) { return ImageTypeFromPath(name.c_str()) != kImageUnknown; }

SlideSet MakeSlideSet(const std::wstring& folder, std::vector<std::wstring> names, const std::wstring& chosen,
                      const SlideNameRules& rules) {
    std::erase_if(names, [](const std::wstring& name) { return !IsSlideName(name); });
    std::sort(names.begin(), names.end(),
              [&](const std::wstring& a, const std::wstring& b) { return rules.compareNames(a, b) < 0; });
    SlideSet set;
    set.paths.reserve(names.size());
    for (const std::wstring& name : names) {
        set.paths.push_back(folder + name);
        if (!chosen.empty() && set.start == 0 && rules.samePath(set.paths.back(), chosen))
            set.start = static_cast<int>(set.paths.size() - 1);
    }
    return set;
}

}  // namespace lx
