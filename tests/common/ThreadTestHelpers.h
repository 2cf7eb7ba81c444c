// What the window tests share: a plain window class of their own, running this thread's
// message loop for a while, reading back what a window draws, and counting this process's
// threads and committed memory (to see that workers ended and nothing leaked).
#pragma once

#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <cstdint>
#include <vector>

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

// The private bytes this process has committed.
inline long long PrivateBytes() {
    PROCESS_MEMORY_COUNTERS counters{sizeof counters};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<long long>(counters.PagefileUsage);
}

// `child`'s place in its parent's client area.
inline RECT RectInParent(HWND child) {
    RECT rc{};
    GetWindowRect(child, &rc);
    MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

// What a window draws into its client area, read back through WM_PRINTCLIENT as 0xRRGGBB
// values, row by row from the top.
struct Shot {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x] & 0xffffff; }
};

inline Shot PrintClient(HWND window) {
    RECT rc{};
    GetClientRect(window, &rc);
    Shot shot{rc.right, rc.bottom};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), rc.right, -rc.bottom, 1, 32, BI_RGB};
    void* bits = nullptr;
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(dc, bitmap);
    SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
    GdiFlush();
    shot.pixels.assign(static_cast<uint32_t*>(bits), static_cast<uint32_t*>(bits) + rc.right * rc.bottom);
    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
    return shot;
}

}  // namespace lxtest
