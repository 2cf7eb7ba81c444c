#include "SettingsStore.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ModuleResources.h"

namespace lx {
namespace {

constexpr REGSAM kAccess = KEY_READ | KEY_WRITE;  // 0x2001f
constexpr int kHistoryEntryChars = 261;

}  // namespace

// Names are resolved before the registry is touched, so an empty or unloadable name fails
// without creating anything; the section is created when missing and closed afterwards.
class SettingsStore::Access {
public:
    Access(SettingsStore& store, const wchar_t* section, const wchar_t* value) {
        const std::wstring sectionName = TextOrResString(section);
        valueName_ = TextOrResString(value);
        if (sectionName.empty() || valueName_.empty() || !store.OpenRoot()) return;
        if (RegCreateKeyExW(store.root_, sectionName.c_str(), 0, nullptr, 0, kAccess, nullptr, &key_, nullptr) !=
            ERROR_SUCCESS)
            key_ = nullptr;
    }
    ~Access() {
        if (key_) RegCloseKey(key_);
    }
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;
    explicit operator bool() const { return key_ != nullptr; }
    HKEY key() const { return key_; }
    const wchar_t* value() const { return valueName_.c_str(); }

private:
    HKEY key_ = nullptr;
    std::wstring valueName_;
};

SettingsStore::~SettingsStore() {
    if (root_) RegCloseKey(root_);
}

bool SettingsStore::OpenRoot() {
    if (root_) return true;
    HKEY software = nullptr, maker = nullptr, root = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, L"software", 0, kAccess, &software) != ERROR_SUCCESS) return false;
    if (RegCreateKeyExW(software, L"Northcape", 0, nullptr, 0, kAccess, nullptr, &maker, nullptr) == ERROR_SUCCESS) {
        if (RegCreateKeyExW(maker, L"Applets\\lxpicture", 0, nullptr, 0, kAccess, nullptr, &root, nullptr) ==
            ERROR_SUCCESS)
            root_ = root;
        RegCloseKey(maker);
    }
    RegCloseKey(software);
    return root_ != nullptr;
}

int SettingsStore::ReadBlock(const wchar_t* section, const wchar_t* value, void* buffer, int size) {
    if (size < 0) return 0;
    Access access(*this, section, value);
    if (!access) return 0;
    DWORD bytes = static_cast<DWORD>(size);
    if (RegQueryValueExW(access.key(), access.value(), nullptr, nullptr, static_cast<BYTE*>(buffer), &bytes) !=
        ERROR_SUCCESS)
        return 0;
    return static_cast<int>(bytes);
}

bool SettingsStore::WriteBlock(const wchar_t* section, const wchar_t* value, const void* data, int size) {
    if (size < 0) return false;
    Access access(*this, section, value);
    return access && RegSetValueExW(access.key(), access.value(), 0, REG_BINARY, static_cast<const BYTE*>(data),
                                    static_cast<DWORD>(size)) == ERROR_SUCCESS;
}

int SettingsStore::ReadText(const wchar_t* section, const wchar_t* value, wchar_t* buffer, int capacityBytes) {
    if (!buffer || capacityBytes < static_cast<int>(sizeof(wchar_t))) return 0;
    Access access(*this, section, value);
    if (!access) return 0;
    std::vector<wchar_t> scratch(static_cast<size_t>(capacityBytes) / sizeof(wchar_t) + 1, L'\0');
    DWORD bytes = static_cast<DWORD>(capacityBytes);
    if (RegQueryValueExW(access.key(), access.value(), nullptr, nullptr, reinterpret_cast<BYTE*>(scratch.data()),
                         &bytes) != ERROR_SUCCESS)
        return 0;
    // The stored string may lack its terminator; never read past what the registry gave.
    const size_t chars = bytes / sizeof(wchar_t);
    size_t length = 0;
    while (length < chars && scratch[length] != L'\0') ++length;
    const size_t capacityChars = static_cast<size_t>(capacityBytes) / sizeof(wchar_t);
    if (length >= capacityChars) length = capacityChars - 1;
    std::copy(scratch.begin(), scratch.begin() + static_cast<std::ptrdiff_t>(length), buffer);
    buffer[length] = L'\0';
    return static_cast<int>(length);
}

