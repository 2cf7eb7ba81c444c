// Console output of lxhost: UTF-8 on standard output and standard error, so Japanese names
// survive pipes and files, and the sink that unattended runs report to.
#pragma once

#include <cstdio>
#include <string>

#include "ToolSink.h"

namespace lxhost {

std::string Utf8(const std::wstring& text);
void Print(FILE* stream, const std::wstring& text);  // adds a line feed

// Prints every message with its string id instead of showing it, answers questions with
// Yes (Retry/Cancel with Cancel), and prints report lines on standard output.
class ConsoleSink : public lx::ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring&) override {}
    void SetLine(int, const std::wstring&, bool) override {}
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override {}
    int Message(unsigned textId, const std::wstring& argument, unsigned flags) override;
    void Report(const std::wstring& line) override { Print(stdout, line); }

    int messages = 0;
};

}  // namespace lxhost
