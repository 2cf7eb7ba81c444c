// Drives a modal window that the code under test shows on the test's own thread: a second
// thread waits for a visible top-level window of this process whose caption matches, hands
// it to a callback (which reads it and presses a button), and records what it found.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace lxtest {

// Polls `condition` every 20 ms for up to `milliseconds`; its last answer.
inline bool WaitFor(const std::function<bool()>& condition, int milliseconds = 20000) {
    for (int waited = 0; waited < milliseconds; waited += 20) {
        if (condition()) return true;
        Sleep(20);
    }
    return condition();
}

inline std::wstring WindowText(HWND window) {
    wchar_t text[1024] = {};
    GetWindowTextW(window, text, 1024);
    return text;
}

// The control with the keyboard focus in the thread of `window`.
inline HWND FocusOf(HWND window) {
    GUITHREADINFO info{sizeof info};
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

// `path` made absolute in Windows' own spelling.
inline std::wstring WindowsPath(const std::filesystem::path& path) {
    wchar_t full[1024];
    GetFullPathNameW(path.wstring().c_str(), 1024, full, nullptr);
    return full;
}

// The text of one cell of a list view.
inline std::wstring ItemText(HWND list, int item, int column) {
    wchar_t text[512] = {};
    ListView_GetItemText(list, item, column, text, 512);
    return text;
}

inline std::wstring WindowClass(HWND window) {
    wchar_t name[256] = {};
    GetClassNameW(window, name, 256);
    return name;
}

// Every descendant window of `parent`.
inline std::vector<HWND> Descendants(HWND parent) {
    std::vector<HWND> found;
    EnumChildWindows(
        parent,
        [](HWND child, LPARAM list) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// The items of a combo box, in its order.
inline std::vector<std::wstring> ComboItems(HWND combo) {
    std::vector<std::wstring> items;
    const int count = static_cast<int>(SendMessageW(combo, CB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i) {
        wchar_t text[520] = {};
        SendMessageW(combo, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text));
        items.push_back(text);
    }
    return items;
}

// The texts of all descendants joined by "|", to look for a message box's message.
inline std::wstring AllChildTexts(HWND parent) {
    std::wstring all;
    for (HWND child : Descendants(parent)) all += WindowText(child) + L"|";
    return all;
}

class DialogDriver {
public:
    // Waits up to `timeout` for a window captioned `caption` (empty: any caption), then calls
    // `act` with it on the driver thread.
    DialogDriver(std::wstring caption, std::function<void(HWND)> act,
                 std::chrono::milliseconds timeout = std::chrono::seconds(30))
        : caption_(std::move(caption)), act_(std::move(act)) {
        thread_ = std::thread([this, timeout] { Run(timeout); });
    }
    ~DialogDriver() {
        stop_ = true;
        thread_.join();
    }
    bool Found() const { return found_; }

    // A callback that presses the dialog button `id`.
    static std::function<void(HWND)> Press(int id) {
        return [id](HWND dialog) { PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); };
    }

private:
    static int HoldMilliseconds() {
        const char* hold = std::getenv("LX_TEST_DIALOG_HOLD_MS");
        return hold ? std::atoi(hold) : 300;
    }

    struct Search {
        const std::wstring* caption;
        HWND found;
    };

    void Run(std::chrono::milliseconds timeout) {
        const auto end = std::chrono::steady_clock::now() + timeout;
        while (!stop_ && std::chrono::steady_clock::now() < end) {
            Search search = {&caption_, nullptr};
            EnumWindows(
                [](HWND window, LPARAM param) -> BOOL {
                    auto* s = reinterpret_cast<Search*>(param);
                    DWORD process = 0;
                    GetWindowThreadProcessId(window, &process);
                    if (process != GetCurrentProcessId() || !IsWindowVisible(window)) return TRUE;
                    if (!s->caption->empty() && WindowText(window) != *s->caption) return TRUE;
                    if (WindowClass(window) != L"#32770") return TRUE;
                    s->found = window;
                    return FALSE;
                },
                reinterpret_cast<LPARAM>(&search));
            if (search.found) {
                // Let the dialog finish laying itself out before it is read; LX_TEST_DIALOG_HOLD_MS
                // keeps it up longer, to take a screenshot of it.
                std::this_thread::sleep_for(std::chrono::milliseconds(HoldMilliseconds()));
                found_ = true;
                act_(search.found);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }

    std::wstring caption_;
    std::function<void(HWND)> act_;
    std::atomic<bool> stop_{false};
    std::atomic<bool> found_{false};
    std::thread thread_;
};

}  // namespace lxtest
