// The settings store against Wine's real registry, under the module's own key.
#include "SettingsStore.h"

#include "../../lib/nccore/win32/DialogDriver.h"

#include <gtest/gtest.h>
#include <shlwapi.h>

#include <string>
#include <vector>

using lx::SettingsStore;

namespace {

const wchar_t* kRoot = L"software\\Northcape\\Applets\\lxpicture";

// A section name of this test program alone, so parallel test programs never meet.
std::wstring TestSection(const wchar_t* tag) {
    return std::wstring(L"Test-") + tag + L"-" + std::to_wstring(GetCurrentProcessId());
}

bool SectionExists(const std::wstring& section) {
    HKEY key = nullptr;
    const std::wstring path = std::wstring(kRoot) + L"\\" + section;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

void DeleteSection(const std::wstring& section) {
    SHDeleteKeyW(HKEY_CURRENT_USER, (std::wstring(kRoot) + L"\\" + section).c_str());
}

struct SectionGuard {
    std::wstring name;
    explicit SectionGuard(const wchar_t* tag) : name(TestSection(tag)) { DeleteSection(name); }
    ~SectionGuard() { DeleteSection(name); }
};

HWND MakeCombo() {
    return CreateWindowExW(0, L"ComboBox", L"", CBS_DROPDOWN | WS_POPUP, 0, 0, 200, 200, nullptr, nullptr,
                           GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

TEST(SettingsStore, BlockRoundTripAndOtherSizeCountsAsAbsent) {
    SectionGuard section(L"block");
    SettingsStore store;
    const unsigned char record[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    ASSERT_TRUE(store.WriteBlock(section.name.c_str(), L"Rec", record, sizeof record));
    EXPECT_EQ(store.ReadBlock(section.name.c_str(), L"Rec", nullptr, 0), 12);
    unsigned char back[12] = {};
    EXPECT_EQ(store.ReadBlock(section.name.c_str(), L"Rec", back, sizeof back), 12);
    EXPECT_EQ(0, memcmp(back, record, sizeof record));
    // A caller whose record grew gets a size that differs from its own and falls back.
    unsigned char bigger[44] = {};
    EXPECT_EQ(store.ReadBlock(section.name.c_str(), L"Rec", bigger, sizeof bigger), 12);
    // A caller whose record shrank gets nothing at all.
    unsigned char smaller[8] = {};
    EXPECT_EQ(store.ReadBlock(section.name.c_str(), L"Rec", smaller, sizeof smaller), 0);
}

TEST(SettingsStore, NumbersAndTextsAndReadingAloneMakesTheSection) {
    SectionGuard section(L"values");
    SettingsStore store;
    EXPECT_EQ(store.ReadNumber(section.name.c_str(), L"N", 0x10020), 0x10020u);
    ASSERT_TRUE(store.WriteNumber(section.name.c_str(), L"N", 77));
    EXPECT_EQ(store.ReadNumber(section.name.c_str(), L"N", 0), 77u);

    ASSERT_TRUE(store.WriteText(section.name.c_str(), L"T", L"C:\\\u5199\u771f"));
    wchar_t text[520] = L"untouched";
    EXPECT_EQ(store.ReadText(section.name.c_str(), L"T", text, sizeof text), 5);
    EXPECT_STREQ(text, L"C:\\\u5199\u771f");
    ASSERT_TRUE(store.WriteText(section.name.c_str(), L"T", nullptr));  // deletes
    wcscpy(text, L"kept");
    EXPECT_EQ(store.ReadText(section.name.c_str(), L"T", text, sizeof text), 0);
    EXPECT_STREQ(text, L"kept");
    EXPECT_EQ(store.ReadText(section.name.c_str(), L"T", nullptr, 100), 0);

    SectionGuard read(L"read");  // reading alone leaves an empty section behind
    EXPECT_EQ(store.ReadNumber(read.name.c_str(), L"Absent", 4), 4u);
    EXPECT_TRUE(SectionExists(read.name));
}

TEST(SettingsStore, NamesByStringIdAndUnloadableNamesFailUntouched) {
    SettingsStore store;
    // 4408 is "WebAlbum" in the string table.
    ASSERT_TRUE(store.WriteNumber(MAKEINTRESOURCEW(4408), L"TestProbe", 3));
    EXPECT_EQ(store.ReadNumber(L"WebAlbum", L"TestProbe", 0), 3u);
    store.WriteText(L"WebAlbum", L"TestProbe", nullptr);

    SectionGuard section(L"names");
    EXPECT_FALSE(store.WriteNumber(MAKEINTRESOURCEW(65001), L"X", 1));   // no such string
    EXPECT_FALSE(store.WriteNumber(L"", L"X", 1));
    EXPECT_FALSE(store.WriteNumber(section.name.c_str(), L"", 1));
    EXPECT_EQ(store.ReadNumber(section.name.c_str(), MAKEINTRESOURCEW(65001), 9), 9u);
    EXPECT_FALSE(SectionExists(section.name));  // the failing names touched nothing
}

TEST(SettingsStore, HistoryKeepsTheCurrentTextOnceAtTheTopAndStaysInsideItsData) {
    SectionGuard section(L"history");
    SettingsStore store;
    HWND combo = MakeCombo();
    ASSERT_NE(combo, nullptr);
    for (const wchar_t* item : {L"C:\\one", L"C:\\Two", L"C:\\three", L"C:\\four"})
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
    // The combo sorts nothing (no CBS_SORT): items stay in insertion order.
    ASSERT_TRUE(store.SaveComboHistory(section.name.c_str(), L"H", combo, 3, L"c:\\two"));
    // Current first; "C:\\Two" left out regardless of case; only three items looked at.
    const wchar_t expected[] = L"c:\\two\0C:\\one\0C:\\three\0";
    EXPECT_EQ(store.ReadBlock(section.name.c_str(), L"H", nullptr, 0), static_cast<int>(sizeof expected));
    std::vector<wchar_t> raw(sizeof expected / 2);
    store.ReadBlock(section.name.c_str(), L"H", raw.data(), sizeof expected);
    EXPECT_EQ(0, memcmp(raw.data(), expected, sizeof expected));

    HWND loaded = MakeCombo();
    store.LoadComboHistory(section.name.c_str(), L"H", loaded, 10);
    EXPECT_EQ(lxtest::ComboItems(loaded), (std::vector<std::wstring>{L"c:\\two", L"C:\\one", L"C:\\three"}));
    HWND capped = MakeCombo();
    store.LoadComboHistory(section.name.c_str(), L"H", capped, 2);
    EXPECT_EQ(lxtest::ComboItems(capped).size(), 2u);

    // A stored history without terminators is read inside its data only.
    const wchar_t unterminated[] = {L'a', L'b', L'c'};
    store.WriteBlock(section.name.c_str(), L"H", unterminated, sizeof unterminated);
    HWND unterminatedCombo = MakeCombo();
    store.LoadComboHistory(section.name.c_str(), L"H", unterminatedCombo, 10);
    EXPECT_EQ(lxtest::ComboItems(unterminatedCombo), (std::vector<std::wstring>{L"abc"}));
    for (HWND window : {combo, loaded, capped, unterminatedCombo}) DestroyWindow(window);
}
