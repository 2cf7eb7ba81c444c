// The exported entry points of lxpicture.dll. Every tool has a wide entry (name ending in
// W) and an eight-bit one that converts its command line with the ANSI code page and then
// does what the wide one does. The batch and publishing entries take the name of a request
// key; the frame tools take a path.
#include <windows.h>
#include <shlwapi.h>

#include <memory>
#include <string>
#include <vector>

#include "ActivationScope.h"
#include "CommandLine.h"
#include "DropListPaths.h"
#include "FrameRunner.h"
#include "ModuleResources.h"
#include "ToolRequest.h"
// The tools: each one's worker (batch, publishing) or frame (editor, viewer, slide show), known here alone.
#include "ContrastResizeTool.h"
#include "ConvertImageTool.h"
#include "Jpeg2PdfTool.h"
#include "MainFrame.h"
#include "PickoutThumbnailTool.h"
#include "RenameTool.h"
#include "SlideFrame.h"
#include "SplitImageTool.h"
#include "ViewFrame.h"
#include "WebAlbumTool.h"

namespace {

constexpr int kWideLineChars = 1040;

using Files = std::vector<std::wstring>;

// The eight-bit command line in a wide buffer of `chars` characters.
std::wstring WidenCommandLine(const char* commandLine, int chars) {
    std::wstring wide(static_cast<size_t>(chars), L'\0');
    if (commandLine) {
        if (MultiByteToWideChar(CP_ACP, 0, commandLine, -1, wide.data(), chars) == 0) wide[0] = L'\0';
        wide[static_cast<size_t>(chars) - 1] = L'\0';
    }
    wide.resize(wcslen(wide.c_str()));
    return wide;
}

// "rundll32 lxpicture.dll,imgRunW PATH" looks for "imgRunWW" first and, not finding it,
// calls imgRunW itself with an eight-bit line. A wide line that starts with an ASCII
// character has a zero second byte; an eight-bit line of two or more characters does not.
// Such a line is taken as eight-bit when, so read, it names an existing file.
std::wstring PathLineFromEitherWidth(LPWSTR line, std::wstring (*pathOf)(const wchar_t*)) {
    if (!line) return pathOf(nullptr);
    const auto* bytes = reinterpret_cast<const char*>(line);
    if (bytes[0] != 0 && bytes[1] != 0) {
        const std::wstring narrow = pathOf(WidenCommandLine(bytes, kWideLineChars).c_str());
        if (!narrow.empty() && PathFileExistsW(narrow.c_str())) return narrow;
    }
    return pathOf(line);
}

// Reads the request named by the command line and hands its files to the tool. The drop
// block is freed here whatever happened; a block that holds no file name, or whose names
// would run off its end, starts nothing.
template <typename Worker>
int RunBatchTool(const wchar_t* keyName, Worker worker) {
    lx::ActivationScope controls;
    lx::ScopedToolRequest scoped;
    if (!lx::ReadToolRequest(scoped.request, keyName)) return 0;
    const Files files = lx::DropListPaths(scoped.request.drop);
    if (!files.empty()) worker(files, scoped.request);
    return 0;
}

constexpr lx::FrameFactories kFrames = {&lx::MakeEditorFrame, &lx::MakeViewerFrame, &lx::MakeSlideFrame};

}  // namespace

// The .def file lists the exports with their exact names.
#define LX_EXPORT extern "C"

// The wide entry of a batch or publishing tool whose worker takes the owner and the files.
#define LX_BATCH_ENTRY(name, worker)                                                      \
    LX_EXPORT int WINAPI name(HWND owner, HINSTANCE, LPWSTR commandLine, int) {           \
        return RunBatchTool(commandLine, [&](const Files& files, const lx::ToolRequest&) { \
            worker(owner, files);                                                         \
        });                                                                               \
    }

LX_BATCH_ENTRY(RunConvertImageW, lx::ConvertImageFiles)
LX_BATCH_ENTRY(RunSplitImageW, lx::RunSplitImageTool)
LX_BATCH_ENTRY(RunContrastResizeW, lx::RunContrastResizeTool)
LX_BATCH_ENTRY(RunRenameToExifDateW, lx::RunRenameToExifDateTool)
LX_BATCH_ENTRY(RunJpeg2PdfW, lx::ConvertJpegsToPdf)
LX_BATCH_ENTRY(RunWebAlbumW, lx::RunWebAlbumTool)

LX_EXPORT int WINAPI RunPickoutThumbnailW(HWND owner, HINSTANCE, LPWSTR commandLine, int) {
    return RunBatchTool(commandLine, [&](const Files& files, const lx::ToolRequest& request) {
        lx::RunPickoutThumbnailTool(owner, files, request.path);
    });
}

LX_EXPORT int WINAPI pxfRunW(HWND, HINSTANCE, LPWSTR commandLine, int showCmd) {
    lx::ActivationScope controls;
    return lx::RunFrameTool(commandLine ? commandLine : L"", showCmd, lx::FrameMode::Editor, kFrames);
}

LX_EXPORT int WINAPI imgRunW(HWND, HINSTANCE, LPWSTR commandLine, int showCmd) {
    lx::ActivationScope controls;
    return lx::RunFrameTool(PathLineFromEitherWidth(commandLine, &lx::ViewerPathFromCommandLine), showCmd,
                            lx::FrameMode::Viewer, kFrames);
}

LX_EXPORT int WINAPI slideRunW(HWND, HINSTANCE, LPWSTR commandLine, int showCmd) {
    lx::ActivationScope controls;
    return lx::RunSlideShowTool(PathLineFromEitherWidth(commandLine, &lx::UnquotedPath), showCmd, kFrames.slide);
}

// Eight-bit variants.
#define LX_EIGHT_BIT_ENTRY(name, wideName, chars)                                   \
    LX_EXPORT int WINAPI name(HWND owner, HINSTANCE instance, LPSTR line, int show) { \
        std::wstring wide = WidenCommandLine(line, chars);                          \
        return wideName(owner, instance, wide.data(), show);                        \
    }

LX_EIGHT_BIT_ENTRY(RunConvertImage, RunConvertImageW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(RunSplitImage, RunSplitImageW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(RunContrastResize, RunContrastResizeW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(RunRenameToExifDate, RunRenameToExifDateW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(RunPickoutThumbnail, RunPickoutThumbnailW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(RunWebAlbum, RunWebAlbumW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(RunJpeg2Pdf, RunJpeg2PdfW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(pxfRun, pxfRunW, static_cast<int>(lx::kPathChars))
LX_EIGHT_BIT_ENTRY(imgRun, imgRunW, kWideLineChars)
LX_EIGHT_BIT_ENTRY(slideRun, slideRunW, kWideLineChars)

// The four retired entries share one body that does nothing (the .def file names them).
extern "C" int WINAPI vwiConvertImage(HWND, HINSTANCE, LPSTR, int) { return 0; }

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
    return TRUE;
}
