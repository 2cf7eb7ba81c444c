#include "ShellServices.h"

#include <shlobj.h>
#include <shobjidl.h>

#include "RectClamp.h"

namespace lx {

RECT ClampToMonitor(const RECT& rect) {
    MONITORINFO info{sizeof info};
    if (!GetMonitorInfoW(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST), &info)) return rect;
    const PlainRect area{info.rcWork.left, info.rcWork.top, info.rcWork.right, info.rcWork.bottom};
    const PlainRect clamped = ClampRectInto({rect.left, rect.top, rect.right, rect.bottom}, area);
    return {clamped.left, clamped.top, clamped.right, clamped.bottom};
}

namespace {

template <class T>
struct Released {
    T* p = nullptr;
    ~Released() {
        if (p) p->Release();
    }
};

}  // namespace

bool ShowShellContextMenu(HWND owner, const std::wstring& path, POINT screenPoint) {
    PIDLIST_ABSOLUTE item = nullptr;
    if (FAILED(SHParseDisplayName(path.c_str(), nullptr, &item, 0, nullptr))) return false;
    Released<IShellFolder> parent;
    PCUITEMID_CHILD child = nullptr;
    bool chosen = false;
    if (SUCCEEDED(SHBindToParent(item, IID_IShellFolder, reinterpret_cast<void**>(&parent.p), &child))) {
        Released<IContextMenu> menu;
        if (SUCCEEDED(parent.p->GetUIObjectOf(owner, 1, &child, IID_IContextMenu, nullptr,
                                              reinterpret_cast<void**>(&menu.p)))) {
            HMENU popup = CreatePopupMenu();
            if (popup && SUCCEEDED(menu.p->QueryContextMenu(popup, 0, 1, 0x7FFF, CMF_NORMAL))) {
                const UINT command = TrackPopupMenuEx(popup, TPM_RETURNCMD | TPM_RIGHTBUTTON, screenPoint.x,
                                                      screenPoint.y, owner, nullptr);
                if (command > 0) {
                    CMINVOKECOMMANDINFO invoke{sizeof invoke};
                    invoke.hwnd = owner;
                    invoke.lpVerb = MAKEINTRESOURCEA(command - 1);
                    invoke.nShow = SW_SHOWNORMAL;
                    chosen = SUCCEEDED(menu.p->InvokeCommand(&invoke));
                }
            }
            if (popup) DestroyMenu(popup);
        }
    }
    CoTaskMemFree(item);
    return chosen;
}

}  // namespace lx
