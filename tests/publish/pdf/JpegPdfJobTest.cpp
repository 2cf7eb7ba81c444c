#include "JpegPdfJob.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "PdfTestSupport.h"
#include "RecordingSink.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;

using lxtest::RecordingSink;

lx::JpegPdfJob MakeJob(const fs::path& output) {
    lx::JpegPdfJob job;
    job.output = output;
    job.progressTitle = L"T";
    job.progressLine = L"L";
    return job;
}

// Stands in for the codec library's probe: JPEG exactly for names ending in ".jpg".
int ProbeByName(const fs::path& p) { return p.extension() == ".jpg" ? lx::kJpegImageType : 1; }

TEST(JpegPdfJob, PdfExtensionIsAppendedUnlessAlreadyThereInAnyCase) {
    const std::map<std::wstring, std::wstring> cases = {
        {L"album", L"album.pdf"},
        {L"album.jpg", L"album.jpg.pdf"},
        {L"out.PDF", L"out.PDF"},
        {L"out.Pdf", L"out.Pdf"},
        {L"out.pdf.txt", L"out.pdf.txt.pdf"},
        {L"out.pdfx", L"out.pdfx.pdf"},
        {L"out.", L"out..pdf"},
        {L".pdf", L".pdf"},
        {L"C:\\docs.pdf\\album", L"C:\\docs.pdf\\album.pdf"},
        {L"C:\\d\\x.pdf", L"C:\\d\\x.pdf"},
        {L"/tmp/v1.2/out", L"/tmp/v1.2/out.pdf"},
    };
    for (const auto& [in, out] : cases) EXPECT_EQ(lx::WithPdfExtension(in), out);
}

TEST(JpegPdfJob, NoJpegShowsMessage4140AndWritesNothing) {
    lxtest::ScratchDir dir("jobnone");
    RecordingSink sink;
    const auto result = lx::RunJpegPdfTool(MakeJob(dir / "o.pdf"), {dir / "a.png", dir / "b.bmp"}, ProbeByName, sink);
    EXPECT_EQ(result, lx::JpegPdfResult::kRefused);
    EXPECT_EQ(sink.events, std::vector<std::wstring>{L"message 4140"});
    EXPECT_EQ(sink.messageFlags, std::vector<unsigned>{lx::kMbIconError});
    EXPECT_FALSE(fs::exists(dir / "o.pdf"));
}

TEST(JpegPdfJob, Over256JpegsRefusesTheWholeRun) {
    lxtest::ScratchDir dir("job257");
    const fs::path jpg = dir / "s.jpg";
    lxtest::WriteFile(jpg, pdftest::TinyJpeg());  // a real picture, for qpdf
    std::vector<fs::path> files(257, jpg);
    files.insert(files.begin() + 3, dir / "not.png");

    RecordingSink refused;
    EXPECT_EQ(lx::RunJpegPdfTool(MakeJob(dir / "o.pdf"), files, ProbeByName, refused), lx::JpegPdfResult::kRefused);
    EXPECT_EQ(refused.messages, std::vector<unsigned>{4143});
    EXPECT_EQ(refused.messageFlags, std::vector<unsigned>{lx::kMbIconError});
    EXPECT_FALSE(fs::exists(dir / "o.pdf"));

    files.pop_back();  // 256 JPEG files and one other
    RecordingSink accepted;
    EXPECT_EQ(lx::RunJpegPdfTool(MakeJob(dir / "o.pdf"), files, ProbeByName, accepted), lx::JpegPdfResult::kWritten);
    EXPECT_TRUE(accepted.messages.empty());
    // The catalog is the last of the 1283 objects; the tail text has room for all of them.
    const std::string pdf = pdftest::ReadText(dir / "o.pdf");
    EXPECT_NE(pdf.find("1278 0 R] /Count 256>>"), std::string::npos);
    EXPECT_NE(pdf.find("trailer\r\n<</Root 1282 0 R /Size 1283>>\r\n"), std::string::npos);
    pdftest::ExpectQpdfAccepts(dir / "o.pdf");
}

