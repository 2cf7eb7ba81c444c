// File operations the tools share: choosing a folder, making sure an output folder exists,
// deleting through the shell (to the recycle bin, undoable), and a drive's
// current folder. Path buffers are 520 wide characters.
#pragma once

#include <windows.h>
#include <shellapi.h>

#include <string>

namespace lx {

// The shell's folder picker, starting at the folder in `folder` (a 520-character buffer), or
// at its nearest parent that exists; on OK the chosen file-system folder is written back.
// False when cancelled.
bool BrowseForFolder(HWND owner, wchar_t* folder);

// True when `folder` exists as a folder or could be created with its parents. Otherwise the
// reason is shown through the error display (caption "Quarry7") and the result is false.
bool EnsureOutputFolder(HWND owner, const wchar_t* folder);

// One path as the double-NUL-terminated list the shell's file operations take.
std::wstring ShellPathList(const std::wstring& path);

// SHFileOperationW FO_DELETE over a double-NUL-terminated list with the given flags (0x40
// alone: to the recycle bin, the shell asking as usual). True when the shell did it all.
bool ShellDeleteFiles(HWND owner, const wchar_t* pathList, FILEOP_FLAGS flags);

// Moves one file to the recycle bin without asking or showing anything (flags 0xD4), as the
// tools do with files they have replaced.
bool MoveToRecycleBin(HWND owner, const wchar_t* path);

// Deletes one file: it goes to the recycle bin, quietly, as with MoveToRecycleBin.
bool DeleteOneFile(const wchar_t* path);

// The current folder of `drive` ('C' or 'c') into `folder` (520 characters): the process's
// own current folder when it is on that drive, else the one the drive remembers. False when
// the drive has none, so that the caller takes its root.
bool DriveCurrentFolder(wchar_t drive, wchar_t* folder);

}  // namespace lx
