#include "ToolWorkers.h"

namespace lx {

void RunJpeg2PdfTool(HWND owner, HDROP drop) {
    (void)owner;
    (void)drop;
}

}  // namespace lx