bool SettingsStore::WriteText(const wchar_t* section, const wchar_t* value, const wchar_t* text) {
    Access access(*this, section, value);
    if (!access) return false;
    if (!text) return RegDeleteValueW(access.key(), access.value()) == ERROR_SUCCESS;
    const DWORD bytes = static_cast<DWORD>((wcslen(text) + 1) * sizeof(wchar_t));
    return RegSetValueExW(access.key(), access.value(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes) ==
           ERROR_SUCCESS;
}

DWORD SettingsStore::ReadNumber(const wchar_t* section, const wchar_t* value, DWORD defaultValue) {
    Access access(*this, section, value);
    if (!access) return defaultValue;
    DWORD number = 0, bytes = sizeof number;
    if (RegQueryValueExW(access.key(), access.value(), nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &bytes) !=
        ERROR_SUCCESS)
        return defaultValue;
    return number;
}

bool SettingsStore::WriteNumber(const wchar_t* section, const wchar_t* value, DWORD number) {
    Access access(*this, section, value);
    return access && RegSetValueExW(access.key(), access.value(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                                    sizeof number) == ERROR_SUCCESS;
}

bool SettingsStore::SaveComboHistory(const wchar_t* section, const wchar_t* value, HWND combo, int maxEntries,
                                     const wchar_t* currentText) {
    const int count = static_cast<int>(SendMessageW(combo, CB_GETCOUNT, 0, 0));
    const int looked = std::max(0, std::min(count, maxEntries));
    std::vector<wchar_t> list;
    list.reserve(static_cast<size_t>(looked + 1) * kHistoryEntryChars + 1);
    const std::wstring current = currentText ? std::wstring(currentText).substr(0, kHistoryEntryChars - 1) : L"";
    list.insert(list.end(), current.begin(), current.end());
    list.push_back(L'\0');
    for (int i = 0; i < looked; ++i) {
        const LRESULT length = SendMessageW(combo, CB_GETLBTEXTLEN, static_cast<WPARAM>(i), 0);
        if (length == CB_ERR) continue;
        std::wstring item(static_cast<size_t>(length) + 1, L'\0');
        SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(item.data()));
        item.resize(wcsnlen(item.c_str(), item.size()));
        if (item.empty() || lstrcmpiW(item.c_str(), current.c_str()) == 0) continue;
        item.resize(std::min<size_t>(item.size(), kHistoryEntryChars - 1));
        list.insert(list.end(), item.begin(), item.end());
        list.push_back(L'\0');
    }
    list.push_back(L'\0');
    return WriteBlock(section, value, list.data(), static_cast<int>(list.size() * sizeof(wchar_t)));
}

void SettingsStore::LoadComboHistory(const wchar_t* section, const wchar_t* value, HWND combo, int maxEntries) {
    const int bytes = ReadBlock(section, value, nullptr, 0);
    if (bytes <= 0) return;
    std::vector<wchar_t> list(static_cast<size_t>(bytes) / sizeof(wchar_t) + 1, L'\0');
    const int read = ReadBlock(section, value, list.data(), bytes);
    if (read <= 0) return;
    const size_t end = static_cast<size_t>(read) / sizeof(wchar_t);
    size_t at = 0;
    for (int added = 0; added < maxEntries && at < end; ++added) {
        size_t stop = at;
        while (stop < end && list[stop] != L'\0') ++stop;
        if (stop == at) break;  // the empty string ends the list
        const std::wstring item(list.data() + at, stop - at);
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
        at = stop + 1;
    }
}

}  // namespace lx
