#include "Snapshot.h"

#include <windows.h>

#include <cstdio>
#include <filesystem>

#include "ImageCodecs.h"

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
    if (width <= 0 || height <= 0) return false;
    lx::PackedDib shot = lx::PackedDib::Create(width, height, 24);
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    bool copied = false;
    if (bitmap) {
        HGDIOBJ old = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY);
        SelectObject(memory, old);
        // The packed DIB's rows are bottom-up like those GetDIBits writes for a positive height.
        BITMAPINFOHEADER header{sizeof header, width, height, 1, 24, BI_RGB};
        copied = GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), shot.bits(),
                           reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS) == height;
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return copied && lx::SaveBmpFile(std::filesystem::path(path), shot) != 0;
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
