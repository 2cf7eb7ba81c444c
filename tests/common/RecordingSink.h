// A tool sink for the tests of a tool's run: it records what the run shows as lines of text
// and answers every message with OK.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ToolSink.h"

namespace lxtest {

// Records every call as one line, and cancels once `cancelAfterChecks` checks were made.
class RecordingSink : public lx::ToolSink {
public:
    void StartProgress(const std::wstring& title, const std::wstring& firstLine) override {
        events.push_back(L"start " + title + L" | " + firstLine);
    }
    void SetLine(int line, const std::wstring& text, bool compactPath) override {
        events.push_back(L"line" + std::to_wstring(line) + (compactPath ? L"~ " : L" ") + text);
    }
    void SetProgress(uint64_t done, uint64_t total) override {
        events.push_back(L"progress " + std::to_wstring(done) + L"/" + std::to_wstring(total));
    }
    bool Cancelled() override { return cancelAfterChecks >= 0 && checks++ >= cancelAfterChecks; }
    void EndProgress() override { events.push_back(L"end"); }
    int Message(unsigned textId, const std::wstring& argument, unsigned) override {
        events.push_back(L"message " + std::to_wstring(textId) + (argument.empty() ? L"" : L" " + argument));
        return lx::kIdOk;
    }
    void Report(const std::wstring& line) override { reports.push_back(line); }

    std::vector<std::wstring> events;
    std::vector<std::wstring> reports;
    int cancelAfterChecks = -1;
    int checks = 0;
};

}  // namespace lxtest
