#include "ModuleResources.h"

namespace lx {

HINSTANCE ModuleInstance() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ModuleInstance), &module);
    return module;
}

std::wstring LoadResString(UINT id) {
    // With a zero buffer length LoadStringW returns a read-only pointer to the resource text.
    const wchar_t* text = nullptr;
    const int length = LoadStringW(ModuleInstance(), id, reinterpret_cast<LPWSTR>(&text), 0);
    return length > 0 && text ? std::wstring(text, static_cast<size_t>(length)) : std::wstring();
}

std::wstring TextOrResString(const wchar_t* textOrId) {
    if (textOrId == nullptr) return {};
    if (IsResourceId(textOrId)) return LoadResString(static_cast<UINT>(reinterpret_cast<ULONG_PTR>(textOrId)));
    return textOrId;
}

}  // namespace lx
