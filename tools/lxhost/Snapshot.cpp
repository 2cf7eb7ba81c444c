#include "Snapshot.h"

#include <windows.h>

#include <cstdio>
#include <vector>

namespace lxhost {
namespace {

HWND TitledWindowOfThisProcess() {
    struct Search {
        HWND found = nullptr;
    } search;
    EnumWindows(
        [](HWND hwnd, LPARAM lParam) {
            DWORD process = 0;
            GetWindowThreadProcessId(hwnd, &process);
            wchar_t title[512] = {};
            if (process != GetCurrentProcessId() || !IsWindowVisible(hwnd) || !GetWindowTextW(hwnd, title, 512) ||
                !wcsstr(title, L" - "))
                return TRUE;
            reinterpret_cast<Search*>(lParam)->found = hwnd;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

bool SaveScreen(const std::wstring& path) {
    const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFOHEADER header{sizeof header, width, height, 1, 24, BI_RGB};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS, &bits, nullptr, 0);
    bool saved = false;
    if (bitmap) {
        HGDIOBJ old = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY);
        GdiFlush();
        SelectObject(memory, old);
        const DWORD stride = (static_cast<DWORD>(width) * 3 + 3) & ~3u;
        header.biSizeImage = stride * static_cast<DWORD>(height);
        BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(sizeof file + sizeof header + header.biSizeImage), 0, 0,
                              static_cast<DWORD>(sizeof file + sizeof header)};
        if (FILE* out = _wfopen(path.c_str(), L"wb")) {
            saved = fwrite(&file, sizeof file, 1, out) == 1 && fwrite(&header, sizeof header, 1, out) == 1 &&
                    fwrite(bits, header.biSizeImage, 1, out) == 1;
            saved = fclose(out) == 0 && saved;
        }
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return saved;
}

}  // namespace

std::thread StartSnapshot(const std::wstring& bmpPath, unsigned settleMs, unsigned timeoutMs) {
    return std::thread([bmpPath, settleMs, timeoutMs] {
        HWND window = nullptr;
        for (unsigned waited = 0; waited < timeoutMs && !(window = TitledWindowOfThisProcess()); waited += 100)
            Sleep(100);
        if (!window) return;
        Sleep(settleMs);
        if (!SaveScreen(bmpPath)) fwprintf(stderr, L"lxhost: cannot write %ls\n", bmpPath.c_str());
        PostMessageW(window, WM_CLOSE, 0, 0);
    });
}

}  // namespace lxhost
