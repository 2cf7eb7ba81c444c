// A frame tool of the module (viewer, editor) started through its wide entry on a thread of
// its own, as the host runs it, and closed at the end if still open: a question about unsaved
// changes is then answered No.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <atomic>
#include <string>
#include <thread>

#include "../lib/nccore/win32/DialogDriver.h"
#include "ModuleTest.h"

namespace lxtest {

class FrameOnThread {
public:
    // `line` is handed to `entryName` as it stands; a non-empty `eightBitLine` is handed instead,
    // as rundll32 passes the line to a wide entry named in full.
    FrameOnThread(const char* entryName, const wchar_t* frameClass, std::wstring line, std::string eightBitLine = {})
        : frameClass_(frameClass) {
        auto entry = Entry<WideEntry>(entryName);
        thread_ = std::thread([this, entry, line, eightBitLine]() mutable {
            threadId_ = GetCurrentThreadId();
            entry(nullptr, Dll(), eightBitLine.empty() ? line.data() : reinterpret_cast<LPWSTR>(eightBitLine.data()),
                  SW_SHOWNORMAL);
            ended_ = true;
        });
        WaitFor([&] { return (frame_ = FrameOfThread()) != nullptr || ended_; });
    }
    ~FrameOnThread() {
        if (!ended_ && frame_) {
            PostMessageW(frame_, WM_CLOSE, 0, 0);
            if (!WaitFor([&] { return ended_.load(); }, 3000)) Answer(IDNO);
        }
        thread_.join();
    }
    FrameOnThread(const FrameOnThread&) = delete;
    FrameOnThread& operator=(const FrameOnThread&) = delete;

    HWND frame() const { return frame_; }
    bool ended() const { return ended_; }
    bool WaitEnded(int ms = 20000) { return WaitFor([&] { return ended_.load(); }, ms); }
    std::wstring Title() const { return WindowText(frame_); }

    // A command carried out before this returns; one that opens a dialog goes by Command.
    void CommandNow(UINT id) { SendMessageW(frame_, WM_COMMAND, id, 0); }
    void Command(UINT id) { PostMessageW(frame_, WM_COMMAND, id, 0); }

    HWND Child(int id) const {
        for (HWND child : Descendants(frame_))
            if (GetDlgCtrlID(child) == id) return child;
        return nullptr;
    }
    std::wstring StatusText(int index) const {
        wchar_t text[200] = {};
        SendMessageW(Child(kStatusBarId), SB_GETTEXTW, index, reinterpret_cast<LPARAM>(text));
        return text;
    }
    bool ToolEnabled(UINT id) const { return SendMessageW(Child(kToolBarId), TB_ISBUTTONENABLED, id, 0) != 0; }

    // The message box the frame shows: its text, answered with `button`; empty when none came.
    std::wstring Answer(int button) {
        HWND box = nullptr;
        if (!WaitFor([&] { return (box = OwnedDialog()) != nullptr; }, 10000)) return L"";
        const std::wstring text = AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
        WaitFor([&] { return !IsWindow(box); }, 10000);
        return text;
    }

protected:
    static constexpr int kStatusBarId = 59393, kToolBarId = 0xE803;

    // The visible dialog the frame owns, or null.
    HWND OwnedDialog() const {
        HWND found = nullptr;
        for (HWND w = FindWindowExW(nullptr, nullptr, L"#32770", nullptr); w; w = FindWindowExW(nullptr, w, L"#32770", nullptr))
            if (GetWindow(w, GW_OWNER) == frame_ && IsWindowVisible(w)) found = w;
        return found;
    }

private:
    HWND FrameOfThread() const {
        HWND found = nullptr;
        for (HWND w = FindWindowExW(nullptr, nullptr, frameClass_, nullptr); w;
             w = FindWindowExW(nullptr, w, frameClass_, nullptr))
            if (GetWindowThreadProcessId(w, nullptr) == threadId_) found = w;
        return found;
    }

    const wchar_t* frameClass_;
    std::thread thread_;
    std::atomic<DWORD> threadId_{0};
    std::atomic<bool> ended_{false};
    HWND frame_ = nullptr;
};

}  // namespace lxtest
