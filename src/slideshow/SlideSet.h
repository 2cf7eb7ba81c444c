// The files a slide show presents: the viewable pictures of one folder in the shell's name
// order, and the one it starts with (the file the user chose, or the first).
//
// The folder listing itself is the Windows shell's; this part decides which of the listed
// names are slides, in what order, and where the show begins.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace lx {

struct SlideSet {
    std::vector<std::wstring> paths;  // full paths, in show order
    int start = 0;                    // index of the first slide shown
};

struct SlideNameRules {
    // The shell's logical name order (StrCmpLogicalW): negative, zero or positive.
    std::function<int(const std::wstring&, const std::wstring&)> compareNames;
    // Whether two paths name the same file (lstrcmpiW == 0).
    std::function<bool(const std::wstring&, const std::wstring&)> samePath;
};

// The folder whose pictures are shown for `path`: the path itself when it is a folder, else
// the folder that holds it; with its trailing separator, ready to take a file name.
std::wstring SlideFolder(const std::wstring& path, bool isFolder);

// A file the show presents: one whose extension names an image type.
bool IsSlideName(const std::wstring& name);

// The slides of `folder` (as SlideFolder gives it) among the file `names` found in it: the
// viewable ones, sorted, joined to the folder. The slide whose path is `chosen` becomes the
// start; an empty `chosen` (a folder was given) or one not found starts at 0. No slides:
// an empty set.
SlideSet MakeSlideSet(const std::wstring& folder, std::vector<std::wstring> names, const std::wstring& chosen,
                      const SlideNameRules& rules);

}  // namespace lx
