#include "FolderTree.h"

#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>

#include "Window.h"

namespace lx {

namespace {

constexpr int kTreeId = 1;

// An owned identifier list, freed with ILFree.
struct OwnedIdList {
    PIDLIST_ABSOLUTE list = nullptr;
    ~OwnedIdList() { ILFree(list); }
};

class FolderTree : public Window {
protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
        case WM_CREATE:
            return Build() ? 0 : -1;
        case WM_SIZE:
            MoveWindow(tree_, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
            return 0;
        case WM_SETFOCUS:
            SetFocus(tree_);
            return 0;
        case WM_NOTIFY:
            return OnNotify(reinterpret_cast<NMHDR*>(lParam));
        case kFolderTreeSelect:
            return SelectFolder(wParam, lParam);
        case kFolderTreeSelected:
            return reinterpret_cast<LRESULT>(ItemList(TreeView_GetSelection(tree_)));
        default:
            return Window::HandleMessage(message, wParam, lParam);
        }
    }

private:
    bool Build() {
        tree_ = CreateWindowExW(WS_EX_CLIENTEDGE, WC_TREEVIEWW, L"",
                                WS_CHILD | WS_VISIBLE | WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT |
                                    TVS_SHOWSELALWAYS,
                                0, 0, 0, 0, hwnd(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(kTreeId)), nullptr,
                                nullptr);
        if (!tree_) return false;
        SendMessageW(tree_, WM_SETFONT, SendMessageW(GetParent(hwnd()), WM_GETFONT, 0, 0), FALSE);
        SHFILEINFOW info = {};
        // The system image list is shared by the whole process: the tree must not destroy it.
        const auto icons = reinterpret_cast<HIMAGELIST>(
            SHGetFileInfoW(L"C:\\", 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
        TreeView_SetImageList(tree_, icons, TVSIL_NORMAL);
        PIDLIST_ABSOLUTE desktop = nullptr;
        if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_DESKTOP, &desktop))) return false;
        const HTREEITEM root = AddItem(TVI_ROOT, desktop);
        if (!root) return false;
        TreeView_Expand(tree_, root, TVE_EXPAND);
        return true;
    }

    // Adds a folder under `parent`; the item owns `list`.
    HTREEITEM AddItem(HTREEITEM parent, PIDLIST_ABSOLUTE list) {
        SHFILEINFOW info = {};
        SHGetFileInfoW(reinterpret_cast<LPCWSTR>(list), 0, &info, sizeof info,
                       SHGFI_PIDL | SHGFI_DISPLAYNAME | SHGFI_SYSICONINDEX | SHGFI_SMALLICON);
        SHFILEINFOW open = {};
        SHGetFileInfoW(reinterpret_cast<LPCWSTR>(list), 0, &open, sizeof open,
                       SHGFI_PIDL | SHGFI_SYSICONINDEX | SHGFI_SMALLICON | SHGFI_OPENICON);
        TVINSERTSTRUCTW insert = {};
        insert.hParent = parent;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_CHILDREN;
        insert.item.pszText = info.szDisplayName;
        insert.item.lParam = reinterpret_cast<LPARAM>(list);
        insert.item.iImage = info.iIcon;
        insert.item.iSelectedImage = open.iIcon;
        insert.item.cChildren = HasSubfolders(list) ? 1 : 0;
        const HTREEITEM item = TreeView_InsertItem(tree_, &insert);
        if (!item) ILFree(list);
        return item;
    }

    static bool HasSubfolders(PCIDLIST_ABSOLUTE list) {
        IShellFolder* parent = nullptr;
        PCUITEMID_CHILD child = nullptr;
        if (ILIsEmpty(list) || FAILED(SHBindToParent(list, IID_IShellFolder, reinterpret_cast<void**>(&parent), &child)))
            return true;
        SFGAOF attributes = SFGAO_HASSUBFOLDER;
        const HRESULT got = parent->GetAttributesOf(1, &child, &attributes);
        parent->Release();
        return FAILED(got) || (attributes & SFGAO_HASSUBFOLDER);
    }

    PIDLIST_ABSOLUTE ItemList(HTREEITEM item) const {
        if (!item) return nullptr;
        TVITEMW data = {};
        data.mask = TVIF_PARAM;
        data.hItem = item;
        return TreeView_GetItem(tree_, &data) ? reinterpret_cast<PIDLIST_ABSOLUTE>(data.lParam) : nullptr;
    }

