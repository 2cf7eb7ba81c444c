#include "Jpeg2PdfTool.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModuleResources.h"
#include "../PdfTestSupport.h"
#include "RecordingSink.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;

using pdftest::ReadText;
using lxtest::RecordingSink;

TEST(Jpeg2PdfStrings, MessagesAndTitlesComeFromTheStringTable) {
    EXPECT_EQ(lx::LoadResString(4140), L"処理するJpegファイルがありません");
    EXPECT_EQ(lx::LoadResString(4141), L"JpegからPDF");
    EXPECT_EQ(lx::LoadResString(4142), L"PDFに変換しています...");
    EXPECT_EQ(lx::LoadResString(4143), L"PDFファイルに格納できるイメージの上限は256枚です。");
}

TEST(Jpeg2PdfFileSink, ReplacesAFileAndKeepsItUnsharedWhileWriting) {
    lxtest::ScratchDir dir("pdfsink");
    const fs::path out = dir / "o.pdf";
    lxtest::WriteFile(out, std::string(5000, 'x'));
    {
        auto sink = lx::CreateWin32FileSink(out);
        ASSERT_TRUE(sink);
        const HANDLE other = CreateFileW(out.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(other, INVALID_HANDLE_VALUE);
        if (other != INVALID_HANDLE_VALUE) CloseHandle(other);
        ASSERT_TRUE(sink->Write("abc", 3));
    }
    EXPECT_EQ(ReadText(out), "abc");
    EXPECT_FALSE(lx::CreateWin32FileSink(dir / "missing" / "o.pdf"));
}

TEST(Jpeg2PdfRun, KeepsFilesByContentRefusesWithoutAJpegAndAppendsThePdfExtension) {
    lxtest::ScratchDir dir("pdfrun");
    const fs::path jpegNamedPng = dir / "photo.png";
    const fs::path textNamedJpg = dir / "notes.jpg";
    const std::vector<uint8_t> jpeg = pdftest::TinyJpeg();
    lxtest::WriteFile(jpegNamedPng, jpeg);
    lxtest::WriteFile(textNamedJpg, std::string("not a picture at all"));

    // Without the JPEG, or a file that is gone, only the message: no document.
    RecordingSink none;
    EXPECT_EQ(lx::RunJpeg2PdfFiles((dir / "o.pdf").wstring(), {textNamedJpg.wstring(), (dir / "gone.jpg").wstring()}, none),
              lx::JpegPdfResult::kRefused);
    EXPECT_EQ(none.events, std::vector<std::wstring>{L"message 4140"});
    EXPECT_EQ(none.messageFlags, std::vector<unsigned>{MB_ICONSTOP});
    EXPECT_FALSE(fs::exists(dir / "o.pdf"));

    RecordingSink sink;
    const auto result = lx::RunJpeg2PdfFiles((dir / "album").wstring(), {textNamedJpg.wstring(), jpegNamedPng.wstring()}, sink);
    EXPECT_EQ(result, lx::JpegPdfResult::kWritten);
    EXPECT_EQ(sink.events, (std::vector<std::wstring>{L"start JpegからPDF | PDFに変換しています...", L"line2 photo.png", L"end"}));

    const std::string pdf = ReadText(dir / "album.pdf");
    EXPECT_EQ(pdf.substr(0, 10), "%PDF-1.3\r\n");
    EXPECT_NE(pdf.find("/ColorSpace/DeviceRGB/Width 16/Height 8/Length 287>>"), std::string::npos);
    EXPECT_NE(pdf.find(std::string(jpeg.begin(), jpeg.end())), std::string::npos);
    EXPECT_NE(pdf.find("/MediaBox[0 0 841 420]"), std::string::npos);
}

}  // namespace
