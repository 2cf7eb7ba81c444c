// lxpicture.dll through its exports, loaded at run time as the host loads it, against Wine's
// real registry and real windows.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "DropBlock.h"
#include "ModuleTest.h"
#include "RegistryTestKey.h"

using namespace lxtest;

namespace {

class ExportsTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(Dll(), nullptr) << "cannot load " << LX_DLL_PATH; }
};

const char* const kBatchEntries[] = {"RunConvertImageW",     "RunSplitImageW", "RunContrastResizeW",
                                     "RunRenameToExifDateW", "RunPickoutThumbnailW", "RunWebAlbumW",
                                     "RunJpeg2PdfW"};

// HKEY_CURRENT_USER of this process mapped onto a scratch key holding a small tree, so that
// a request reader misled by an odd key name can harm only the scratch tree.
class ScratchUserHive {
public:
    ScratchUserHive() : scratch_(L"hive") {
        RegOpenKeyExW(HKEY_CURRENT_USER, scratch_.name().c_str(), 0, KEY_ALL_ACCESS, &root_);
        for (const wchar_t* name : {L"Software\\Quarry7\\Settings", L"Software\\Other", L"Control Panel\\Desktop"}) {
            HKEY key = nullptr;
            RegCreateKeyExW(root_, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
            RegSetValueExW(key, L"v", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"x"), 4);
            RegCloseKey(key);
        }
        mapped_ = root_ && RegOverridePredefKey(HKEY_CURRENT_USER, root_) == ERROR_SUCCESS && ProbeMapping();
    }
    ~ScratchUserHive() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        if (root_) RegCloseKey(root_);
    }
    bool mapped() const { return mapped_; }
    // Every key and value name of the tree, one per line.
    std::wstring Listing() const { return Listing(root_, L""); }

private:
    // A key made through HKEY_CURRENT_USER must land in the scratch tree.
    bool ProbeMapping() {
        HKEY probe = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, L"probe", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &probe, nullptr))
            return false;
        RegCloseKey(probe);
        return RegDeleteKeyW(root_, L"probe") == ERROR_SUCCESS;
    }
    static std::wstring Listing(HKEY key, const std::wstring& prefix) {
        std::wstring out;
        wchar_t name[256];
        for (DWORD i = 0, size = 256; RegEnumValueW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) == 0;
             ++i, size = 256)
            out += prefix + L":" + name + L"\n";
        for (DWORD i = 0, size = 256; RegEnumKeyExW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) == 0;
             ++i, size = 256) {
            HKEY child = nullptr;
            if (RegOpenKeyExW(key, name, 0, KEY_READ, &child)) continue;
            out += prefix + L"\\" + name + L"\n" + Listing(child, prefix + L"\\" + name);
            RegCloseKey(child);
        }
        return out;
    }
    RegistryTestKey scratch_;
    HKEY root_ = nullptr;
    bool mapped_ = false;
};

}  // namespace

TEST_F(ExportsTest, RetiredEntriesAreOneFunctionThatReturnsZero) {
    auto first = Entry<AnsiEntry>("vwiConvertImage");
    ASSERT_NE(first, nullptr);
    for (const char* name : {"vmiRenameToExifDate", "vmiPickoutThumbnail", "vmiPickoutThumbnail2"})
        EXPECT_EQ(Entry<AnsiEntry>(name), first) << name;
    char junk[] = "\xff\xfe anything";
    EXPECT_EQ(first(reinterpret_cast<HWND>(1), nullptr, junk, -5), 0);
    EXPECT_EQ(first(nullptr, nullptr, nullptr, 0), 0);
}

