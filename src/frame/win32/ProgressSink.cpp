#include "ProgressSink.h"

#include "DialogHelpers.h"
#include "ModuleResources.h"

namespace lx {

namespace {

// The file-operation library's copy animation, shown when that library is loaded.
constexpr UINT kFileOperationAnimation = 165;

}  // namespace

ProgressSink::ProgressSink(HWND owner, const wchar_t* caption, DWORD flags, CancelMode cancel)
    : owner_(owner), caption_(TextOrResString(caption)), flags_(flags), cancel_(cancel) {}

ProgressSink::~ProgressSink() { EndProgress(); }

void ProgressSink::StartProgress(const std::wstring& title, const std::wstring& firstLine) {
    EndProgress();
    if (FAILED(CoCreateInstance(CLSID_ProgressDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IProgressDialog,
                                reinterpret_cast<void**>(&dialog_)))) {
        dialog_ = nullptr;
        return;
    }
    dialog_->SetTitle(title.c_str());
    dialog_->SetLine(1, firstLine.c_str(), FALSE, nullptr);
    if (HMODULE fileOperations = GetModuleHandleW(L"ncfop.dll")) {
        dialog_->SetAnimation(fileOperations, kFileOperationAnimation);
    }
    if (FAILED(dialog_->StartProgressDialog(owner_, nullptr, flags_, nullptr))) {
        dialog_->Release();
        dialog_ = nullptr;
    }
}

void ProgressSink::SetLine(int line, const std::wstring& text, bool compactPath) {
    if (dialog_ == nullptr || line < 1 || line > 3) return;
    dialog_->SetLine(static_cast<DWORD>(line), text.c_str(), compactPath ? TRUE : FALSE, nullptr);
}

void ProgressSink::SetProgress(uint64_t done, uint64_t total) {
    if (dialog_ != nullptr) dialog_->SetProgress64(done, total);
}

bool ProgressSink::Cancelled() {
    return cancel_ == kUserMayCancel && dialog_ != nullptr && dialog_->HasUserCancelled();
}

void ProgressSink::EndProgress() {
    if (dialog_ == nullptr) return;
    dialog_->StopProgressDialog();
    dialog_->Release();
    dialog_ = nullptr;
}

int ProgressSink::Message(unsigned textId, const std::wstring& argument, unsigned flags) {
    return ShowMessage(MAKEINTRESOURCEW(textId), caption_.c_str(), argument.c_str(), flags);
}

}  // namespace lx
