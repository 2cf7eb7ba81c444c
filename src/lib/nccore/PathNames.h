// The parts of a Windows path, split the same way on every build: either "\" or "/" ends a
// folder name, so paths read from the host or the registry split alike natively and on
// Windows.
#pragma once

#include <string>

namespace lx {

bool IsPathSeparator(wchar_t c);

// Where the last component of `path` starts (0 when it has no separator).
size_t FileNameStart(const std::wstring& path);

// The last component of `path`: its file name.
std::wstring FileNameOf(const std::wstring& path);

// Folder part with its trailing separator ("" when there is none), and the extension: the
// text from the last "." of the file name (never of a folder), the dot included.
std::wstring FolderOf(const std::wstring& path);
std::wstring ExtensionOf(const std::wstring& path);

// The path without the extension of its file name.
std::wstring WithoutExtension(const std::wstring& path);

}  // namespace lx
