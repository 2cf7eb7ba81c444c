// Reading a folder the user typed into the folder selection dialog: a drive alone, a UNC
// path (whose server-and-share part is checked before anything else), or any other path.
#pragma once

#include <string>

namespace lx {

// "C" or "C:" (any letter, either case): the drive's current folder is meant.
bool IsDriveAlone(const std::wstring& text);

// "\\server\share" of a UNC path "\\server\share\more...", "\\server" of a path naming only a
// server; empty for a path that is not UNC.
std::wstring UncRootOf(const std::wstring& path);

// True for "\\server" or "\\server\" alone: a server, which no folder test can look at.
bool IsUncServerAlone(const std::wstring& path);

}  // namespace lx
