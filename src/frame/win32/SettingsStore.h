// SettingsStore: the per-user settings of every tool, in the registry.
//
// Root: HKEY_CURRENT_USER\software\Northcape\Applets\lxpicture ("software" is only opened,
// the two lower levels are created). Each tool keeps a section (a sub-key) of values: fixed-
// size binary blocks, numbers, texts and history lists. Section and value names are given as
// text or as a string-table id (MAKEINTRESOURCEW); an empty or unloadable name fails without
// touching the registry. A block read back with another size than the caller's record must
// be treated as absent: callers compare ReadBlock's result with their record size.
// No operation reports an error to the user.
#pragma once

#include <windows.h>


namespace lx {

class SettingsStore {
public:
    SettingsStore() = default;
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    // Bytes read into `buffer` (0 on failure); with a null buffer and size 0, the size the
    // value needs.
    int ReadBlock(const wchar_t* section, const wchar_t* value, void* buffer, int size);
    bool WriteBlock(const wchar_t* section, const wchar_t* value, const void* data, int size);
    // Length in characters of the string read, else 0 (the buffer is left as it was).
    int ReadText(const wchar_t* section, const wchar_t* value, wchar_t* buffer, int capacityBytes);
    // A null text deletes the value.
    bool WriteText(const wchar_t* section, const wchar_t* value, const wchar_t* text);
    DWORD ReadNumber(const wchar_t* section, const wchar_t* value, DWORD defaultValue);
    bool WriteNumber(const wchar_t* section, const wchar_t* value, DWORD number);

    // Stores `currentText` followed by the combo box's items (at most `maxEntries` looked at),
    // each item equal to the current text, regardless of case, left out.
    bool SaveComboHistory(const wchar_t* section, const wchar_t* value, HWND combo, int maxEntries,
                          const wchar_t* currentText);
    // Adds the stored history to the combo box, at most `maxEntries` strings.
    void LoadComboHistory(const wchar_t* section, const wchar_t* value, HWND combo, int maxEntries);

private:
    class Access;  // one opened section and value name for one registry call
    bool OpenRoot();

    HKEY root_ = nullptr;
};

}  // namespace lx
