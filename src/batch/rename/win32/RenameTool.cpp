#include "ToolWorkers.h"

#include "ComScope.h"
#include "ExifDateDlg.h"
#include "RenameSystem.h"

namespace lx {

void RunRenameToExifDateTool(HWND owner, HDROP drop) {
    ComScope com;  // the progress dialog is a shell COM object
    std::vector<std::wstring> files;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        const UINT length = DragQueryFileW(drop, i, nullptr, 0);
        std::wstring path(length + 1, L'\0');
        path.resize(DragQueryFileW(drop, i, path.data(), length + 1));
        if (!path.empty()) files.push_back(std::move(path));
    }
    CExifDateDlg dialog(std::move(files), WindowsRenameServices());
    dialog.DoModal(owner);
}

}  // namespace lx
