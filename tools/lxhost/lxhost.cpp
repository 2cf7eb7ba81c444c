// lxhost: a stand-in for the file manager that hosts lxpicture.dll.
//
//   lxhost TOOL [--path DIR] [--effect N] [--ansi] [--dll FILE] [--show N] [--snapshot BMP] FILE...
//   lxhost TOOL --unattended OPTIONS... FILE...   (convert, split, contrast, rename, pickout, pdf)
//   lxhost exif FILE...
//
// For the batch and publishing tools it writes a uniquely named request key under
// HKEY_CURRENT_USER holding "drop" (a DROPFILES header and the wide full paths), "path" and
// "effect", calls the tool's export with the key name, and reports whether the key was
// consumed. For the editor, the viewer and the slide show it passes the rest of its
// arguments as the command line. --ansi calls the eight-bit export instead of the wide one.
// --snapshot saves the screen once a frame shows a document, then closes it (Snapshot.h).
#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <fcntl.h>
#include <io.h>

#include <cstring>
#include <string>
#include <vector>

#include "CoreServices.h"
#include "HostConsole.h"
#include "Snapshot.h"
#include "Unattended.h"

namespace {

struct ToolExport {
    const wchar_t* name;
    const char* exportName;  // wide export; the eight-bit one is the same without the W
    bool takesRequestKey;
};

const ToolExport kTools[] = {
    {L"convert", "RunConvertImageW", true},   {L"split", "RunSplitImageW", true},
    {L"contrast", "RunContrastResizeW", true}, {L"rename", "RunRenameToExifDateW", true},
    {L"pickout", "RunPickoutThumbnailW", true}, {L"webalbum", "RunWebAlbumW", true},
    {L"pdf", "RunJpeg2PdfW", true},            {L"editor", "pxfRunW", false},
    {L"viewer", "imgRunW", false},             {L"slideshow", "slideRunW", false},
};

using WideEntry = int(WINAPI*)(HWND, HINSTANCE, LPWSTR, int);
using AnsiEntry = int(WINAPI*)(HWND, HINSTANCE, LPSTR, int);

struct Options {
    const ToolExport* tool = nullptr;
    std::wstring path;
    DWORD effect = 0;
    bool ansi = false;
    int show = SW_SHOWNORMAL;
    std::wstring dll;
    std::wstring snapshot;
    std::vector<std::wstring> files;
};

int Usage() {
    lxhost::Print(stderr,
                  L"usage: lxhost TOOL [--path DIR] [--effect N] [--ansi] [--dll FILE] [--show N] [--snapshot BMP] FILE...\n"
                  L"       lxhost TOOL --unattended OPTIONS... FILE...\n"
                  L"       lxhost exif FILE...\n"
                  L"TOOL: convert split contrast rename pickout webalbum pdf editor viewer slideshow");
    return 2;
}

std::wstring FullPath(const std::wstring& path) {
    wchar_t buffer[MAX_PATH * 4];
    const DWORD n = GetFullPathNameW(path.c_str(), static_cast<DWORD>(std::size(buffer)), buffer, nullptr);
    return n > 0 && n < std::size(buffer) ? std::wstring(buffer, n) : path;
}

std::wstring DefaultDllPath() {
    wchar_t self[MAX_PATH * 4];
    const DWORD n = GetModuleFileNameW(nullptr, self, static_cast<DWORD>(std::size(self)));
    std::wstring dir(self, n);
    dir.resize(dir.find_last_of(L"\\/") + 1);
    // lxhost sits in tools/lxhost of the build tree, the DLL in src/module; installed, beside it.
    const std::wstring beside = dir + L"lxpicture.dll";
    if (GetFileAttributesW(beside.c_str()) != INVALID_FILE_ATTRIBUTES) return beside;
    return dir + L"..\\..\\src\\module\\lxpicture.dll";
}

// A DROPFILES header followed by the wide, NUL-terminated names and a closing NUL.
std::vector<BYTE> MakeDropBlock(const std::vector<std::wstring>& files) {
    DROPFILES header = {};
    header.pFiles = sizeof(DROPFILES);
    header.fWide = TRUE;
    std::vector<BYTE> block(sizeof header);
    std::memcpy(block.data(), &header, sizeof header);
    for (const auto& f : files) {
        const std::wstring full = FullPath(f);
        const BYTE* p = reinterpret_cast<const BYTE*>(full.c_str());
        block.insert(block.end(), p, p + (full.size() + 1) * sizeof(wchar_t));
    }
    block.insert(block.end(), sizeof(wchar_t), 0);
    return block;
}

std::wstring WriteRequestKey(const Options& options) {
    const std::wstring name = L"Software\\Quarry7\\Requests\\lxhost-" + std::to_wstring(GetCurrentProcessId()) +
                              L"-" + std::to_wstring(GetTickCount());
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return {};
    const std::vector<BYTE> drop = MakeDropBlock(options.files);
    RegSetValueExW(key, L"drop", 0, REG_BINARY, drop.data(), static_cast<DWORD>(drop.size()));
    RegSetValueExW(key, L"path", 0, REG_SZ, reinterpret_cast<const BYTE*>(options.path.c_str()),
                   static_cast<DWORD>((options.path.size() + 1) * sizeof(wchar_t)));
    RegSetValueExW(key, L"effect", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&options.effect), sizeof(DWORD));
    RegCloseKey(key);
    return name;
}

