// JPEG-to-PDF through its export as a person uses it: the request key, the real save dialog
// (a name typed, Save pressed, or Cancel), and the document it writes.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "../lib/nccore/win32/DialogDriver.h"
#include "DropBlock.h"
#include "ModuleTest.h"
#include "RegistryTestKey.h"
#include "TestFiles.h"

namespace fs = std::filesystem;

namespace {

using namespace lxtest;

// Types `name` into the save dialog's file-name box and presses Save, or presses Cancel when
// `name` is empty.
std::function<void(HWND)> SaveAs(const std::wstring& name) {
    if (name.empty()) return DialogDriver::Press(IDCANCEL);
    return [name](HWND dialog) {
        SetWindowTextW(GetDlgItem(dialog, 1152), name.c_str());
        SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
    };
}

class Jpeg2PdfDialogTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(Entry<WideEntry>("RunJpeg2PdfW"), nullptr);
        const fs::path samples = SourceDir() / "samples";
        fs::copy_file(samples / "hills.jpg", folder_ / "a.jpg");
        fs::copy_file(samples / "tree.jpg", folder_ / "\u5199\u771f b.jpg");
        fs::copy_file(samples / "mountain.jpg", folder_ / "not-a-jpeg.txt");
        std::ofstream(folder_ / "fake.jpg") << "plain text, not a JPEG";
    }
    void Run(const std::wstring& typedName) {
        RegistryTestKey key(L"pdfdialog");
        const auto drop = WideDropBlock(
            {WindowsPath(folder_ / "a.jpg"), WindowsPath(folder_ / "fake.jpg"), WindowsPath(folder_ / "\u5199\u771f b.jpg")});
        key.Set(L"drop", REG_BINARY, drop.data(), static_cast<DWORD>(drop.size()));
        key.Close();
        DialogDriver driver(DllString(4141), SaveAs(typedName));
        std::wstring line = key.name();
        Entry<WideEntry>("RunJpeg2PdfW")(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
        EXPECT_TRUE(driver.Found()) << "the save dialog titled 4141 never showed";
        EXPECT_FALSE(key.Exists());
    }

    ScratchDir dir_{"pdfdialog"};
    const fs::path folder_ = dir_.path();
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
