#include "JpegPdfWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ByteSink.h"
#include "PdfTestSupport.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;
using pdftest::WriteFrameOnlyJpeg;

class StringSink : public lx::ByteSink {
public:
    bool Write(const void* data, size_t size) override {
        text.append(static_cast<const char*>(data), size);
        return true;
    }
    std::string text;
};

// The worker's first steps: A4 portrait, the free xref entry, the header.
void Begin(lx::JpegPdfWriter& writer) {
    writer.SetPageSize(595, 841);
    writer.WriteFreeXrefEntry();
    writer.ComposeHeader();
}

// Runs the writer in the worker's order over `files`; returns the document.
std::string Compose(const std::vector<fs::path>& files, int* pages = nullptr, bool* written = nullptr,
                    int64_t* finishedLength = nullptr) {
    lx::JpegPdfWriter writer;
    Begin(writer);
    for (const auto& f : files) writer.AddJpegFile(f);
    const int64_t length = writer.FinishDocument();
    if (finishedLength) *finishedLength = length;
    StringSink sink;
    const bool ok = writer.WriteDocument(sink);
    if (pages) *pages = writer.PageCount();
    if (written) *written = ok;
    return sink.text;
}

TEST(JpegPdfWriter, OneColourPageMatchesTheWorkedExampleByteForByte) {
    lxtest::ScratchDir dir("pdfexample");
    const fs::path jpg = dir / "a.jpg";
    WriteFrameOnlyJpeg(jpg, 4000, 3000, 3, 1000);
    const auto jpeg = lxtest::ReadFile(jpg);

    const std::string expected =
        std::string("%PDF-1.3\r\n%\xFFJ2PDF\xFF\r\n") +
        "\r\n2 0 obj\r\n<</Type/XObject/Subtype/Image/Filter/DCTDecode/BitsPerComponent 8/ColorSpace/DeviceRGB"
        "/Width 4000/Height 3000/Length 1000>>\r\nstream\r\n" +
        std::string(jpeg.begin(), jpeg.end()) +
        "\r\nendstream\r\nendobj\r\n"
        "3 0 obj\r\n<</Type/Page/Parent 1 0 R/MediaBox[0 0 793 595]/Contents 4 0 R/Resources 6 0 R>>\r\nendobj\r\n"
        "4 0 obj\r\n<</Length 5 0 R>>stream\r\n"
        "q\r\n1 0 0 1 0.00 0.00 cm\r\n793.00 0 0 595.00 0 0 cm\r\n/I0 Do\r\nQ\r\n"
        "endstream\r\nendobj\r\n"
        "5 0 obj\r\n62\r\nendobj\r\n"
        "6 0 obj\r\n<</ProcSet[/PDF/ImageC]/XObject<</I0 2 0 R>>>>\r\nendobj\r\n"
        "7 0 obj\r\n<</Type/Catalog/Pages 1 0 R>>\r\nendobj\r\n"
        "1 0 obj\r\n<</Type /Pages /Kids [3 0 R] /Count 1>>\r\nendobj\r\n"
        "xref\r\n0 8\r\n"
        "0000000000 65535 f\r\n"
        "0000001533 00000 n\r\n"
        "0000000020 00000 n\r\n"
        "0000001185 00000 n\r\n"
        "0000001284 00000 n\r\n"
        "0000001399 00000 n\r\n"
        "0000001420 00000 n\r\n"
        "0000001485 00000 n\r\n"
        "trailer\r\n<</Root 7 0 R /Size 8>>\r\n"
        "startxref\r\n1591\r\n%%EOF\r\n";
    int64_t finishedLength = 0;
    EXPECT_EQ(Compose({jpg}, nullptr, nullptr, &finishedLength), expected);
    EXPECT_EQ(finishedLength, int64_t(expected.size()));
}

