// The module's own instance and its string table.
//
// ModuleInstance() is the image that holds this code: lxpicture.dll inside the host, or a
// test program that links the same objects and resources. Strings are always loaded from it.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

HINSTANCE ModuleInstance();

// The string-table entry `id`, or an empty string when there is none.
std::wstring LoadResString(UINT id);

// A value below 0x10000 passed where a text is expected is a string-table id (the
// MAKEINTRESOURCE convention that every tool uses for titles, messages and names).
inline bool IsResourceId(const wchar_t* textOrId) {
    return (reinterpret_cast<ULONG_PTR>(textOrId) >> 16) == 0;
}

// The text itself, or the string `id` loaded when it is an id.
std::wstring TextOrResString(const wchar_t* textOrId);

}  // namespace lx
