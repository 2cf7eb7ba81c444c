// `lxhost pdf --unattended --output OUT FILE...`: the JPEG-to-PDF run with the save dialog
// answered by OUT (".pdf" still appended by the tool's rule) and messages printed with their
// string id. Exit code 0 when the whole document was written, 1 otherwise.
#include "HostConsole.h"
#include "Jpeg2PdfTool.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunPdf(const Args& args) {
    std::wstring output;
    std::vector<std::wstring> files;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == L"--output" && i + 1 < args.size()) output = args[++i];
        else files.push_back(args[i]);
    }
    if (output.empty()) {
        Print(stderr, L"usage: lxhost pdf --unattended --output OUT FILE...");
        return 2;
    }
    ConsoleSink sink;
    const lx::JpegPdfResult result = lx::RunJpeg2PdfFiles(output, files, sink);
    if (result == lx::JpegPdfResult::kWritten) Print(stdout, L"written " + lx::WithPdfExtension(output));
    return result == lx::JpegPdfResult::kWritten ? 0 : 1;
}

const UnattendedTool registration(L"pdf", &RunPdf);

}  // namespace
}  // namespace lxhost