TEST(JpegPdfWriter, PagesAreNumberedInFivesAndListedInOrder) {
    lxtest::ScratchDir dir("pdfpages");
    std::vector<fs::path> files;
    const uint16_t sizes[][2] = {{3000, 4000}, {1000, 1000}, {1000, 100}};
    for (int i = 0; i < 3; ++i) {
        files.push_back(dir / ("p" + std::to_string(i) + ".jpg"));
        WriteFrameOnlyJpeg(files.back(), sizes[i][0], sizes[i][1], 3, 300 + i);
    }
    const std::string pdf = Compose(files);
    EXPECT_NE(pdf.find("3 0 obj\r\n<</Type/Page/Parent 1 0 R/MediaBox[0 0 595 793]/Contents 4 0 R/Resources 6 0 R>>"),
              std::string::npos);
    EXPECT_NE(pdf.find("8 0 obj\r\n<</Type/Page/Parent 1 0 R/MediaBox[0 0 595 595]/Contents 9 0 R/Resources 11 0 R>>"),
              std::string::npos);
    EXPECT_NE(pdf.find("13 0 obj\r\n<</Type/Page/Parent 1 0 R/MediaBox[0 0 841 84]/Contents 14 0 R/Resources 16 0 R>>"),
              std::string::npos);
    EXPECT_NE(pdf.find("\r\n12 0 obj\r\n<</Type/XObject/Subtype/Image/Filter/DCTDecode/BitsPerComponent 8"
                       "/ColorSpace/DeviceRGB/Width 1000/Height 100/Length 302>>\r\nstream\r\n"),
              std::string::npos);
    EXPECT_NE(pdf.find("16 0 obj\r\n<</ProcSet[/PDF/ImageC]/XObject<</I2 12 0 R>>>>\r\nendobj\r\n"), std::string::npos);
    EXPECT_NE(pdf.find("q\r\n1 0 0 1 0.00 0.00 cm\r\n841.00 0 0 84.00 0 0 cm\r\n/I2 Do\r\nQ\r\n"), std::string::npos);
    EXPECT_NE(pdf.find("17 0 obj\r\n<</Type/Catalog/Pages 1 0 R>>\r\nendobj\r\n"
                       "1 0 obj\r\n<</Type /Pages /Kids [3 0 R 8 0 R 13 0 R] /Count 3>>\r\nendobj\r\nxref\r\n0 18\r\n"),
              std::string::npos);
    EXPECT_NE(pdf.find("trailer\r\n<</Root 17 0 R /Size 18>>\r\nstartxref\r\n"), std::string::npos);
    pdftest::ExpectXrefMatchesObjects(pdf);
}

// The pages are a grey and a CMYK file, both declared grey.
TEST(JpegPdfWriter, FailedFilesLeaveNoGapInNumbersOrImageNames) {
    lxtest::ScratchDir dir("pdfskip");
    const fs::path grey = dir / "1.jpg", notMarker = dir / "2.jpg", missing = dir / "3.jpg", cmyk = dir / "4.jpg";
    WriteFrameOnlyJpeg(grey, 20, 10, 1, 64);
    WriteFrameOnlyJpeg(cmyk, 20, 10, 4, 64);
    WriteFrameOnlyJpeg(notMarker, 20, 10, 3, 64);
    auto bytes = lxtest::ReadFile(notMarker);
    bytes[2] = 0x00;
    lxtest::WriteFile(notMarker, bytes);

    int pages = 0;
    const std::string pdf = Compose({grey, notMarker, missing, cmyk}, &pages);
    EXPECT_EQ(pages, 2);
    EXPECT_NE(pdf.find("/Kids [3 0 R 8 0 R] /Count 2"), std::string::npos);
    for (const char* image : {"2 0 obj", "7 0 obj"})
        EXPECT_NE(pdf.find(std::string(image) + "\r\n<</Type/XObject/Subtype/Image/Filter/DCTDecode/BitsPerComponent 8"
                                                "/ColorSpace/DeviceGray/Width 20/Height 10/Length 64>>"),
                  std::string::npos) << image;
    EXPECT_NE(pdf.find("6 0 obj\r\n<</ProcSet[/PDF/ImageB]/XObject<</I0 2 0 R>>>>"), std::string::npos);
    EXPECT_NE(pdf.find("11 0 obj\r\n<</ProcSet[/PDF/ImageB]/XObject<</I1 7 0 R>>>>"), std::string::npos);
    EXPECT_EQ(pdf.find("DeviceRGB"), std::string::npos);
    pdftest::ExpectXrefMatchesObjects(pdf);
}

TEST(JpegPdfWriter, NoUsableFileStillMakesAnEmptyDocument) {
    lxtest::ScratchDir dir("pdfnone");
    const fs::path arithmetic = dir / "a.jpg";
    WriteFrameOnlyJpeg(arithmetic, 16, 16, 3, 100, 0xC9);
    int pages = -1;
    const std::string pdf = Compose({arithmetic, dir / "missing.jpg"}, &pages);
    EXPECT_EQ(pages, 0);
    EXPECT_EQ(pdf, std::string("%PDF-1.3\r\n%\xFFJ2PDF\xFF\r\n") +
                       "2 0 obj\r\n<</Type/Catalog/Pages 1 0 R>>\r\nendobj\r\n"
                       "1 0 obj\r\n<</Type /Pages /Kids [] /Count 0>>\r\nendobj\r\n"
                       "xref\r\n0 3\r\n"
                       "0000000000 65535 f\r\n"
                       "0000000068 00000 n\r\n"
                       "0000000020 00000 n\r\n"
                       "trailer\r\n<</Root 2 0 R /Size 3>>\r\n"
                       "startxref\r\n121\r\n%%EOF\r\n");
    const fs::path out = dir / "empty.pdf";
    lxtest::WriteFile(out, pdf);
    pdftest::ExpectQpdfAccepts(out);
}

