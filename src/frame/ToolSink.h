// ToolSink: what a tool's run part reports to, and asks of, whoever started it.
//
// Every batch and publishing tool is split into an "ask" part (its dialogs) and a "run" part
// that is given the options, the file list and a sink. Interactively the sink is the shell's
// progress dialog plus message boxes (ProgressSink on Windows); unattended (lxhost
// --unattended, tests) it prints or records, and answers questions with a fixed button.
// Texts are wide strings; string ids are the module's string-table ids.
#pragma once

#include <cstdint>
#include <string>

namespace lx {

// Message-box buttons and flags, with the values Windows gives them.
enum : int { kIdOk = 1, kIdCancel = 2, kIdAbort = 3, kIdRetry = 4, kIdIgnore = 5, kIdYes = 6, kIdNo = 7 };
enum : unsigned {
    kMbOk = 0x0,
    kMbOkCancel = 0x1,
    kMbYesNo = 0x4,
    kMbIconError = 0x10,
    kMbIconQuestion = 0x20,
    kMbIconWarning = 0x30,
    kMbIconInformation = 0x40,
};

class ToolSink {
public:
    virtual ~ToolSink() = default;

    // Starts the progress display: its title and the text of its first line.
    virtual void StartProgress(const std::wstring& title, const std::wstring& firstLine) = 0;
    // Sets line 1, 2 or 3 of the progress display; `compactPath` shortens a path to fit.
    virtual void SetLine(int line, const std::wstring& text, bool compactPath) = 0;
    virtual void SetProgress(uint64_t done, uint64_t total) = 0;
    // True once the user asked to stop; tools test it between files.
    virtual bool Cancelled() = 0;
    virtual void EndProgress() = 0;

    // A message from the string table (`textId`, formatted with `argument` in place of "%1"),
    // with message-box `flags`; returns the button chosen.
    virtual int Message(unsigned textId, const std::wstring& argument, unsigned flags) = 0;

    // One line of report for unattended runs (old and new names, files written); the
    // interactive sink ignores it.
    virtual void Report(const std::wstring& line) { (void)line; }
};

}  // namespace lx
