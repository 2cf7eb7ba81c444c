// The slide show's timing as a user meets it, through the DLL's slideRunW:
//   decode    LoadImageFile of one photograph in this process (what the loader thread does
//             before it scales the picture for the screen)
//   first     from the slideRunW call to the first slide on the screen
//   late_*    how much later than the display time each following slide came (mean, worst)
//   cache_mb  the process's committed memory once the show has held ten slides, less what
//             it was before the show
// usage: slideshow_bench DLL PHOTO FOLDER CHANGES
// Prints "name value" lines; run.sh turns them into a table.
#include <windows.h>
#include <psapi.h>
#include <shlwapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "ImageCodecs.h"

namespace {

using Clock = std::chrono::steady_clock;
using WideEntry = void(CALLBACK*)(HWND, HINSTANCE, LPWSTR, int);

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

double CommittedMegabytes() {
    PROCESS_MEMORY_COUNTERS counters{sizeof counters};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage / 1048576.0;
}

std::wstring Caption(HWND frame) {
    wchar_t text[512] = {};
    GetWindowTextW(frame, text, 512);
    return text;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 5) {
        fwprintf(stderr, L"usage: slideshow_bench DLL PHOTO FOLDER CHANGES\n");
        return 2;
    }
    HMODULE dll = LoadLibraryW(argv[1]);
    if (!dll) return 3;
    const std::wstring photo = argv[2];
    std::wstring line = std::wstring(L"\"") + argv[3] + L"\"";
    const int changes = _wtoi(argv[4]);
    // The default display time.
    SHDeleteValueW(HKEY_CURRENT_USER, L"Software\\Northcape\\Applets\\lxpicture\\SlideShow", L"Interval");
    constexpr double kInterval = 2.0;

    double decode = 1e9;
    for (int run = 0; run < 3; ++run) {
        const Clock::time_point start = Clock::now();
        if (!lx::LoadImageFile(photo)) return 4;
        decode = std::min(decode, Seconds(start));
    }

    auto entry = reinterpret_cast<WideEntry>(reinterpret_cast<void*>(GetProcAddress(dll, "slideRunW")));
    const double before = CommittedMegabytes();
    std::atomic<DWORD> thread{0};
    const Clock::time_point start = Clock::now();
    std::thread show([&] {
        thread = GetCurrentThreadId();
        entry(nullptr, dll, line.data(), SW_SHOWNORMAL);
    });
    HWND frame = nullptr;
    std::wstring shown;
    std::vector<double> at;  // when each slide came
    double cacheMb = 0;
    while (static_cast<int>(at.size()) <= changes && Seconds(start) < 600) {
        if (!frame) {
            for (HWND w = FindWindowExW(nullptr, nullptr, L"LXSLIDESHOW_FRAME", nullptr); w;
                 w = FindWindowExW(nullptr, w, L"LXSLIDESHOW_FRAME", nullptr))
                if (GetWindowThreadProcessId(w, nullptr) == thread) frame = w;
        } else if (const std::wstring now = Caption(frame); now.rfind(L"[", 0) == 0 && now != shown) {
            shown = now;
            at.push_back(Seconds(start));
            // Ten slides shown and the eleventh prepared: the cache is full.
            if (at.size() == 11) cacheMb = CommittedMegabytes() - before;
        }
        Sleep(1);
    }
    if (frame) PostMessageW(frame, WM_CLOSE, 0, 0);
    show.join();
    if (static_cast<int>(at.size()) <= changes) return 5;
    double sum = 0, worst = 0;
    for (size_t i = 1; i < at.size(); ++i) {
        const double late = at[i] - at[i - 1] - kInterval;
        sum += late;
        worst = std::max(worst, late);
    }
    wprintf(L"decode %.3f\nfirst %.3f\nlate_mean %.3f\nlate_max %.3f\ncache_mb %.1f\n", decode, at[0],
            sum / (at.size() - 1), worst, cacheMb);
    return 0;
}
