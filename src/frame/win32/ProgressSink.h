// The interactive tool sink: progress in the shell's progress dialog, messages as message
// boxes from the string table. Used by every batch and publishing tool when run by the host.
//
// When the progress dialog object cannot be created, the run goes on without a display and
// Cancelled() stays false. Messages are owned by the active window and carry `caption`.
#pragma once

#include "ToolSink.h"

#include "ComScope.h"

#include <windows.h>
#include <shlobj.h>

#include <string>

namespace lx {

class ProgressSink : public ToolSink {
public:
    // No time estimate, no minimise button, no bar: how the tools show their progress.
    static constexpr DWORD kDefaultFlags = PROGDLG_NOTIME | PROGDLG_NOMINIMIZE | PROGDLG_NOPROGRESSBAR;

    // Whether Cancelled() reports the dialog's Cancel button; a run that cannot stop half-way
    // (one document written at the end) never asks.
    enum CancelMode { kUserMayCancel, kNeverCancels };

    // `caption` (text or string id) titles the message boxes; `flags` are PROGDLG_ flags.
    ProgressSink(HWND owner, const wchar_t* caption, DWORD flags = kDefaultFlags, CancelMode cancel = kUserMayCancel);
    ~ProgressSink() override;
    ProgressSink(const ProgressSink&) = delete;
    ProgressSink& operator=(const ProgressSink&) = delete;

    void StartProgress(const std::wstring& title, const std::wstring& firstLine) override;
    void SetLine(int line, const std::wstring& text, bool compactPath) override;
    void SetProgress(uint64_t done, uint64_t total) override;
    bool Cancelled() override;
    void EndProgress() override;
    int Message(unsigned textId, const std::wstring& argument, unsigned flags) override;

    // True while the progress dialog is shown.
    bool Showing() const { return dialog_ != nullptr; }

private:
    ComScope com_;
    HWND owner_;
    std::wstring caption_;
    DWORD flags_;
    CancelMode cancel_;
    IProgressDialog* dialog_ = nullptr;
};

}  // namespace lx
