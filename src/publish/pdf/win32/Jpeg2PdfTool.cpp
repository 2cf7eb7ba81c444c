#include "Jpeg2PdfTool.h"

#include <shlwapi.h>

#include "ComScope.h"
#include "CommandLine.h"
#include "DialogHelpers.h"
#include "ImageProbe.h"
#include "ModuleResources.h"
#include "ProgressSink.h"

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

void ConvertJpegsToPdf(HWND owner, const std::vector<std::wstring>& files) {
    ComScope com;
    // Pages are composed far faster than files are read: no bar, and no stop half-way.
    ProgressSink sink(owner, MAKEINTRESOURCEW(kJpegPdfTitle), ProgressSink::kDefaultFlags, ProgressSink::kNeverCancels);
    const auto jpegs = KeepJpegFiles(AsPaths(files), ProbeFile);
    if (!AcceptJpegCount(jpegs.size(), sink)) return;
    std::wstring output;
    if (!AskOutputPath(owner, jpegs.front(), output)) return;
    RunJpegPdfJob(MakeJob(output), jpegs, sink);
}

JpegPdfResult RunJpeg2PdfFiles(const std::wstring& output, const std::vector<std::wstring>& files, ToolSink& sink) {
    return RunJpegPdfTool(MakeJob(output), AsPaths(files), ProbeFile, sink);
}

}  // namespace lx
