// RenameFiles: renaming one listed photograph on disk, taking a free name when the one it
// should get is already there.
//
// The file system is reached only through RenameFileSystem, so the rules can be exercised
// without touching a disk and the Windows shell can supply its own calls.
#pragma once

#include <functional>
#include <string>

#include "RenameEntry.h"

namespace lx {

struct RenameFileSystem {
    std::function<bool(const std::wstring& path)> exists;
    // Moves a file; never replaces an existing file.
    std::function<bool(const std::wstring& from, const std::wstring& to)> move;
};

// How far the numbered names go before a file is left alone.
constexpr int kMaxConflictNumber = 1000;

// `target` itself when nothing is there, else the first of "name(1).ext", "name(2).ext" ...
// that is free, or empty when every number below kMaxConflictNumber is taken.
std::wstring FreeTargetPath(const std::wstring& target, const std::function<bool(const std::wstring&)>& exists);

struct RenameOutcome {
    bool renamed = false;
    std::wstring finalPath;  // where the file went; empty when it was not moved
};

// Renames one entry. Entries without a new name, or whose new name is exactly the old one,
// are left alone. Whether the name is free is decided now, not when the preview was made,
// so an earlier file of the same run that took the name pushes this one to "(1)".
RenameOutcome RenameEntryFile(const RenameEntry& entry, const RenameFileSystem& fileSystem);

}  // namespace lx
