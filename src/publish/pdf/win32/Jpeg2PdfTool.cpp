#include "Jpeg2PdfTool.h"

#include <shlwapi.h>

#include "ComScope.h"
#include "CommandLine.h"
#include "DialogHelpers.h"
#include "ImageProbe.h"
#include "Jpeg2PdfProgress.h"
#include "ModuleResources.h"
#include "ToolWorkers.h"

namespace lx {

namespace {

int ProbeFile(const std::filesystem::path& path) { return ProbeImageType(path); }

std::vector<std::filesystem::path> AsPaths(const std::vector<std::wstring>& files) {
    return std::vector<std::filesystem::path>(files.begin(), files.end());
}

JpegPdfJob MakeJob(const std::wstring& output) {
    JpegPdfJob job;
    job.output = WithPdfExtension(output);
    job.progressTitle = LoadResString(kJpegPdfTitle);
    job.progressLine = LoadResString(kJpegPdfProgressLine);
    job.createOutput = CreateWin32FileSink;
    return job;
}

// The save dialog, opening in the first file's folder with an empty name. False on cancel.
bool AskOutputPath(HWND owner, const std::filesystem::path& firstFile, std::wstring& output) {
    wchar_t folder[kPathChars] = {};
    lstrcpynW(folder, firstFile.c_str(), int(kPathChars));
    PathRemoveFileSpecW(folder);
    wchar_t path[kPathChars] = {};
    const FileFilter pdfOnly = {L"PDF(*.pdf)", L"*.pdf"};
    if (!ShowItemFileDialog(owner, false, MAKEINTRESOURCEW(kJpegPdfTitle), folder, path, &pdfOnly, 1)) return false;
    output = path;
    return true;
}

}  // namespace

std::vector<std::wstring> DropListPaths(HDROP drop) {
    std::vector<std::wstring> paths;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        wchar_t path[kPathChars] = {};
        if (DragQueryFileW(drop, i, path, UINT(kPathChars)) > 0) paths.push_back(path);
    }
    return paths;
}

void ConvertJpegsToPdf(HWND owner, HDROP drop) {
    ComScope com;
    Jpeg2PdfProgressSink sink(owner);
    const auto jpegs = KeepJpegFiles(AsPaths(DropListPaths(drop)), ProbeFile);
    if (!AcceptJpegCount(jpegs.size(), sink)) return;
    std::wstring output;
    if (!AskOutputPath(owner, jpegs.front(), output)) return;
    RunJpegPdfJob(MakeJob(output), jpegs, sink);
}

JpegPdfResult RunJpeg2PdfFiles(const std::wstring& output, const std::vector<std::wstring>& files, ToolSink& sink) {
    return RunJpegPdfTool(MakeJob(output), AsPaths(files), ProbeFile, sink);
}

void RunJpeg2PdfTool(HWND owner, HDROP drop) { ConvertJpegsToPdf(owner, drop); }

}  // namespace lx
