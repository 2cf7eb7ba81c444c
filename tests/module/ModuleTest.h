// What the tests of the built module share: lxpicture.dll loaded as the host loads it, its
// entries by name, its strings, and a watch on the windows a call shows.
#pragma once

#include <windows.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace lxtest {

using WideEntry = int(WINAPI*)(HWND, HINSTANCE, LPWSTR, int);
using AnsiEntry = int(WINAPI*)(HWND, HINSTANCE, LPSTR, int);

inline HMODULE Dll() {
    static HMODULE dll = LoadLibraryW(LX_DLL_PATH);
    return dll;
}

template <typename T>
T Entry(const char* name) {
    return reinterpret_cast<T>(reinterpret_cast<void*>(GetProcAddress(Dll(), name)));
}

inline std::wstring DllString(UINT id) {
    wchar_t buffer[256] = {};
    LoadStringW(Dll(), id, buffer, 256);
    return buffer;
}

// Closes every window that the calling thread shows while the watch lives (a dialog with
// Cancel, anything else with WM_CLOSE) and keeps what it saw of each.
class WindowWatch {
public:
    struct Seen {
        std::wstring className, caption;
        DWORD style;
    };

    WindowWatch() : thread_(GetCurrentThreadId()) {
        watcher_ = std::thread([this] {
            while (!stop_) {
                EnumThreadWindows(thread_, &WindowWatch::CloseVisible, reinterpret_cast<LPARAM>(this));
                Sleep(50);
            }
        });
    }
    ~WindowWatch() { Stop(); }
    // What was seen, once the watch has stopped.
    const std::vector<Seen>& Stop() {
        stop_ = true;
        if (watcher_.joinable()) watcher_.join();
        return seen_;
    }

private:
    static BOOL CALLBACK CloseVisible(HWND hwnd, LPARAM self) {
        auto* watch = reinterpret_cast<WindowWatch*>(self);
        if (!IsWindowVisible(hwnd) || !watch->closed_.insert(hwnd).second) return TRUE;
        wchar_t className[256] = {}, caption[256] = {};
        GetClassNameW(hwnd, className, 256);
        GetWindowTextW(hwnd, caption, 256);
        watch->seen_.push_back({className, caption, static_cast<DWORD>(GetWindowLongPtrW(hwnd, GWL_STYLE))});
        if (watch->seen_.back().className == L"#32770") PostMessageW(hwnd, WM_COMMAND, IDCANCEL, 0);
        PostMessageW(hwnd, WM_CLOSE, 0, 0);
        return TRUE;
    }
    DWORD thread_;
    std::atomic<bool> stop_{false};
    std::set<HWND> closed_;
    std::vector<Seen> seen_;
    std::thread watcher_;
};

}  // namespace lxtest
