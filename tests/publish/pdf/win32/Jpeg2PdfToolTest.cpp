#include "Jpeg2PdfTool.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModuleResources.h"
#include "../PdfTestSupport.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;

using pdftest::kTinyJpeg;
using pdftest::ReadText;

class RecordingSink : public lx::ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring& firstLine) override { started = firstLine; }
    void SetLine(int, const std::wstring& text, bool) override { lines.push_back(text); }
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return true; }
    void EndProgress() override {}
    int Message(unsigned textId, const std::wstring&, unsigned flags) override {
        messages.push_back(textId);
        EXPECT_EQ(flags, unsigned(MB_ICONSTOP));
        return IDOK;
    }
    std::wstring started;
    std::vector<std::wstring> lines;
    std::vector<unsigned> messages;
};

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

TEST(Jpeg2PdfRun, KeepsFilesByContentAndAppendsThePdfExtension) {
    lxtest::ScratchDir dir("pdfrun");
    const fs::path jpegNamedPng = dir / "photo.png";
    const fs::path textNamedJpg = dir / "notes.jpg";
    lxtest::WriteFile(jpegNamedPng, kTinyJpeg);
    lxtest::WriteFile(textNamedJpg, std::string("not a picture at all"));

    RecordingSink sink;
    const auto result = lx::RunJpeg2PdfFiles((dir / "album").wstring(), {textNamedJpg.wstring(), jpegNamedPng.wstring()}, sink);
    EXPECT_EQ(result, lx::JpegPdfResult::kWritten);
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(sink.started, L"PDFに変換しています...");
    EXPECT_EQ(sink.lines, std::vector<std::wstring>{L"photo.png"});

    const std::string pdf = ReadText(dir / "album.pdf");
    EXPECT_EQ(pdf.substr(0, 10), "%PDF-1.3\r\n");
    EXPECT_NE(pdf.find("/ColorSpace/DeviceRGB/Width 16/Height 8/Length 287>>"), std::string::npos);
    EXPECT_NE(pdf.find(std::string(kTinyJpeg.begin(), kTinyJpeg.end())), std::string::npos);
    EXPECT_NE(pdf.find("/MediaBox[0 0 841 420]"), std::string::npos);
}

// The limit of 256 is checked through the portable run (JpegPdfJobTest), with names only.
TEST(Jpeg2PdfRun, NoJpegShowsMessage4140) {
    lxtest::ScratchDir dir("pdfnone");
    const fs::path text = dir / "a.jpg";
    lxtest::WriteFile(text, std::string("plain text"));
    RecordingSink sink;
    EXPECT_EQ(lx::RunJpeg2PdfFiles((dir / "o.pdf").wstring(), {text.wstring(), (dir / "gone.jpg").wstring()}, sink),
              lx::JpegPdfResult::kRefused);
    EXPECT_EQ(sink.messages, std::vector<unsigned>{4140});
    EXPECT_FALSE(fs::exists(dir / "o.pdf"));
}

}  // namespace
