// lxpicture.dll through its exports, loaded at run time as the host loads it, against Wine's
// real registry and real windows.
#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "RegistryTestKey.h"

using lxtest::RegistryTestKey;

namespace {

using WideEntry = int(WINAPI*)(HWND, HINSTANCE, LPWSTR, int);
using AnsiEntry = int(WINAPI*)(HWND, HINSTANCE, LPSTR, int);

class ExportsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { dll_ = LoadLibraryW(LX_DLL_PATH); }
    static void TearDownTestSuite() { FreeLibrary(dll_); }

    void SetUp() override { ASSERT_NE(dll_, nullptr) << "cannot load " << LX_DLL_PATH; }

    template <typename T>
    static T Entry(const char* name) {
        return reinterpret_cast<T>(reinterpret_cast<void*>(GetProcAddress(dll_, name)));
    }

    static inline HMODULE dll_ = nullptr;
};

const char* const kBatchEntries[] = {"RunConvertImageW",     "RunSplitImageW", "RunContrastResizeW",
                                     "RunRenameToExifDateW", "RunPickoutThumbnailW", "RunWebAlbumW",
                                     "RunJpeg2PdfW"};

// Closes the first top-level window of `className` once it shows up; gives up after 30 s.
class WindowCloser {
public:
    explicit WindowCloser(const wchar_t* className) : className_(className) {
        thread_ = std::thread([this] {
            for (int i = 0; i < 300 && !stop_; ++i) {
                if (HWND hwnd = FindWindowW(className_, nullptr)) {
                    wchar_t caption[256] = {};
                    GetWindowTextW(hwnd, caption, 256);
                    caption_ = caption;
                    style_ = static_cast<DWORD>(GetWindowLongPtrW(hwnd, GWL_STYLE));
                    PostMessageW(hwnd, WM_CLOSE, 0, 0);
                    found_ = true;
                    return;
                }
                Sleep(100);
            }
        });
    }
    ~WindowCloser() {
        stop_ = true;
        thread_.join();
    }
    bool found() { return found_; }
    std::wstring caption() { return caption_; }
    DWORD style() { return style_; }

private:
    const wchar_t* className_;
    std::atomic<bool> stop_{false}, found_{false};
    std::wstring caption_;
    DWORD style_ = 0;
    std::thread thread_;
};

std::wstring LoadDllString(HMODULE dll, UINT id) {
    wchar_t buffer[256] = {};
    LoadStringW(dll, id, buffer, 256);
    return buffer;
}

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

TEST_F(ExportsTest, MissingRequestKeyStartsNothingAndCreatesNothing) {
    const std::wstring missing = L"Software\\Quarry7\\Tests\\missing-" + std::to_wstring(GetCurrentProcessId());
    for (const char* name : kBatchEntries) {
        auto entry = Entry<WideEntry>(name);
        ASSERT_NE(entry, nullptr) << name;
        std::wstring line = missing;
        entry(nullptr, dll_, line.data(), SW_SHOWNORMAL);
        HKEY key = nullptr;
        EXPECT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, missing.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS) << name;
    }
}

TEST_F(ExportsTest, UnusableDropIsConsumedWithoutStartingTheTool) {
    // A tool that started would show its dialog and never return here: the call returning at
    // all shows that nothing was started.
    for (const char* name : kBatchEntries) {
        for (int variant = 0; variant < 3; ++variant) {
            RegistryTestKey key(L"unusable");
            if (variant == 0) key.SetText(L"drop", L"C:\\a.jpg");
            if (variant == 1) key.Set(L"drop", REG_BINARY, nullptr, 0);
            if (variant == 2) {
                const BYTE runaway[24] = {200, 0, 0, 0};  // names would start past the block
                key.Set(L"drop", REG_BINARY, runaway, sizeof runaway);
            }
            key.SetText(L"path", L"C:\\");
            key.Close();
            std::wstring line = key.name();
            EXPECT_EQ(Entry<WideEntry>(name)(nullptr, dll_, line.data(), SW_SHOWNORMAL), 0);
            EXPECT_FALSE(key.Exists()) << name << " variant " << variant;
        }
    }
}

TEST_F(ExportsTest, EightBitEntriesConvertTheKeyName) {
    for (std::string name : kBatchEntries) {
        name.pop_back();
        RegistryTestKey key(L"ansi");
        key.SetText(L"drop", L"not a drop list");
        key.Close();
        const int bytes = WideCharToMultiByte(CP_ACP, 0, key.name().c_str(), -1, nullptr, 0, nullptr, nullptr);
        std::string line(static_cast<size_t>(bytes), '\0');
        WideCharToMultiByte(CP_ACP, 0, key.name().c_str(), -1, line.data(), bytes, nullptr, nullptr);
        EXPECT_EQ(Entry<AnsiEntry>(name.c_str())(nullptr, dll_, line.data(), SW_SHOWNORMAL), 0);
        EXPECT_FALSE(key.Exists()) << name;
    }
}

TEST_F(ExportsTest, FrameEntriesRunAMessageLoopUntilTheirWindowCloses) {
    struct Frame {
        const char* entry;
        const wchar_t* className;
        UINT captionId;
    };
    const Frame frames[] = {
        {"pxfRunW", L"LXPHOTOEDIT_FRAME", 4}, {"imgRunW", L"LXIMAGEVIEW_FRAME", 5}, {"slideRunW", L"LXSLIDESHOW_FRAME", 7},
        {"pxfRun", L"LXPHOTOEDIT_FRAME", 4},  {"imgRun", L"LXIMAGEVIEW_FRAME", 5},  {"slideRun", L"LXSLIDESHOW_FRAME", 7},
    };
    for (const Frame& f : frames) {
        WindowCloser closer(f.className);
        const bool wide = f.entry[strlen(f.entry) - 1] == 'W';
        if (wide) {
            std::wstring line = L"-x /y \"C:\\no such folder\\a.jpg\"";
            Entry<WideEntry>(f.entry)(nullptr, dll_, line.data(), SW_SHOWNORMAL);
        } else {
            std::string line = "C:\\no such folder\\a.jpg";
            Entry<AnsiEntry>(f.entry)(nullptr, dll_, line.data(), SW_SHOWNORMAL);
        }
        EXPECT_TRUE(closer.found()) << f.entry;
        EXPECT_EQ(closer.caption().rfind(LoadDllString(dll_, f.captionId), 0), 0u) << f.entry;
        if (f.captionId != 7) EXPECT_EQ(closer.style() & 0x6CF0000, 0x6CF0000u) << f.entry;
    }
}