TEST(JpegPdfWriter, TakesNoMoreThan256Pages) {
    lxtest::ScratchDir dir("pdf256");
    const fs::path jpg = dir / "s.jpg";
    lxtest::WriteFile(jpg, pdftest::TinyJpeg());
    lx::JpegPdfWriter writer;
    Begin(writer);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(writer.AddJpegFile(jpg), 1) << i;
    EXPECT_EQ(writer.AddJpegFile(jpg), 0);
    EXPECT_EQ(writer.AddImagePage(jpg, 16, 8, 100, true), 0);
    EXPECT_EQ(writer.PageCount(), 256);
}

class FailingSink : public lx::ByteSink {
public:
    explicit FailingSink(int allowedWrites) : allowed_(allowedWrites) {}
    bool Write(const void*, size_t) override { return allowed_-- > 0; }
    int writesLeft() const { return allowed_; }

private:
    int allowed_;
};

// Writing stops at the first failed write; a file that changed size since it was added is
// copied for the length it had then, so the offsets still hold.
TEST(JpegPdfWriter, StopsAtTheFirstFailedWriteAndCopiesAChangedFileForItsFirstLength) {
    lxtest::ScratchDir dir("pdfwrite");
    const fs::path grown = dir / "1.jpg", shrunk = dir / "2.jpg";
    WriteFrameOnlyJpeg(grown, 30, 20, 3, 200);
    WriteFrameOnlyJpeg(shrunk, 30, 20, 3, 200);
    lx::JpegPdfWriter writer;
    Begin(writer);
    ASSERT_EQ(writer.AddJpegFile(grown), 1);
    ASSERT_EQ(writer.AddJpegFile(shrunk), 1);
    const int64_t length = writer.FinishDocument();
    for (int allowed = 0; allowed < 4; ++allowed) {
        FailingSink sink(allowed);
        EXPECT_FALSE(writer.WriteDocument(sink)) << allowed;
        EXPECT_EQ(sink.writesLeft(), -1) << "wrote on after a failure, allowed " << allowed;
    }
    FailingSink enough(8);  // the header, three pieces a page, the tail
    EXPECT_TRUE(writer.WriteDocument(enough));

    WriteFrameOnlyJpeg(grown, 30, 20, 3, 5000);
    WriteFrameOnlyJpeg(shrunk, 30, 20, 3, 50);
    StringSink sink;
    ASSERT_TRUE(writer.WriteDocument(sink));
    EXPECT_EQ(int64_t(sink.text.size()), length);
    pdftest::ExpectXrefMatchesObjects(sink.text);
}

#ifndef _WIN32
// The outside oracles: qpdf finds the structure sound and poppler draws each picture over
// its whole page, in the page size the geometry rules give.
TEST(JpegPdfWriter, RealJpegsRenderFullPageAtTheFittedSize) {
    LX_REQUIRE_TOOLS("cjpeg qpdf pdftoppm");
    using pdftest::Rgb;
    lxtest::ScratchDir dir("pdfrender");
    const std::vector<fs::path> files = {
        pdftest::MakeJpeg(dir.path(), "land.jpg", 400, 300),
        pdftest::MakeJpeg(dir.path(), "port.jpg", 300, 400, "-progressive"),
        pdftest::MakeJpeg(dir.path(), "grey.jpg", 200, 200, "-grayscale"),
    };
    const fs::path out = dir / "out.pdf";
    {
        bool written = false;
        const std::string pdf = Compose(files, nullptr, &written);
        ASSERT_TRUE(written);
        lxtest::WriteFile(out, pdf);
    }
    pdftest::ExpectQpdfAccepts(out);

    struct Expect {
        int width, height;
        Rgb left, right;
    } pages[] = {
        {793, 595, {220, 20, 20}, {20, 20, 220}},
        {595, 793, {220, 20, 20}, {20, 20, 220}},
        // cjpeg's grey of the two halves (ITU-R BT.601 luma).
        {595, 595, {73, 73, 73}, {38, 38, 38}},
    };
    for (int i = 0; i < 3; ++i) {
        const pdftest::Raster page = pdftest::RenderPage(out, i + 1);
        ASSERT_EQ(page.width, pages[i].width) << "page " << i + 1;
        ASSERT_EQ(page.height, pages[i].height) << "page " << i + 1;
        for (int y : {2, page.height / 2, page.height - 3}) {
            EXPECT_TRUE(pdftest::Near(page.At(2, y), pages[i].left, 25)) << "page " << i + 1 << " y " << y;
            EXPECT_TRUE(pdftest::Near(page.At(page.width - 3, y), pages[i].right, 25)) << "page " << i + 1 << " y " << y;
        }
    }
}
#endif

}  // namespace