TEST_F(ExportsTest, UnusableDropIsConsumedWithoutStartingTheTool) {
    const BYTE runaway[24] = {200, 0, 0, 0};  // names would start past the block
    const std::vector<uint8_t> noName = lxtest::WideDropBlock({});
    for (const char* name : kBatchEntries) {
        for (int variant = 0; variant < 5; ++variant) {  // variant 4: no "drop" at all
            RegistryTestKey key(L"unusable");
            if (variant == 0) key.SetText(L"drop", L"C:\\a.jpg");
            if (variant == 1) key.Set(L"drop", REG_BINARY, nullptr, 0);
            if (variant == 2) key.Set(L"drop", REG_BINARY, runaway, sizeof runaway);
            if (variant == 3) key.Set(L"drop", REG_BINARY, noName.data(), static_cast<DWORD>(noName.size()));
            key.SetText(L"path", L"C:\\");
            key.Close();
            std::wstring line = key.name();
            std::string ansiLine(line.begin(), line.end()), ansiName(name, strlen(name) - 1);
            WindowWatch watch;
            if (variant == 0)  // the eight-bit entry names the same key
                EXPECT_EQ(Entry<AnsiEntry>(ansiName.c_str())(nullptr, Dll(), ansiLine.data(), SW_SHOWNORMAL), 0);
            else
                EXPECT_EQ(Entry<WideEntry>(name)(nullptr, Dll(), line.data(), SW_SHOWNORMAL), 0);
            EXPECT_EQ(watch.Stop().size(), 0u) << name << " started with variant " << variant;
            EXPECT_FALSE(key.Exists()) << name << " variant " << variant;
        }
    }
}

// Odd names are refused before the registry is touched; a missing key is left missing.
TEST_F(ExportsTest, OddOrMissingKeysChangeNoKey) {
    ScratchUserHive hive;
    ASSERT_TRUE(hive.mapped()) << "HKEY_CURRENT_USER cannot be mapped onto a scratch key";
    const std::wstring before = hive.Listing();
    ASSERT_NE(before.find(L"Control Panel\\Desktop"), std::wstring::npos) << before;
    const wchar_t* const names[] = {L"", L" ", L"\t", L"\u3000", L"\\", L"\\Software", L"Software\\",
                                    L"Software\\\\Other", L".", L"..", L"Software\\..", L"Software\\Other\\..",
                                    L"Software\\Quarry7\\missing"};
    for (const char* entry : kBatchEntries) {
        for (const wchar_t* name : names) {
            std::wstring line = name;
            Entry<WideEntry>(entry)(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
            ASSERT_EQ(hive.Listing(), before) << entry << " with " << testing::PrintToString(line);
        }
        Entry<WideEntry>(entry)(nullptr, Dll(), nullptr, SW_SHOWNORMAL);
        // rundll32 with no argument hands the eight-bit entry an empty line.
        std::string empty;
        std::string ansi(entry, strlen(entry) - 1);
        Entry<AnsiEntry>(ansi.c_str())(nullptr, Dll(), empty.data(), SW_SHOWNORMAL);
        Entry<AnsiEntry>(ansi.c_str())(nullptr, Dll(), nullptr, SW_SHOWNORMAL);
        ASSERT_EQ(hive.Listing(), before) << ansi;
    }
}

TEST_F(ExportsTest, FrameEntriesRunAMessageLoopUntilTheirWindowCloses) {
    struct Frame {
        const char* entry;
        const wchar_t* className;
        UINT captionId;
    };
    const Frame frames[] = {
        // The slide show finds no picture in a missing folder: it says so and opens no window.
        {"pxfRunW", L"LXPHOTOEDIT_FRAME", 4}, {"imgRunW", L"LXIMAGEVIEW_FRAME", 5}, {"slideRunW", L"#32770", 7},
        {"pxfRun", L"LXPHOTOEDIT_FRAME", 4},  {"imgRun", L"LXIMAGEVIEW_FRAME", 5},  {"slideRun", L"#32770", 7},
    };
    for (const Frame& f : frames) {
        WindowWatch watch;
        if (f.entry[strlen(f.entry) - 1] == 'W') {
            std::wstring line = L"-x /y \"C:\\no such folder\\a.jpg\"";
            Entry<WideEntry>(f.entry)(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
        } else {
            std::string line = "C:\\no such folder\\a.jpg";
            Entry<AnsiEntry>(f.entry)(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
        }
        const auto& seen = watch.Stop();
        ASSERT_FALSE(seen.empty()) << f.entry;
        EXPECT_EQ(seen[0].className, f.className) << f.entry;
        EXPECT_EQ(seen[0].caption.rfind(DllString(f.captionId), 0), 0u) << f.entry;
        if (f.captionId != 7) {
            EXPECT_EQ(seen[0].style & 0x6CF0000, 0x6CF0000u) << f.entry;
        }
    }
}
