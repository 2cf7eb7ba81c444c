// The small dialog helpers every tool shares: string-table message boxes, option lists from
// ";"-separated strings, output folders created with their parents, the image open and save
// dialogs, and the item file dialog with its classic fallback.
//
// Texts passed as `const wchar_t*` may be string-table ids (MAKEINTRESOURCEW); see
// ModuleResources.h. Path buffers are lx::kPathChars (520) wide characters.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

// `text` with every "%1" replaced by `argument` (unchanged when the argument is empty).
std::wstring FormatWithArgument(const std::wstring& text, const std::wstring& argument);

// A message box owned by the active window: `text` formatted with `argument` (may be null),
// `caption`, message-box `flags`. Returns the button pressed.
int ShowMessage(const wchar_t* text, const wchar_t* caption, const wchar_t* argument, UINT flags);

// Adds the ";"-separated pieces of string `stringId` to a "ComboBox" or "ComboBoxEx32"
// control, in order; a trailing ";" adds no empty item. Other controls are left alone.
void FillComboFromString(HWND combo, UINT stringId);

// Creates the folder `path` with all its missing parents. A root or a path shorter than three
// characters counts as existing (last error 161). Failures go to the error display (Retry or
// Cancel); returns false only when the user cancels.
bool CreateFolderPath(const wchar_t* path);

// One (description, pattern) pair of a file dialog's type list.
struct FileFilter {
    const wchar_t* description;
    const wchar_t* pattern;
};

// A "|"-separated filter text (a string-table filter list, or pairs joined as "%s|%s|") with
// every "|" turned into the NUL the classic file dialogs expect.
std::wstring ClassicFilterFromText(std::wstring text);
std::wstring ClassicFilterFromPairs(const FileFilter* filters, int filterCount);

// The shell's item dialog (open or save). `title` (text or id) and `initialFolder` may be
// null; `path` is in and out; without `filters` the single pair "All(*.*)" / "*.*" is
// offered. Falls back to the classic dialog when the item dialog cannot be created. Returns
// false when the user cancels, leaving `path` as it was.
bool ShowItemFileDialog(HWND owner, bool open, const wchar_t* title, const wchar_t* initialFolder, wchar_t* path,
                        const FileFilter* filters, int filterCount);

// The classic dialog with the same arguments: the item dialog's fallback.
bool ShowClassicFileDialog(HWND owner, bool open, const wchar_t* title, const wchar_t* initialFolder, wchar_t* path,
                           const FileFilter* filters, int filterCount);

// The image open or save dialog: title and "|"-separated filter list from the string table,
// starting in the folder of `path` when it exists, else in the user's documents. On OK the
// chosen path replaces `path` and the zero-based filter index goes to `filterIndex` (optional).
bool ShowImageFileDialog(HWND owner, UINT titleId, UINT filterId, wchar_t* path, bool open, int* filterIndex = nullptr);

// The id of the first checked button from `firstId` to `lastId` of `dialog`; 0 when none is
// checked or the range is empty.
int RadioGroupSelection(HWND dialog, int firstId, int lastId);

// Centres `dialog` over its owner, or on the work area when it has none (a template's 0, 0
// would put it in the screen's corner), keeping it whole on the work area. For WM_INITDIALOG.
void CentreDialog(HWND dialog);

}  // namespace lx
