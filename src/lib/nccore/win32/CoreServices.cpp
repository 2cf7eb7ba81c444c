#include "CoreServices.h"

#include "ModuleResources.h"
#include "ToolBarTemplate.h"

#include <vector>

namespace lx {

namespace {

// The resource type of tool-bar descriptions.
const wchar_t* const kToolBarResourceType = MAKEINTRESOURCEW(241);

std::wstring ThisModulePath() {
    std::vector<wchar_t> buffer(MAX_PATH);
    for (;;) {
        const DWORD length = GetModuleFileNameW(ModuleInstance(), buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) return {};
        if (length < buffer.size()) return std::wstring(buffer.data(), length);
        buffer.resize(buffer.size() * 2);
    }
}

std::wstring Rundll32Path() {
    wchar_t folder[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return L"rundll32.exe";
    return std::wstring(folder, length) + L"\\rundll32.exe";
}

}  // namespace

std::wstring QuoteIfBlank(const std::wstring& text) {
    if (text.find_first_of(L" \t") == std::wstring::npos) return text;
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"') return text;
    return L"\"" + text + L"\"";
}

std::wstring ModuleEntryCommandLine(const std::wstring& modulePath, const std::wstring& entry,
                                    const std::wstring& commandLine) {
    std::wstring line = L"\"" + Rundll32Path() + L"\" \"" + modulePath + L"\"," + entry;
    if (!commandLine.empty()) line += L" " + commandLine;
    return line;
}

bool StartModuleEntry(const std::wstring& modulePath, const std::wstring& entry, const std::wstring& commandLine) {
    if (modulePath.empty() || entry.empty()) return false;
    std::wstring line = ModuleEntryCommandLine(modulePath, entry, commandLine);
    const std::wstring program = Rundll32Path();
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    // CreateProcessW may write into the command line, so it gets its own copy.
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return false;
    }
    // The new tool opens its own window; it may take the foreground from ours.
    AllowSetForegroundWindow(process.dwProcessId);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

bool RunThisModule(HWND owner, const wchar_t* entry, const wchar_t* argument, const wchar_t* option) {
    (void)owner;
    (void)option;  // every caller hands "/image": the argument is the entry's whole command line
    if (entry == nullptr) return false;
    return StartModuleEntry(ThisModulePath(), entry, QuoteIfBlank(argument ? argument : L""));
}

size_t ReplaceCharacter(wchar_t* text, wchar_t from, wchar_t to) {
    size_t replaced = 0;
    if (text == nullptr || from == L'\0') return 0;
    for (; *text; ++text) {
        if (*text == from) {
            *text = to;
            ++replaced;
        }
    }
    return replaced;
}

std::wstring SystemErrorText(DWORD code, const wchar_t* path) {
    wchar_t* buffer = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    std::wstring system;
    if (length > 0 && buffer) {
        system.assign(buffer, length);
        while (!system.empty() && (system.back() == L'\r' || system.back() == L'\n' || system.back() == L' ')) {
            system.pop_back();
        }
    }
    if (buffer) LocalFree(buffer);
    if (system.empty()) system = L"Error " + std::to_wstring(code);
    if (path == nullptr || *path == L'\0') return system;
    return std::wstring(path) + L"\r\n\r\n" + system;
}

int ShowSystemError(HWND owner, DWORD code, const wchar_t* caption, const wchar_t* path, UINT flags) {
    const std::wstring text = SystemErrorText(code, path);
    const std::wstring title = TextOrResString(caption);
    return MessageBoxW(owner, text.c_str(), title.c_str(), flags);
}

HIMAGELIST LoadImageListStrip(HINSTANCE instance, int imageWidth, UINT bitmapId, int grow, COLORREF mask) {
    return ImageList_LoadImageW(instance, MAKEINTRESOURCEW(bitmapId), imageWidth, grow, mask, IMAGE_BITMAP,
                                LR_CREATEDIBSECTION);
}

namespace {

constexpr COLORREF kToolBarMask = RGB(255, 0, 255);

LRESULT CALLBACK DestroyImageListWithBar(HWND bar, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                         DWORD_PTR images) {
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(bar, &DestroyImageListWithBar, id);
        ImageList_Destroy(reinterpret_cast<HIMAGELIST>(images));
    }
    return DefSubclassProc(bar, message, wParam, lParam);
}

}  // namespace

HWND CreateToolBarFromTemplate(HWND parent, HINSTANCE bitmapInstance, UINT_PTR bitmapId, const void* data,
                               size_t size, DWORD style, UINT controlId) {
    const auto layout = ParseToolBarTemplate(static_cast<const uint8_t*>(data), size);
    if (!layout) return nullptr;
    HWND bar = CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr, style, 0, 0, 0, 0, parent,
                               reinterpret_cast<HMENU>(static_cast<UINT_PTR>(controlId)), ModuleInstance(), nullptr);
    if (bar == nullptr) return nullptr;
    SendMessageW(bar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(bar, TB_SETBITMAPSIZE, 0, MAKELPARAM(layout->imageWidth, layout->imageHeight));
    if (bitmapInstance == HINST_COMMCTRL) {
        TBADDBITMAP strip = {bitmapInstance, bitmapId};
        SendMessageW(bar, TB_ADDBITMAP, layout->ImageCount(), reinterpret_cast<LPARAM>(&strip));
    } else if (HIMAGELIST images = LoadImageListStrip(bitmapInstance, layout->imageWidth,
                                                      static_cast<UINT>(bitmapId), 0, kToolBarMask)) {
        // Our strips are drawn on magenta, which only a masked image list makes transparent.
        // The tool bar does not own an image list it is given: it is freed with the bar.
        SendMessageW(bar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
        SetWindowSubclass(bar, &DestroyImageListWithBar, 0, reinterpret_cast<DWORD_PTR>(images));
    }

    std::vector<TBBUTTON> buttons(layout->commands.size());
    int image = 0;
    for (size_t i = 0; i < buttons.size(); ++i) {
        const uint16_t command = layout->commands[i];
        if (command == 0) {
            buttons[i].fsStyle = BTNS_SEP;
        } else {
            buttons[i].iBitmap = image++;
            buttons[i].idCommand = command;
            buttons[i].fsState = TBSTATE_ENABLED;
            buttons[i].fsStyle = BTNS_BUTTON;
        }
    }
    if (!buttons.empty()) SendMessageW(bar, TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
    SendMessageW(bar, TB_AUTOSIZE, 0, 0);
    return bar;
}

HWND CreateToolBarFromResource(HWND parent, HINSTANCE instance, UINT resourceId, DWORD style, UINT controlId) {
    HRSRC found = FindResourceW(instance, MAKEINTRESOURCEW(resourceId), kToolBarResourceType);
    if (found == nullptr) return nullptr;
    HGLOBAL loaded = LoadResource(instance, found);
    const void* data = loaded ? LockResource(loaded) : nullptr;
    if (data == nullptr) return nullptr;
    return CreateToolBarFromTemplate(parent, instance, resourceId, data, SizeofResource(instance, found), style,
                                     controlId);
}

}  // namespace lx
