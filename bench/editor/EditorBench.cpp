// The editor's speed and memory as a user meets them, through the DLL's pxfRunW:
//   decode     LoadImageFile of the photograph in this process
//   open       from the pxfRunW call to the picture in the image view
//   memcpy     one copy of the picture's bytes into a new global block (the reference)
//   mirror     the mirror operation alone, in this process (mif in, mirror, block out)
//   command    the mirror command in the frame: the same operation plus its Commit (one undo
//              copy, the view's picture replaced)
//   undo       the undo command: the undo step's picture back into the view
//   steps_mb   committed memory added by 16 undo steps, and the picture's size in MB
// usage: editor_bench DLL PHOTO
#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "ImageCodecs.h"
#include "mif.h"

namespace {

using Clock = std::chrono::steady_clock;
using WideEntry = void(CALLBACK*)(HWND, HINSTANCE, LPWSTR, int);
constexpr UINT kGetImage = 1711;

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

double CommittedMegabytes() {
    PROCESS_MEMORY_COUNTERS counters{sizeof counters};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage / 1048576.0;
}

HWND View(HWND frame) { return FindWindowExW(frame, nullptr, L"NCCZoomView", nullptr); }

template <class Operation>
double Best(int runs, Operation operation) {
    double best = 1e9;
    for (int i = 0; i < runs; ++i) {
        const Clock::time_point start = Clock::now();
        operation();
        best = std::min(best, Seconds(start));
    }
    return best;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) {
        fwprintf(stderr, L"usage: editor_bench DLL PHOTO\n");
        return 2;
    }
    HMODULE dll = LoadLibraryW(argv[1]);
    if (!dll) return 3;
    const std::wstring photo = argv[2];
    auto entry = reinterpret_cast<WideEntry>(reinterpret_cast<void*>(GetProcAddress(dll, "pxfRunW")));

    const double decode = Best(3, [&] { lx::LoadImageFile(photo); });

    double open = 1e9, command = 1e9, undo = 1e9, memcpyTime = 1e9, mirror = 1e9, stepsMb = 0, imageMb = 0;
    for (int run = 0; run < 3; ++run) {
        std::atomic<DWORD> thread{0};
        std::wstring line = L"\"" + photo + L"\"";
        const Clock::time_point start = Clock::now();
        std::thread editor([&] {
            thread = GetCurrentThreadId();
            entry(nullptr, dll, line.data(), SW_SHOWNORMAL);
        });
        HWND frame = nullptr;
        for (int waited = 0; waited < 600000; ++waited) {
            for (HWND w = FindWindowExW(nullptr, nullptr, L"LXPHOTOEDIT_FRAME", nullptr); w;
                 w = FindWindowExW(nullptr, w, L"LXPHOTOEDIT_FRAME", nullptr))
                if (GetWindowThreadProcessId(w, nullptr) == thread) frame = w;
            if (frame && View(frame) && SendMessageW(View(frame), kGetImage, 0, 0)) break;
            Sleep(1);
        }
        open = std::min(open, Seconds(start));
        auto shown = reinterpret_cast<HGLOBAL>(SendMessageW(View(frame), kGetImage, 0, 0));
        const SIZE_T bytes = GlobalSize(shown);
        imageMb = bytes / 1048576.0;
        memcpyTime = std::min(memcpyTime, Best(3, [&] {
            HGLOBAL copy = GlobalAlloc(GMEM_MOVEABLE, bytes);
            std::memcpy(GlobalLock(copy), GlobalLock(shown), bytes);
            GlobalUnlock(shown);
            GlobalUnlock(copy);
            GlobalFree(copy);
        }));
        mirror = std::min(mirror, Best(3, [&] {
            lx::mif image(shown);
            image.mirror(0, 0, 0, 0);
            GlobalFree(static_cast<HGLOBAL>(image.createglobaldib()));
        }));
        const double before = CommittedMegabytes();
        for (int step = 0; step < 16; ++step) {
            const Clock::time_point c = Clock::now();
            SendMessageW(frame, WM_COMMAND, 2083, 0);
            command = std::min(command, Seconds(c));
        }
        stepsMb = CommittedMegabytes() - before;
        for (int step = 0; step < 16; ++step) {
            const Clock::time_point u = Clock::now();
            SendMessageW(frame, WM_COMMAND, 2036, 0);
            undo = std::min(undo, Seconds(u));
        }
        PostMessageW(frame, WM_CLOSE, 0, 0);
        editor.join();
    }
    wprintf(L"decode %.4f\nopen %.4f\nmemcpy %.4f\nmirror %.4f\ncommand %.4f\nundo %.4f\nsteps_mb %.1f\nimage_mb %.1f\n",
            decode, open, memcpyTime, mirror, command, undo, stepsMb, imageMb);
    return 0;
}
