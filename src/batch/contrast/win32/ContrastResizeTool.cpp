#include "ContrastResizeTool.h"

#include <shlobj.h>

#include "ModuleResources.h"
#include "ProgressSink.h"

namespace lx {

namespace {

constexpr UINT kLoading = 4144, kSaving = 4145;

}  // namespace

bool ShellSourceBin::Recycle(const std::wstring& path) {
    current_ = std::make_unique<RecycledFile>(owner_, path);
    return current_->Moved();
}

void ShellSourceBin::PutBack(const std::wstring&) {
    if (current_) current_->PutBack();
    current_.reset();
}

void ShellSourceBin::Keep(const std::wstring&) {
    if (current_) current_->Keep();
    current_.reset();
}

ContrastTexts LoadContrastTexts() { return {LoadResString(kLoading), LoadResString(kSaving)}; }

void RunContrastResizeTool(HWND owner, const std::vector<std::wstring>& files) {
    if (files.empty()) return;
    ProgressSink sink(owner, L"", PROGDLG_AUTOTIME | PROGDLG_NOMINIMIZE);
    ShellSourceBin bin(owner);
    RunContrastResize(files, LoadContrastTexts(), sink, bin);
}

}  // namespace lx
