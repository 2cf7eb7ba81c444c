#include "Jpeg2PdfProgress.h"

#include "DialogHelpers.h"
#include "JpegPdfJob.h"

namespace lx {

namespace {

// The file-operation library's copy animation, when that library is loaded in the process.
constexpr WORD kProgressAnimationId = 165;

}  // namespace

Jpeg2PdfProgressSink::~Jpeg2PdfProgressSink() { EndProgress(); }

void Jpeg2PdfProgressSink::StartProgress(const std::wstring& title, const std::wstring& firstLine) {
    IProgressDialog* dialog = nullptr;
    if (FAILED(CoCreateInstance(CLSID_ProgressDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IProgressDialog,
                                reinterpret_cast<void**>(&dialog)))) {
        return;  // the run goes on without a progress display
    }
    dialog_ = dialog;
    dialog_->SetTitle(title.c_str());
    dialog_->SetLine(1, firstLine.c_str(), FALSE, nullptr);
    if (HMODULE fileOps = GetModuleHandleW(L"ncfop.dll")) dialog_->SetAnimation(fileOps, kProgressAnimationId);
    dialog_->StartProgressDialog(owner_, nullptr, PROGDLG_NOTIME | PROGDLG_NOMINIMIZE | PROGDLG_NOPROGRESSBAR, nullptr);
}

void Jpeg2PdfProgressSink::SetLine(int line, const std::wstring& text, bool compactPath) {
    if (dialog_) dialog_->SetLine(DWORD(line), text.c_str(), compactPath ? TRUE : FALSE, nullptr);
}

void Jpeg2PdfProgressSink::EndProgress() {
    if (!dialog_) return;
    dialog_->StopProgressDialog();
    dialog_->Release();
    dialog_ = nullptr;
}

int Jpeg2PdfProgressSink::Message(unsigned textId, const std::wstring& argument, unsigned flags) {
    return ShowMessage(MAKEINTRESOURCEW(textId), MAKEINTRESOURCEW(kJpegPdfTitle),
                       argument.empty() ? nullptr : argument.c_str(), flags);
}

}  // namespace lx
