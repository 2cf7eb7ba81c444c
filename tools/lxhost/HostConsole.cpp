#include "HostConsole.h"

#include <windows.h>

#include "ModuleResources.h"

namespace lxhost {

std::string Utf8(const std::wstring& text) {
    if (text.empty()) return {};
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                          nullptr, nullptr);
    std::string out(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), bytes, nullptr, nullptr);
    return out;
}

void Print(FILE* stream, const std::wstring& text) {
    const std::string line = Utf8(text) + "\n";
    fwrite(line.data(), 1, line.size(), stream);
    fflush(stream);
}

int ConsoleSink::Message(unsigned textId, const std::wstring& argument, unsigned flags) {
    ++messages;
    std::wstring text = lx::LoadResString(textId);
    if (!argument.empty()) {
        const size_t at = text.find(L"%1");
        if (at != std::wstring::npos) text.replace(at, 2, argument);
    }
    Print(stderr, L"message " + std::to_wstring(textId) + L": " + text);
    switch (flags & 0xf) {
    case MB_YESNO:
    case MB_YESNOCANCEL: return IDYES;
    case MB_RETRYCANCEL: return IDCANCEL;
    case MB_OKCANCEL: return IDOK;
    default: return IDOK;
    }
}

}  // namespace lxhost
