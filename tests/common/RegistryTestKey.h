// A uniquely named scratch key under HKEY_CURRENT_USER for one test, removed afterwards.
#pragma once

#include <windows.h>
#include <shlwapi.h>

#include <string>

namespace lxtest {

class RegistryTestKey {
public:
    explicit RegistryTestKey(const std::wstring& tag) {
        name_ = L"Software\\Quarry7\\Tests\\" + tag + L"-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++counter_);
        RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr);
    }
    ~RegistryTestKey() {
        Close();
        SHDeleteKeyW(HKEY_CURRENT_USER, name_.c_str());
    }
    RegistryTestKey(const RegistryTestKey&) = delete;
    RegistryTestKey& operator=(const RegistryTestKey&) = delete;

    const std::wstring& name() const { return name_; }
    void Set(const wchar_t* value, DWORD type, const void* data, DWORD bytes) {
        RegSetValueExW(key_, value, 0, type, static_cast<const BYTE*>(data), bytes);
    }
    void SetText(const wchar_t* value, const std::wstring& text) {
        Set(value, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    void Close() {
        if (key_) RegCloseKey(key_);
        key_ = nullptr;
    }
    bool Exists() const {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
        RegCloseKey(key);
        return true;
    }

private:
    static inline int counter_ = 0;
    std::wstring name_;
    HKEY key_ = nullptr;
};

}  // namespace lxtest