bool KeyExists(const std::wstring& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

int CallExport(HMODULE dll, const Options& options, std::wstring commandLine) {
    if (options.ansi) {
        std::string exportName = options.tool->exportName;
        exportName.pop_back();  // drop the W
        auto entry = reinterpret_cast<AnsiEntry>(reinterpret_cast<void*>(GetProcAddress(dll, exportName.c_str())));
        if (!entry) return -1;
        const int bytes = WideCharToMultiByte(CP_ACP, 0, commandLine.c_str(), -1, nullptr, 0, nullptr, nullptr);
        std::string narrow(static_cast<size_t>(bytes), '\0');
        WideCharToMultiByte(CP_ACP, 0, commandLine.c_str(), -1, narrow.data(), bytes, nullptr, nullptr);
        return entry(nullptr, dll, narrow.data(), options.show);
    }
    auto entry = reinterpret_cast<WideEntry>(reinterpret_cast<void*>(GetProcAddress(dll, options.tool->exportName)));
    if (!entry) return -1;
    return entry(nullptr, dll, commandLine.data(), options.show);
}

int RunThroughDll(const Options& options) {
    const std::wstring dllPath = options.dll.empty() ? DefaultDllPath() : options.dll;
    HMODULE dll = LoadLibraryW(dllPath.c_str());
    if (!dll) {
        lxhost::Print(stderr, L"lxhost: cannot load " + dllPath);
        return 3;
    }
    int status = 0;
    if (options.tool->takesRequestKey) {
        const std::wstring key = WriteRequestKey(options);
        if (key.empty()) {
            lxhost::Print(stderr, L"lxhost: cannot write the request key");
            status = 3;
        } else if (CallExport(dll, options, key) < 0) {
            status = 3;
        } else {
            const bool consumed = !KeyExists(key);
            lxhost::Print(stdout, consumed ? L"request consumed" : L"request left in the registry");
            if (!consumed) SHDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
            status = consumed ? 0 : 1;
        }
    } else {
        std::wstring commandLine;
        for (const auto& f : options.files) commandLine += (commandLine.empty() ? L"" : L" ") + lx::QuoteIfBlank(f);
        std::thread snapshot;
        if (!options.snapshot.empty()) snapshot = lxhost::StartSnapshot(options.snapshot);
        status = CallExport(dll, options, commandLine) < 0 ? 3 : 0;
        if (snapshot.joinable()) snapshot.join();
    }
    FreeLibrary(dll);
    return status;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    // Plain line feeds: scripts on both sides of Wine read this output.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    if (argc < 2) return Usage();
    const std::wstring toolName = argv[1];
    std::vector<std::wstring> rest(argv + 2, argv + argc);
    if (toolName == L"exif") return lxhost::RunUnattended(toolName, rest);
    if (!rest.empty() && rest[0] == L"--unattended") return lxhost::RunUnattended(toolName, {rest.begin() + 1, rest.end()});

    Options options;
    for (const auto& t : kTools)
        if (toolName == t.name) options.tool = &t;
    if (!options.tool) return Usage();
    for (size_t i = 0; i < rest.size(); ++i) {
        const std::wstring& arg = rest[i];
        const bool hasValue = i + 1 < rest.size();
        if (arg == L"--path" && hasValue) options.path = rest[++i];
        else if (arg == L"--effect" && hasValue) options.effect = static_cast<DWORD>(std::wcstoul(rest[++i].c_str(), nullptr, 10));
        else if (arg == L"--show" && hasValue) options.show = static_cast<int>(std::wcstol(rest[++i].c_str(), nullptr, 10));
        else if (arg == L"--dll" && hasValue) options.dll = rest[++i];
        else if (arg == L"--snapshot" && hasValue) options.snapshot = rest[++i];
        else if (arg == L"--ansi") options.ansi = true;
        else if (arg == L"--") { options.files.insert(options.files.end(), rest.begin() + static_cast<long>(i) + 1, rest.end()); break; }
        else options.files.push_back(arg);
    }
    return RunThroughDll(options);
}