    // The branch's folders, in the shell's order, once: later openings find them there.
    void FillChildren(HTREEITEM item) {
        if (TreeView_GetChild(tree_, item)) return;
        const PIDLIST_ABSOLUTE list = ItemList(item);
        IShellFolder* folder = list ? BindFolder(list) : nullptr;
        if (!folder) return;
        IEnumIDList* children = nullptr;
        if (folder->EnumObjects(hwnd(), SHCONTF_FOLDERS, &children) == S_OK && children) {
            PITEMID_CHILD child = nullptr;
            while (children->Next(1, &child, nullptr) == S_OK) {
                const PIDLIST_ABSOLUTE full = ILCombine(list, child);
                CoTaskMemFree(child);
                // A namespace that lists one of its own ancestors again would open forever.
                if (full && IsAncestorOrSelf(item, full)) ILFree(full);
                else if (full) AddItem(item, full);
            }
            children->Release();
        }
        folder->Release();
        if (!TreeView_GetChild(tree_, item)) {
            TVITEMW data = {};
            data.mask = TVIF_CHILDREN;
            data.hItem = item;
            TreeView_SetItem(tree_, &data);
        }
    }

    static IShellFolder* BindFolder(PCIDLIST_ABSOLUTE list) {
        IShellFolder* desktop = nullptr;
        if (FAILED(SHGetDesktopFolder(&desktop))) return nullptr;
        if (ILIsEmpty(list)) return desktop;
        IShellFolder* folder = nullptr;
        if (FAILED(desktop->BindToObject(list, nullptr, IID_IShellFolder, reinterpret_cast<void**>(&folder))))
            folder = nullptr;
        desktop->Release();
        return folder;
    }

    bool IsAncestorOrSelf(HTREEITEM item, PCIDLIST_ABSOLUTE list) const {
        for (; item; item = TreeView_GetParent(tree_, item))
            if (ILIsEqual(ItemList(item), list)) return true;
        return false;
    }

    LRESULT OnNotify(NMHDR* header) {
        if (header->hwndFrom != tree_) return 0;
        switch (header->code) {
        case TVN_ITEMEXPANDINGW: {
            const auto* view = reinterpret_cast<NMTREEVIEWW*>(header);
            if (view->action & TVE_EXPAND) FillChildren(view->itemNew.hItem);
            return 0;
        }
        case TVN_DELETEITEMW:
            ILFree(reinterpret_cast<PIDLIST_ABSOLUTE>(reinterpret_cast<NMTREEVIEWW*>(header)->itemOld.lParam));
            return 0;
        case TVN_SELCHANGEDW: {
            NMTREEVIEWW forwarded = *reinterpret_cast<NMTREEVIEWW*>(header);
            forwarded.hdr.hwndFrom = hwnd();
            forwarded.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(hwnd()));
            return SendMessageW(GetParent(hwnd()), WM_NOTIFY, forwarded.hdr.idFrom, reinterpret_cast<LPARAM>(&forwarded));
        }
        default:
            return 0;
        }
    }

    LRESULT SelectFolder(WPARAM byList, LPARAM target) {
        OwnedIdList parsed;
        PCIDLIST_ABSOLUTE wanted = reinterpret_cast<PCIDLIST_ABSOLUTE>(target);
        if (!byList) {
            const auto* path = reinterpret_cast<const wchar_t*>(target);
            if (!path || !*path || FAILED(SHParseDisplayName(path, nullptr, &parsed.list, 0, nullptr))) return FALSE;
            wanted = parsed.list;
        }
        if (!wanted) return FALSE;
        // Down from the desktop, opening each branch that holds the folder.
        HTREEITEM item = TreeView_GetRoot(tree_);
        while (item) {
            const PIDLIST_ABSOLUTE list = ItemList(item);
            if (ILIsEqual(list, wanted)) {
                TreeView_SelectItem(tree_, item);
                TreeView_EnsureVisible(tree_, item);
                return TRUE;
            }
            if (ILIsParent(list, wanted, FALSE)) {
                TreeView_Expand(tree_, item, TVE_EXPAND);
                item = TreeView_GetChild(tree_, item);
            } else {
                item = TreeView_GetNextSibling(tree_, item);
            }
        }
        return FALSE;
    }

    HWND tree_ = nullptr;
};

}  // namespace

bool RegisterFolderTree() {
    return RegisterWindowClass(L"NCCFolderTree", [] { return static_cast<Window*>(new FolderTree); }, 0,
                               LoadCursorW(nullptr, IDC_ARROW));
}

}  // namespace lx
