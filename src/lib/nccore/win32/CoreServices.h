// General services that the tools share: starting another tool of this module in its own
// process, the system error display, small string edits, and image lists and tool bars made
// from the module's resources.
//
// Texts passed as `const wchar_t*` may be string-table ids (see ModuleResources.h). Windows
// and image lists returned here belong to the caller.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>

namespace lx {

// Starts a tool of this module (the image that holds this code, whether loaded by the host,
// by rundll32 or by a test) as a new process through rundll32. `entry` is the export's base
// name ("pxfRun", "slideRun"): rundll32 enters its wide variant. `option` says what
// `argument` is; "/image" (the only one the tools use) hands `argument` (a path, or "/clip")
// to the entry as its whole command line, quoted when it holds a blank. `owner` may be null;
// it lets the new process take the foreground. Returns false when no process was started.
bool RunThisModule(HWND owner, const wchar_t* entry, const wchar_t* argument, const wchar_t* option);

// The rundll32 command line that enters `entry` of `modulePath` with `commandLine`.
std::wstring ModuleEntryCommandLine(const std::wstring& modulePath, const std::wstring& entry,
                                    const std::wstring& commandLine);

// Starts rundll32 on `modulePath`, entering `entry` with `commandLine`; false on failure.
bool StartModuleEntry(const std::wstring& modulePath, const std::wstring& entry, const std::wstring& commandLine);

// `text` in double quotes when it holds a blank and is not quoted already.
std::wstring QuoteIfBlank(const std::wstring& text);

// Replaces every `from` in the NUL-terminated `text` by `to`; returns how many were replaced.
size_t ReplaceCharacter(wchar_t* text, wchar_t from, wchar_t to);

// The message the error display shows: `path` (when given) above the system's text for
// `code`.
std::wstring SystemErrorText(DWORD code, const wchar_t* path);

// Shows SystemErrorText in a message box owned by `owner` with `caption` (text or id) and
// message-box `flags`; returns the button pressed.
int ShowSystemError(HWND owner, DWORD code, const wchar_t* caption, const wchar_t* path, UINT flags);

// An image list cut from the bitmap resource `bitmapId` of `instance` into images
// `imageWidth` pixels wide, growing by `grow`; `mask` is the transparent colour or CLR_NONE.
// Null when the bitmap is missing.
HIMAGELIST LoadImageListStrip(HINSTANCE instance, int imageWidth, UINT bitmapId, int grow, COLORREF mask);

// A tool bar control described by the tool-bar resource `resourceId` of `instance` (button
// size and command ids, 0 for a separator) with its buttons' images from the bitmap resource
// of the same id, magenta (0xFF00FF) being transparent. Null when the resource is missing or
// malformed.
HWND CreateToolBarFromResource(HWND parent, HINSTANCE instance, UINT resourceId, DWORD style, UINT controlId);

// The same from a tool-bar description already in memory; the images come from the bitmap
// `bitmapId` of `bitmapInstance` (which may be HINST_COMMCTRL for the system's strips).
HWND CreateToolBarFromTemplate(HWND parent, HINSTANCE bitmapInstance, UINT_PTR bitmapId, const void* data,
                               size_t size, DWORD style, UINT controlId);

}  // namespace lx
