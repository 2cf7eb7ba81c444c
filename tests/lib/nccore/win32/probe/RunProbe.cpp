// A stand-in tool DLL for the run-module test: each entry records which variant rundll32
// entered and the command line it was given, in the file named by LX_RUN_PROBE_OUT. The relay
// entry starts this same DLL again the way a viewer hands its file to the editor.
#include "CoreServices.h"

#include <windows.h>

#include <string>

namespace {

void Record(const std::wstring& line) {
    wchar_t out[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"LX_RUN_PROBE_OUT", out, MAX_PATH) == 0) return;
    HANDLE file = CreateFileW(out, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size() * sizeof(wchar_t)), &written, nullptr);
    CloseHandle(file);
}

}  // namespace

extern "C" __declspec(dllexport) void CALLBACK probeRunW(HWND, HINSTANCE, LPWSTR commandLine, int) {
    Record(L"W|" + std::wstring(commandLine ? commandLine : L""));
}

extern "C" __declspec(dllexport) void CALLBACK probeRun(HWND, HINSTANCE, LPSTR commandLine, int) {
    std::wstring wide;
    for (const char* p = commandLine; p && *p; ++p) wide.push_back(static_cast<unsigned char>(*p));
    Record(L"A|" + wide);
}

extern "C" __declspec(dllexport) void CALLBACK probeRelayW(HWND owner, HINSTANCE, LPWSTR commandLine, int) {
    if (!lx::RunThisModule(owner, L"probeRun", commandLine, L"/image")) Record(L"relay failed");
}
