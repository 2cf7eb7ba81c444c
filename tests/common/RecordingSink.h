// A tool sink for the tests of the tools' run parts: every call it hears becomes one line of
// `events`, questions are answered with `answer`, and it turns cancelled once it was asked
// `cancelAfterChecks` times (never when negative).
#pragma once

#include <string>
#include <vector>

#include "ToolSink.h"

namespace lxtest {

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
    int Message(unsigned textId, const std::wstring& argument, unsigned flags) override {
        events.push_back(L"message " + std::to_wstring(textId) + (argument.empty() ? L"" : L" " + argument));
        messages.push_back(textId);
        messageFlags.push_back(flags);
        return answer;
    }
    void Report(const std::wstring& line) override { reports.push_back(line); }

    std::vector<std::wstring> events, reports;
    std::vector<unsigned> messages, messageFlags;
    int answer = lx::kIdYes;
    int cancelAfterChecks = -1;
    int checks = 0;
};

}  // namespace lxtest
