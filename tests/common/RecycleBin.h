// Whether the recycle bin, as the shell lists it, holds an item of a name.
#pragma once

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <string>

namespace lxtest {

// `name` may also be shown without a ".jpg" the shell hides.
inline bool RecycleBinHolds(const std::wstring& name) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop))) return false;
    PIDLIST_ABSOLUTE binPidl = nullptr;
    IShellFolder* bin = nullptr;
    if (SUCCEEDED(SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, &binPidl)))
        desktop->BindToObject(binPidl, nullptr, IID_IShellFolder, reinterpret_cast<void**>(&bin));
    IEnumIDList* items = nullptr;
    if (bin) bin->EnumObjects(nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS | SHCONTF_INCLUDEHIDDEN, &items);
    bool found = false;
    PITEMID_CHILD child = nullptr;
    while (items && !found && items->Next(1, &child, nullptr) == S_OK) {
        STRRET text{};
        wchar_t shown[MAX_PATH] = {};
        found = SUCCEEDED(bin->GetDisplayNameOf(child, SHGDN_NORMAL, &text)) &&
                SUCCEEDED(StrRetToBufW(&text, child, shown, MAX_PATH)) &&
                (name == shown || std::wstring(shown) + L".jpg" == name);
        CoTaskMemFree(child);
    }
    if (items) items->Release();
    if (bin) bin->Release();
    CoTaskMemFree(binPidl);
    desktop->Release();
    CoUninitialize();
    return found;
}

}  // namespace lxtest