TEST(JpegPdfJob, ReportsEachJpegNameOnLineTwoAndNeverAsksAboutCancelling) {
    lxtest::ScratchDir dir("jobprogress");
    const fs::path a = dir / "first.jpg";
    const fs::path b = dir / "second.jpg";
    pdftest::WriteFrameOnlyJpeg(a, 16, 8, 3, 100);
    pdftest::WriteFrameOnlyJpeg(b, 8, 16, 3, 100, 0xC9);
    RecordingSink sink;
    sink.cancelAfterChecks = 0;  // the user asked to stop at once: the tool must not care
    // Only probed JPEG files are kept, in list order.
    const std::vector<fs::path> files = {a, dir / "c.png", b};
    EXPECT_EQ(lx::RunJpegPdfTool(MakeJob(dir / "o.pdf"), files, ProbeByName, sink), lx::JpegPdfResult::kWritten);
    EXPECT_EQ(sink.events, (std::vector<std::wstring>{L"start T | L", L"line2 first.jpg", L"line2 second.jpg", L"end"}));
    EXPECT_EQ(sink.checks, 0);
    // The arithmetic-coded file passed the probe but has no page.
    EXPECT_NE(pdftest::ReadText(dir / "o.pdf").find("/Kids [3 0 R] /Count 1>>"), std::string::npos);
}

TEST(JpegPdfJob, OutputThatCannotBeCreatedWritesNothing) {
    lxtest::ScratchDir dir("jobnoout");
    const fs::path a = dir / "a.jpg";
    pdftest::WriteFrameOnlyJpeg(a, 16, 8, 3, 100);
    RecordingSink sink;
    const auto result = lx::RunJpegPdfTool(MakeJob(dir / "no-such-folder" / "o.pdf"), {a}, ProbeByName, sink);
    EXPECT_EQ(result, lx::JpegPdfResult::kNotCreated);
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(sink.events.back(), L"end");
}

TEST(JpegPdfJob, ReplacesAnExistingOutputFile) {
    lxtest::ScratchDir dir("jobreplace");
    const fs::path a = dir / "a.jpg";
    lxtest::WriteFile(a, pdftest::TinyJpeg());
    lxtest::WriteFile(dir / "o.pdf", std::string(100000, 'x'));
    RecordingSink sink;
    ASSERT_EQ(lx::RunJpegPdfTool(MakeJob(dir / "o.pdf"), {a}, ProbeByName, sink), lx::JpegPdfResult::kWritten);
    const std::string pdf = pdftest::ReadText(dir / "o.pdf");
    EXPECT_EQ(pdf.find('x' + std::string(50, 'x')), std::string::npos);
    EXPECT_EQ(pdf.substr(pdf.size() - 7), "%%EOF\r\n");
    pdftest::ExpectQpdfAccepts(dir / "o.pdf");
}

TEST(JpegPdfJob, FileVanishingBeforeTheCopyLeavesATruncatedDocument) {
    lxtest::ScratchDir dir("jobtrunc");
    const fs::path a = dir / "a.jpg";
    const fs::path b = dir / "b.jpg";
    pdftest::WriteFrameOnlyJpeg(a, 16, 8, 3, 100);
    pdftest::WriteFrameOnlyJpeg(b, 16, 8, 3, 100);
    lx::JpegPdfJob job = MakeJob(dir / "o.pdf");
    // Removes the second file the moment the output is created: after composing, before copying.
    job.createOutput = [&](const fs::path& out) {
        fs::remove(b);
        return lx::CreateFileByteSink(out);
    };
    RecordingSink sink;
    EXPECT_EQ(lx::RunJpegPdfTool(job, {a, b}, ProbeByName, sink), lx::JpegPdfResult::kTruncated);
    // Page 1 complete, then the head of page 2's image object and nothing more.
    const std::string pdf = pdftest::ReadText(dir / "o.pdf");
    EXPECT_NE(pdf.rfind("\r\n7 0 obj\r\n"), std::string::npos);
    EXPECT_EQ(pdf.substr(pdf.size() - 23), "/Length 100>>\r\nstream\r\n");
    EXPECT_EQ(pdf.find("trailer"), std::string::npos);
    EXPECT_TRUE(sink.messages.empty());
}

}  // namespace
