// The viewer's speed as a user meets it, through the DLL's imgRunW:
//   decode   LoadImageFile of the photograph in this process (what the loader thread does)
//   open     from the imgRunW call to the picture painted in the image view
//   memory   the process's committed memory once the frame has listed a folder of N
//            photographs, and again once its thumbnails are made (the process idle)
// usage: viewer_open_bench DLL PHOTO FOLDER_FILE COUNT
//        viewer_open_bench --peak open|decode DLL PHOTO
// The second form, run in a fresh process, does one open (or one plain decode) and prints
// how far the process's resident memory rose above what it held before, at its peak.
// Prints "name seconds" or "name megabytes" lines; run.sh turns them into ratios.
#include <windows.h>
#include <commctrl.h>
#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "ImageCodecs.h"

namespace {

using Clock = std::chrono::steady_clock;
using WideEntry = void(CALLBACK*)(HWND, HINSTANCE, LPWSTR, int);
constexpr UINT kGetImage = 1711;

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

struct Memory {
    double committed, resident, peakResident;
};

Memory MemoryNow() {
    PROCESS_MEMORY_COUNTERS c{sizeof c};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &c, sizeof c);
    constexpr double mb = 1048576.0;
    return {c.PagefileUsage / mb, c.WorkingSetSize / mb, c.PeakWorkingSetSize / mb};
}

double BusySeconds() {
    FILETIME created, exited, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
    auto seconds = [](const FILETIME& t) { return ((ULONGLONG(t.dwHighDateTime) << 32) | t.dwLowDateTime) / 1e7; };
    return seconds(kernel) + seconds(user);
}

HWND ChildById(HWND parent, int id) {
    struct Search {
        int id;
        HWND found;
    } s{id, nullptr};
    EnumChildWindows(
        parent,
        [](HWND hwnd, LPARAM p) {
            auto* search = reinterpret_cast<Search*>(p);
            if (GetDlgCtrlID(hwnd) != search->id) return TRUE;
            search->found = hwnd;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&s));
    return s.found;
}

// One viewer on its own thread; `until` is polled every `pollMs` with the frame window.
template <class Until>
double RunViewer(HMODULE dll, const std::wstring& path, DWORD pollMs, Until until) {
    auto entry = reinterpret_cast<WideEntry>(reinterpret_cast<void*>(GetProcAddress(dll, "imgRunW")));
    std::atomic<DWORD> thread{0};
    std::wstring line = L"\"" + path + L"\"";
    const Clock::time_point start = Clock::now();
    std::thread viewer([&] {
        thread = GetCurrentThreadId();
        entry(nullptr, dll, line.data(), SW_SHOWNORMAL);
    });
    double seconds = -1;
    for (DWORD waited = 0; waited < 1800000; waited += pollMs) {
        HWND frame = nullptr;
        for (HWND w = FindWindowExW(nullptr, nullptr, L"LXIMAGEVIEW_FRAME", nullptr); w;
             w = FindWindowExW(nullptr, w, L"LXIMAGEVIEW_FRAME", nullptr))
            if (GetWindowThreadProcessId(w, nullptr) == thread) frame = w;
        if (frame && until(frame)) {
            seconds = Seconds(start);
            PostMessageW(frame, WM_CLOSE, 0, 0);
            break;
        }
        Sleep(pollMs);
    }
    viewer.join();
    return seconds;
}

// Until the view holds a picture and has painted it: the view's pending paint is done before
// UpdateWindow, sent across threads, returns.
bool PictureOnScreen(HWND frame) {
    HWND view = ChildById(frame, 21);
    if (!view || SendMessageW(view, kGetImage, 0, 0) == 0) return false;
    UpdateWindow(view);
    return true;
}

int Peak(const wchar_t* what, const wchar_t* dllPath, const std::wstring& photo) {
    HMODULE dll = LoadLibraryW(dllPath);
    if (!dll) return 3;
    const Memory before = MemoryNow();
    double peak = 0;
    if (std::wstring(what) == L"decode") {
        if (!lx::LoadImageFile(photo)) return 4;
        peak = MemoryNow().peakResident;
    } else if (RunViewer(dll, photo, 1, [&](HWND frame) {
                   // Read at once: the folder's thumbnails, made after the picture, are not the open's.
                   if (!PictureOnScreen(frame)) return false;
                   peak = MemoryNow().peakResident;
                   return true;
               }) < 0) {
        return 5;
    }
    wprintf(L"peak_resident_mb %.1f\n", peak - before.resident);
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc == 5 && std::wstring(argv[1]) == L"--peak") return Peak(argv[2], argv[3], argv[4]);
    if (argc < 5) {
        fwprintf(stderr, L"usage: viewer_open_bench DLL PHOTO FOLDER_FILE COUNT\n"
                         L"       viewer_open_bench --peak open|decode DLL PHOTO\n");
        return 2;
    }
    HMODULE dll = LoadLibraryW(argv[1]);
    if (!dll) return 3;
    const std::wstring photo = argv[2], folderFile = argv[3];
    const int count = _wtoi(argv[4]);

    double decode = 1e9, open = 1e9;
    for (int run = 0; run < 3; ++run) {
        const Clock::time_point start = Clock::now();
        if (!lx::LoadImageFile(photo)) return 4;
        decode = std::min(decode, Seconds(start));
        const double shown = RunViewer(dll, photo, 1, PictureOnScreen);
        if (shown < 0) return 5;
        open = std::min(open, shown);
    }
    wprintf(L"decode %.3f\nopen %.3f\n", decode, open);

    const double before = MemoryNow().committed;
    double listed = 0, settled = 0;
    RunViewer(dll, folderFile, 200, [&](HWND frame) {
        HWND list = ChildById(frame, 23);
        if (!list || SendMessageW(list, LVM_GETITEMCOUNT, 0, 0) < count) return false;
        if (listed == 0) listed = MemoryNow().committed - before;
        // Thumbnails are done when the process stops working: under 5 % of one processor
        // over a second.
        static double lastBusy = BusySeconds();
        static Clock::time_point since = Clock::now();
        if (Seconds(since) < 1) return false;
        const double busy = BusySeconds();
        const bool idle = busy - lastBusy < 0.05 * Seconds(since);
        lastBusy = busy;
        since = Clock::now();
        if (!idle) return false;
        const double now = MemoryNow().committed;
        settled = now - before;
        return true;
    });
    wprintf(L"listed_mb %.1f\nthumbnails_mb %.1f\n", listed, settled);
    return 0;
}
