// What the window tests share: a plain window class of their own, running this thread's
// message loop for a while, and counting this process's threads (to see that workers ended).
#pragma once

#include <windows.h>
#include <tlhelp32.h>

namespace lxtest {

// Registers a window class of this program with `proc` and returns its name (registering it
// again, as each test's set-up does, changes nothing).
inline const wchar_t* RegisterTestClass(const wchar_t* name, WNDPROC proc) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = proc;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.lpszClassName = name;
    RegisterClassW(&wc);
    return name;
}

inline void Pump() {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

inline void PumpFor(DWORD milliseconds) {
    const DWORD end = GetTickCount() + milliseconds;
    while (static_cast<int>(end - GetTickCount()) > 0) {
        Pump();
        Sleep(10);
    }
}

inline int ThreadsOfThisProcess() {
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{sizeof(entry)};
    int count = 0;
    for (BOOL ok = Thread32First(snapshot, &entry); ok; ok = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

}  // namespace lxtest
