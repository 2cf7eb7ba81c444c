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

// A file given up to the recycle bin (flags 0xD4) without the risk of losing it: the shell
// deletes outright when a drive has no recycle bin (so does Wine when it has no trash folder
// it can use), so a second name of the file's data is kept beside it until the caller says
// whether the move stands. The move counts when the data lives on under another name (the
// bin's); otherwise the file is put back at once and Moved() is false. Wine copies a file
// from another file system into its trash: that cannot be told from a deletion, so such a
// file is put back too and stays in both places. Where no second name can be made (a file
// system without hard links) the shell's word is taken. A read-only file is never given up:
// its protection says it is to stay.
class RecycledFile {
public:
    RecycledFile(HWND owner, const std::wstring& path);
    // Drops the spare name unless PutBack was called.
    ~RecycledFile();
    RecycledFile(const RecycledFile&) = delete;
    RecycledFile& operator=(const RecycledFile&) = delete;

    // True when the file left its place for the recycle bin.
    bool Moved() const { return moved_; }
    // The move stands: the spare name goes. Returns Moved().
    bool Keep();
    // Undoes the move: the file is back under its own name (its entry in the recycle bin, if
    // any, stays, holding the same data). False when it could not be put back; then the
    // recycle bin still has it.
    bool PutBack();

private:
    std::wstring path_;
    std::wstring spare_;  // empty when there is none
    bool moved_ = false;
};

// Deletes one file: it goes to the recycle bin, quietly, as with MoveToRecycleBin.
bool DeleteOneFile(const wchar_t* path);

// The current folder of `drive` ('C' or 'c') into `folder` (520 characters): the process's
// own current folder when it is on that drive, else the one the drive remembers. False when
// the drive has none, so that the caller takes its root.
bool DriveCurrentFolder(wchar_t drive, wchar_t* folder);

}  // namespace lx
