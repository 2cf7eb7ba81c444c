// A wide DROPFILES block as the host hands a selection to a tool (Windows test programs).
#pragma once

#include <windows.h>
#include <shlobj.h>

#include <cstring>
#include <string>
#include <vector>

namespace lxtest {

// The caller frees the block with GlobalFree.
inline HDROP MakeDropList(const std::vector<std::wstring>& paths) {
    std::wstring names;
    for (const auto& path : paths) names.append(path).push_back(L'\0');
    names.push_back(L'\0');
    HGLOBAL block = GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, sizeof(DROPFILES) + names.size() * sizeof(wchar_t));
    auto* header = static_cast<DROPFILES*>(block);
    header->pFiles = sizeof(DROPFILES);
    header->fWide = TRUE;
    std::memcpy(header + 1, names.data(), names.size() * sizeof(wchar_t));
    return static_cast<HDROP>(block);
}

}  // namespace lxtest
