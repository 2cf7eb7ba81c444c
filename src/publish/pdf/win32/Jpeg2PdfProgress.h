// The interactive sink of the JPEG-to-PDF run: the shell's progress dialog (no time estimate,
// no minimise button, no bar, since pages are composed far faster than files are read) and
// string-table message boxes. The run never asks whether the user cancelled.
#pragma once

#include <windows.h>
#include <shlobj.h>

#include "ToolSink.h"

namespace lx {

class Jpeg2PdfProgressSink : public ToolSink {
public:
    explicit Jpeg2PdfProgressSink(HWND owner) : owner_(owner) {}
    ~Jpeg2PdfProgressSink() override;
    Jpeg2PdfProgressSink(const Jpeg2PdfProgressSink&) = delete;
    Jpeg2PdfProgressSink& operator=(const Jpeg2PdfProgressSink&) = delete;

    void StartProgress(const std::wstring& title, const std::wstring& firstLine) override;
    void SetLine(int line, const std::wstring& text, bool compactPath) override;
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override;
    int Message(unsigned textId, const std::wstring& argument, unsigned flags) override;

private:
    HWND owner_;
    IProgressDialog* dialog_ = nullptr;  // null when the shell object is unavailable
};

}  // namespace lx
