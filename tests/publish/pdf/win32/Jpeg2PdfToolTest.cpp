#include "Jpeg2PdfTool.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ModuleResources.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;

// A 16x8 baseline JPEG made by cjpeg (-quality 50 -optimize).
const std::vector<uint8_t> kTinyJpeg = {
    0xff, 0xd8, 0xff, 0xe0, 0x00, 0x10, 0x4a, 0x46, 0x49, 0x46, 0x00, 0x01, 0x01, 0x00, 0x00, 0x01, 0x00, 0x01,
    0x00, 0x00, 0xff, 0xdb, 0x00, 0x43, 0x00, 0x10, 0x0b, 0x0c, 0x0e, 0x0c, 0x0a, 0x10, 0x0e, 0x0d, 0x0e, 0x12,
    0x11, 0x10, 0x13, 0x18, 0x28, 0x1a, 0x18, 0x16, 0x16, 0x18, 0x31, 0x23, 0x25, 0x1d, 0x28, 0x3a, 0x33, 0x3d,
    0x3c, 0x39, 0x33, 0x38, 0x37, 0x40, 0x48, 0x5c, 0x4e, 0x40, 0x44, 0x57, 0x45, 0x37, 0x38, 0x50, 0x6d, 0x51,
    0x57, 0x5f, 0x62, 0x67, 0x68, 0x67, 0x3e, 0x4d, 0x71, 0x79, 0x70, 0x64, 0x78, 0x5c, 0x65, 0x67, 0x63, 0xff,
    0xdb, 0x00, 0x43, 0x01, 0x11, 0x12, 0x12, 0x18, 0x15, 0x18, 0x2f, 0x1a, 0x1a, 0x2f, 0x63, 0x42, 0x38, 0x42,
    0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63,
    0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63,
    0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0x63, 0xff, 0xc0, 0x00, 0x11,
    0x08, 0x00, 0x08, 0x00, 0x10, 0x03, 0x01, 0x22, 0x00, 0x02, 0x11, 0x01, 0x03, 0x11, 0x01, 0xff, 0xc4, 0x00,
    0x15, 0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x05, 0xff, 0xc4, 0x00, 0x14, 0x10, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xff, 0xc4, 0x00, 0x15, 0x01, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04, 0x06, 0xff, 0xc4, 0x00, 0x14, 0x11, 0x01, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xff, 0xda, 0x00,
    0x0c, 0x03, 0x01, 0x00, 0x02, 0x11, 0x03, 0x11, 0x00, 0x3f, 0x00, 0x8e, 0x00, 0x2a, 0x87, 0xff, 0xd9
};

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

std::string ReadText(const fs::path& path) {
    const auto bytes = lxtest::ReadFile(path);
    return std::string(bytes.begin(), bytes.end());
}

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

// A wide DROPFILES block holding `paths`, as the host writes it.
HDROP MakeDropList(const std::vector<std::wstring>& paths) {
    std::wstring names;
    for (const auto& p : paths) names += p + L'\0';
    names += L'\0';
    const size_t bytes = sizeof(DROPFILES) + names.size() * sizeof(wchar_t);
    HGLOBAL block = GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, bytes);
    auto* header = static_cast<DROPFILES*>(block);
    header->pFiles = sizeof(DROPFILES);
    header->fWide = TRUE;
    std::memcpy(header + 1, names.data(), names.size() * sizeof(wchar_t));
    return static_cast<HDROP>(block);
}

TEST(Jpeg2PdfDropList, ReadsEveryPathInListOrder) {
    const std::vector<std::wstring> paths = {L"C:\\b\\2.jpg", L"C:\\a\\1.jpg", L"D:\\写真\\3.jpg"};
    HDROP drop = MakeDropList(paths);
    EXPECT_EQ(lx::DropListPaths(drop), paths);
    GlobalFree(drop);
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

TEST(Jpeg2PdfRun, MoreThan256JpegsShowsMessage4143) {
    lxtest::ScratchDir dir("pdf257");
    const fs::path jpg = dir / "s.jpg";
    lxtest::WriteFile(jpg, kTinyJpeg);
    RecordingSink sink;
    EXPECT_EQ(lx::RunJpeg2PdfFiles((dir / "o.pdf").wstring(), std::vector<std::wstring>(257, jpg.wstring()), sink),
              lx::JpegPdfResult::kRefused);
    EXPECT_EQ(sink.messages, std::vector<unsigned>{4143});
    EXPECT_FALSE(fs::exists(dir / "o.pdf"));
}

}  // namespace
