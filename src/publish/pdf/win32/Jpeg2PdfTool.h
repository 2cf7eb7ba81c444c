// The Windows side of the JPEG-to-PDF tool: the worker behind RunJpeg2PdfW (ask for the output
// name, then run with the shell's progress dialog), and the same run for unattended callers.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "ByteSink.h"
#include "JpegPdfJob.h"
#include "ToolSink.h"

namespace lx {

// The tool behind the module's RunJpeg2PdfW export: the JPEG files among `files` (by
// content), the count messages, the save dialog, then the run.
void ConvertJpegsToPdf(HWND owner, const std::vector<std::wstring>& files);

// The run without dialogs: `output` as if typed in the save dialog (".pdf" is appended by the
// same rule), `files` in list order, messages and progress to `sink`.
JpegPdfResult RunJpeg2PdfFiles(const std::wstring& output, const std::vector<std::wstring>& files, ToolSink& sink);

// Creates `path` for writing, replacing any file of that name; null when it cannot be
// created. The file is not shared while the document is written.
std::unique_ptr<ByteSink> CreateWin32FileSink(const std::filesystem::path& path);

}  // namespace lx
