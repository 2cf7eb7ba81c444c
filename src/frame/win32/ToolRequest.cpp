#include "ToolRequest.h"

#include <shlwapi.h>

#include "CommandLine.h"

namespace lx {
namespace {

constexpr DWORD kPathBufferBytes = 1040;  // 520 wide characters with the terminator

DWORD ReadEffect(HKEY key) {
    DWORD type = 0, value = 0, size = sizeof value;
    if (RegQueryValueExW(key, L"effect", nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) == ERROR_SUCCESS &&
        type == REG_DWORD)
        return value;
    return 0;
}

std::wstring ReadPath(HKEY key) {
    wchar_t buffer[kPathBufferBytes / sizeof(wchar_t)] = {};
    DWORD type = 0, size = kPathBufferBytes;
    if (RegQueryValueExW(key, L"path", nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size) != ERROR_SUCCESS)
        return {};
    if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
    if (size == 0) return {};
    // Only an even-length value whose last wide character is NUL is a string we can trust,
    // and one that fills the whole buffer leaves no room for a path of 520 characters.
    if (size >= kPathBufferBytes || size % sizeof(wchar_t) != 0 || buffer[size / sizeof(wchar_t) - 1] != L'\0')
        return {};
    return std::wstring(buffer);  // up to the first NUL
}

HGLOBAL ReadDrop(HKEY key) {
    DWORD type = 0, size = 0;
    if (RegQueryValueExW(key, L"drop", nullptr, &type, nullptr, &size) != ERROR_SUCCESS || type != REG_BINARY ||
        size == 0)
        return nullptr;
    HGLOBAL block = GlobalAlloc(GMEM_SHARE | GMEM_ZEROINIT, size);
    if (!block) return nullptr;
    void* data = GlobalLock(block);
    DWORD readSize = size;
    const LSTATUS status =
        data ? RegQueryValueExW(key, L"drop", nullptr, &type, static_cast<BYTE*>(data), &readSize) : ERROR_OUTOFMEMORY;
    if (data) GlobalUnlock(block);
    if (status != ERROR_SUCCESS || type != REG_BINARY) {
        GlobalFree(block);
        return nullptr;
    }
    return block;
}

// A request key as the host writes it: no sub-keys, and no values but "drop", "path" and
// "effect". Anything else is some other key that a wrong name led to (a plain "Software" is
// a valid key name too), and deleting it would lose the user's data.
bool LooksLikeRequestKey(HKEY key) {
    DWORD subKeys = 0, values = 0;
    if (RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values, nullptr, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS ||
        subKeys != 0 || values > 3)
        return false;
    for (DWORD i = 0; i < values; ++i) {
        wchar_t name[16];
        DWORD chars = 16;
        if (RegEnumValueW(key, i, name, &chars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return false;
        if (_wcsicmp(name, L"drop") != 0 && _wcsicmp(name, L"path") != 0 && _wcsicmp(name, L"effect") != 0)
            return false;
    }
    return true;
}

}  // namespace

int ReadToolRequest(ToolRequest& request, const wchar_t* keyName) {
    // The key is deleted with everything under it once read: a name that is not a plain key
    // name ("" opens HKEY_CURRENT_USER itself) would take the user's whole registry with it.
    if (!keyName || !IsRequestKeyName(keyName)) return 0;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, keyName, 0, KEY_READ | KEY_WRITE, &key) != ERROR_SUCCESS) return 0;
    if (!LooksLikeRequestKey(key)) {
        // Not ours to consume: leave the key as it is and start nothing.
        RegCloseKey(key);
        return 0;
    }
    request.effect = ReadEffect(key);
    request.path = ReadPath(key);
    request.drop = ReadDrop(key);
    RegCloseKey(key);
    SHDeleteKeyW(HKEY_CURRENT_USER, keyName);
    return 1;
}

}  // namespace lx
