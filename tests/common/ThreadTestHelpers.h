// What the window tests of the thumbnail list share: running this thread's message loop
// for a while, and counting this process's threads (to see that workers have ended).
#pragma once

#include <windows.h>
#include <tlhelp32.h>

namespace lxtest {

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
