#include "ToolWorkers.h"

namespace lx {

void RunRenameToExifDateTool(HWND owner, HDROP drop) {
    (void)owner;
    (void)drop;
}

}  // namespace lx
