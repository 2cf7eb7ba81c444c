#include "SplitImageTool.h"

#include <commctrl.h>

#include "DialogHelpers.h"
#include "FileOperations.h"
#include "ModuleResources.h"
#include "ProgressSink.h"

namespace lx {

namespace {

constexpr UINT kTitle = 4147;         // "イメージの分割"
constexpr UINT kPortraitText = 4148;  // "%s は縦長（%d x %d pixel）のイメージです。..."
constexpr UINT kSameForRest = 4149;   // "以降も同様に処理する"
constexpr UINT kLoading = 4144, kSaving = 4145;

using TaskDialogIndirectProc = HRESULT(WINAPI*)(const TASKDIALOGCONFIG*, int*, int*, BOOL*);

TaskDialogIndirectProc FindTaskDialog() {
    // The entry is only in version 6 of the controls, which the module's manifest selects.
    HMODULE controls = GetModuleHandleW(L"comctl32.dll");
    if (controls == nullptr) controls = LoadLibraryW(L"comctl32.dll");
    if (controls == nullptr) return nullptr;
    return reinterpret_cast<TaskDialogIndirectProc>(
        reinterpret_cast<void*>(GetProcAddress(controls, "TaskDialogIndirect")));
}

// The question's text: "%s" takes the file name, the two "%d" the width and the height. Done
// by hand, so that a file name holding "%" is never read as a format.
std::wstring PortraitText(const std::wstring& fileName, int width, int height) {
    const std::wstring format = LoadResString(kPortraitText);
    const std::wstring numbers[] = {std::to_wstring(width), std::to_wstring(height)};
    std::wstring text;
    size_t nextNumber = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] == L'%' && i + 1 < format.size() && format[i + 1] == L's') {
            text += fileName;
            ++i;
        } else if (format[i] == L'%' && i + 1 < format.size() && format[i + 1] == L'd' && nextNumber < 2) {
            text += numbers[nextNumber++];
            ++i;
        } else {
            text += format[i];
        }
    }
    return text;
}

}  // namespace

SplitTexts LoadSplitTexts() { return {LoadResString(kLoading), LoadResString(kSaving)}; }

std::function<std::optional<PortraitReply>(const std::wstring&, int, int)> TaskDialogPortraitQuestion(HWND owner) {
    const TaskDialogIndirectProc taskDialog = FindTaskDialog();
    if (taskDialog == nullptr) return {};
    return [owner, taskDialog](const std::wstring& fileName, int width, int height) -> std::optional<PortraitReply> {
        const std::wstring text = PortraitText(fileName, width, height);
        const std::wstring title = LoadResString(kTitle), sameForRest = LoadResString(kSameForRest);
        TASKDIALOGCONFIG config = {};
        config.cbSize = sizeof config;
        config.hwndParent = owner;
        config.hInstance = ModuleInstance();
        config.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION;
        config.dwCommonButtons = TDCBF_YES_BUTTON | TDCBF_NO_BUTTON | TDCBF_CANCEL_BUTTON;
        // The texts themselves rather than their ids: Wine's task dialog reads an id's string
        // without its end and runs on into the next ones.
        config.pszWindowTitle = title.c_str();
        config.pszMainIcon = TD_INFORMATION_ICON;
        config.pszContent = text.c_str();
        config.pszVerificationText = sameForRest.c_str();
        int button = 0;
        BOOL verified = FALSE;
        if (FAILED(taskDialog(&config, &button, nullptr, &verified))) return std::nullopt;
        return PortraitReply{button, verified != FALSE};
    };
}

void RunSplitImageTool(HWND owner, const std::vector<std::wstring>& files) {
    if (files.empty()) return;
    ProgressSink sink(owner, MAKEINTRESOURCEW(kTitle), PROGDLG_AUTOTIME | PROGDLG_NOMINIMIZE);
    SplitServices services;
    services.askPortrait = TaskDialogPortraitQuestion(owner);
    services.recycle = [owner](const std::wstring& path) { return RecycledFile(owner, path).Keep(); };
    RunSplit(files, LoadSplitTexts(), sink, services);
}

}  // namespace lx
