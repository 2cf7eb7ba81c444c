// JPEG-to-PDF through its export as a person uses it: the request key, the real save dialog
// (a name typed, Save pressed, or Cancel), and the document it writes.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "RegistryTestKey.h"

namespace fs = std::filesystem;

namespace {

using WideEntry = int(WINAPI*)(HWND, HINSTANCE, LPWSTR, int);

std::wstring DllString(HMODULE dll, UINT id) {
    wchar_t buffer[256] = {};
    LoadStringW(dll, id, buffer, 256);
    return buffer;
}

std::wstring WindowsPath(const fs::path& path) {
    wchar_t full[1024];
    GetFullPathNameW(path.wstring().c_str(), 1024, full, nullptr);
    return full;
}

void WriteDropRequest(lxtest::RegistryTestKey& key, const std::vector<fs::path>& files) {
    DROPFILES header = {};
    header.pFiles = sizeof header;
    header.fWide = TRUE;
    std::vector<BYTE> block(reinterpret_cast<BYTE*>(&header), reinterpret_cast<BYTE*>(&header) + sizeof header);
    for (const auto& f : files) {
        const std::wstring name = WindowsPath(f);
        const BYTE* p = reinterpret_cast<const BYTE*>(name.c_str());
        block.insert(block.end(), p, p + (name.size() + 1) * 2);
    }
    block.insert(block.end(), 2, 0);
    key.Set(L"drop", REG_BINARY, block.data(), static_cast<DWORD>(block.size()));
    key.Close();
}

// Waits for the visible dialog titled `title`, then types `name` into its file-name box and
// presses Save, or presses Cancel when `name` is empty.
class SaveDialogDriver {
public:
    SaveDialogDriver(std::wstring title, std::wstring name) : title_(std::move(title)), name_(std::move(name)) {
        thread_ = std::thread([this] { Drive(); });
    }
    ~SaveDialogDriver() { thread_.join(); }
    bool found() const { return found_; }

private:
    void Drive() {
        for (int i = 0; i < 300; ++i) {
            HWND dialog = FindWindowW(L"#32770", title_.c_str());
            if (dialog && IsWindowVisible(dialog)) {
                found_ = true;
                Sleep(300);  // let the dialog finish filling its views
                if (name_.empty()) {
                    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
                } else {
                    SetWindowTextW(GetDlgItem(dialog, 1152), name_.c_str());  // the file-name box
                    SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
                }
                return;
            }
            Sleep(100);
        }
    }
    std::wstring title_, name_;
    std::atomic<bool> found_{false};
    std::thread thread_;
};

class Jpeg2PdfDialogTest : public testing::Test {
protected:
    void SetUp() override {
        dll_ = LoadLibraryW(LX_DLL_PATH);
        ASSERT_NE(dll_, nullptr);
        entry_ = reinterpret_cast<WideEntry>(reinterpret_cast<void*>(GetProcAddress(dll_, "RunJpeg2PdfW")));
        ASSERT_NE(entry_, nullptr);
        folder_ = fs::temp_directory_path() / ("lxtest-pdfdialog-" + std::to_string(GetCurrentProcessId()));
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        const fs::path samples = fs::path(getenv("LX_SOURCE_DIR") ? getenv("LX_SOURCE_DIR") : ".") / "samples";
        fs::copy_file(samples / "hills.jpg", folder_ / "a.jpg");
        fs::copy_file(samples / "tree.jpg", folder_ / "\u5199\u771f b.jpg");
        fs::copy_file(samples / "mountain.jpg", folder_ / "not-a-jpeg.txt");
        std::ofstream(folder_ / "fake.jpg") << "plain text, not a JPEG";
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(folder_, ec);
        FreeLibrary(dll_);
    }
    void Run(const std::wstring& typedName) {
        lxtest::RegistryTestKey key(L"pdfdialog");
        WriteDropRequest(key, {folder_ / "a.jpg", folder_ / "fake.jpg", folder_ / "\u5199\u771f b.jpg"});
        SaveDialogDriver driver(DllString(dll_, 4141), typedName);
        std::wstring line = key.name();
        entry_(nullptr, dll_, line.data(), SW_SHOWNORMAL);
        EXPECT_TRUE(driver.found()) << "the save dialog titled 4141 never showed";
        EXPECT_FALSE(key.Exists());
    }

    HMODULE dll_ = nullptr;
    WideEntry entry_ = nullptr;
    fs::path folder_;
};

}  // namespace

TEST_F(Jpeg2PdfDialogTest, TypedNameGetsPdfExtensionAndHoldsEveryJpegAsAPage) {
    Run(WindowsPath(folder_ / "album"));
    const fs::path output = folder_ / "album.pdf";
    ASSERT_TRUE(fs::exists(output));
    std::ifstream in(output, std::ios::binary);
    const std::string pdf((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(pdf.rfind("%PDF-1.3", 0), 0u);
    EXPECT_NE(pdf.find("/Count 2"), std::string::npos);  // the text named .jpg is left out
    EXPECT_NE(pdf.find("%%EOF"), std::string::npos);
}

TEST_F(Jpeg2PdfDialogTest, CancelWritesNothing) {
    Run(L"");
    for (const auto& entry : fs::directory_iterator(folder_))
        EXPECT_NE(entry.path().extension(), ".pdf") << entry.path();
}
