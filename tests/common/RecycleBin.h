// The recycle bin as the shell shows it: whether it lists an item of a name, and putting an
// item back where it came from through the item's own "restore" command, as a user would.
#pragma once

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <functional>
#include <string>

namespace lxtest {

// Calls `visit` with the bin folder and each item whose shown name is `name` (or `name`
// without a ".jpg" the shell hides) until it returns true; whether one did.
inline bool ForRecycleBinItem(const std::wstring& name,
                              const std::function<bool(IShellFolder*, PCITEMID_CHILD)>& visit) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop))) return false;
    PIDLIST_ABSOLUTE binPidl = nullptr;
    IShellFolder* bin = nullptr;
    if (SUCCEEDED(SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, &binPidl)))
        desktop->BindToObject(binPidl, nullptr, IID_IShellFolder, reinterpret_cast<void**>(&bin));
    IEnumIDList* items = nullptr;
    if (bin) bin->EnumObjects(nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS | SHCONTF_INCLUDEHIDDEN, &items);
    bool done = false;
    PITEMID_CHILD child = nullptr;
    while (items && !done && items->Next(1, &child, nullptr) == S_OK) {
        STRRET text{};
        wchar_t shown[MAX_PATH] = {};
        if (SUCCEEDED(bin->GetDisplayNameOf(child, SHGDN_NORMAL, &text)) && SUCCEEDED(StrRetToBufW(&text, child, shown, MAX_PATH)) &&
            (name == shown || std::wstring(shown) + L".jpg" == name))
            done = visit(bin, child);
        CoTaskMemFree(child);
    }
    if (items) items->Release();
    if (bin) bin->Release();
    CoTaskMemFree(binPidl);
    desktop->Release();
    CoUninitialize();
    return done;
}

inline bool RecycleBinHolds(const std::wstring& name) {
    return ForRecycleBinItem(name, [](IShellFolder*, PCITEMID_CHILD) { return true; });
}

// Runs the item's "undelete" command (the one the shell's menu names "Restore").
inline bool RestoreFromRecycleBin(const std::wstring& name) {
    return ForRecycleBinItem(name, [](IShellFolder* bin, PCITEMID_CHILD child) {
        IContextMenu* menu = nullptr;
        if (FAILED(bin->GetUIObjectOf(nullptr, 1, &child, IID_IContextMenu, nullptr, reinterpret_cast<void**>(&menu))))
            return false;
        HMENU popup = CreatePopupMenu();
        bool restored = false;
        if (SUCCEEDED(menu->QueryContextMenu(popup, 0, 1, 0x7FFF, CMF_NORMAL))) {
            for (int i = 0; i < GetMenuItemCount(popup) && !restored; ++i) {
                const UINT id = GetMenuItemID(popup, i);
                wchar_t verb[64] = {}, label[128] = {};
                menu->GetCommandString(id - 1, GCS_VERBW, nullptr, reinterpret_cast<LPSTR>(verb), 64);
                GetMenuStringW(popup, static_cast<UINT>(i), label, 128, MF_BYPOSITION);
                if (lstrcmpiW(verb, L"undelete") != 0 && !StrStrIW(label, L"restore")) continue;
                CMINVOKECOMMANDINFO invoke = {sizeof invoke};
                invoke.lpVerb = MAKEINTRESOURCEA(id - 1);
                invoke.nShow = SW_SHOWNORMAL;
                restored = SUCCEEDED(menu->InvokeCommand(&invoke));
            }
        }
        DestroyMenu(popup);
        menu->Release();
        return restored;
    });
}

}  // namespace lxtest
