#include "RenameTool.h"

#include "ComScope.h"
#include "ExifDateDlg.h"
#include "RenameSystem.h"

namespace lx {

void RunRenameToExifDateTool(HWND owner, const std::vector<std::wstring>& files) {
    ComScope com;  // the progress dialog is a shell COM object
    CExifDateDlg dialog(files, WindowsRenameServices());
    dialog.DoModal(owner);
}

}  // namespace lx
