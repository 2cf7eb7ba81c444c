// The pickout run over the files in photos/ (see make-photos.sh): the extracted bytes against
// exiftool's extraction of the same files, the names, and nothing ever replaced.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "PickoutRun.h"
#include "TestFiles.h"

namespace lx {
namespace {

namespace fs = std::filesystem;
using lxtest::ScratchDir;

class ReportSink : public ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring&) override {}
    void SetLine(int, const std::wstring&, bool) override {}
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override {}
    int Message(unsigned, const std::wstring&, unsigned) override { return kIdOk; }
    void Report(const std::wstring& line) override { written.push_back(fs::path(line).filename().string()); }
    std::vector<std::string> written;
};

// Never over an existing name, as CREATE_NEW does.
bool WriteIfFree(const std::wstring& path, std::span<const uint8_t> bytes) {
    if (fs::exists(path)) return false;
    std::ofstream out{fs::path(path), std::ios::binary};
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}

fs::path Photo(const char* name) { return lxtest::SourceDir() / "tests/batch/pickout/photos" / name; }

TEST(PickoutNaming, ExtensionComesFromTheFirstTwoBytes) {
    const struct {
        std::vector<uint8_t> bytes;
        const wchar_t* extension;
    } cases[] = {{{'B', 'M', 0, 0}, L".bmp"}, {{0xFF, 0xD8, 0xFF}, L".jpg"}, {{'I', 'I', 42, 0}, L".thumb"},
                 {{0xFF}, L".thumb"},         {{}, L".thumb"}};
    for (const auto& c : cases) EXPECT_EQ(ThumbnailExtension(c.bytes), c.extension);
    const std::vector<uint8_t> jpeg = {0xFF, 0xD8};
    EXPECT_EQ(fs::path(ThumbnailPath({L"out", false}, L"raw/IMG_0001.CR2", jpeg)).filename(), "IMG_0001.thm(S).jpg");
    EXPECT_EQ(fs::path(ThumbnailPath({L"out", true}, L"a.b.nef", jpeg)).filename(), "a.b.thm(L).jpg");
}

TEST(PickoutRun, BytesAreThoseExiftoolExtractsAndNothingIsWrittenTwice) {
    LX_REQUIRE_TOOLS("exiftool");
    ScratchDir dir("pickout");
    const std::vector<std::wstring> files = {Photo("IMG_0001.CR2").wstring(), Photo("photo.jpg").wstring(),
                                             Photo("IMG_0002.CR2").wstring(), Photo("DSC_0001.NEF").wstring()};
    const auto exiftool = [&](const char* tag, const char* file) {
        const fs::path out = dir / (std::string(tag) + "-" + file);
        lxtest::Run(std::string("exiftool -b -") + tag + " '" + Photo(file).string() + "' > '" + out.string() + "'");
        return lxtest::ReadFile(out);
    };
    const struct {
        bool largest;
        std::vector<std::string> written;
    } runs[] = {{true, {"IMG_0001.thm(L).jpg", "photo.thm(L).jpg", "DSC_0001.thm(L).bmp"}},
                {false, {"IMG_0001.thm(S).jpg", "photo.thm(S).jpg", "DSC_0001.thm(S).bmp"}}};
    ReportSink failing;
    EXPECT_EQ(RunPickout({(dir / "out").wstring(), true}, files, WriteIfFree, failing), 0) << "a failed write counts not";
    fs::create_directory(dir / "out");
    for (const auto& run : runs) {
        ReportSink sink;
        EXPECT_EQ(RunPickout({(dir / "out").wstring(), run.largest}, files, WriteIfFree, sink), 3);
        EXPECT_EQ(sink.written, run.written);
        ReportSink again;
        EXPECT_EQ(RunPickout({(dir / "out").wstring(), run.largest}, files, WriteIfFree, again), 0);
    }
    const auto out = [&](const char* name) { return lxtest::ReadFile(dir / "out" / name); };
    EXPECT_EQ(out("IMG_0001.thm(L).jpg"), exiftool("PreviewImage", "IMG_0001.CR2"));
    EXPECT_EQ(out("IMG_0001.thm(S).jpg"), exiftool("ThumbnailImage", "IMG_0001.CR2"));
    EXPECT_EQ(out("photo.thm(L).jpg"), exiftool("ThumbnailImage", "photo.jpg"));
    EXPECT_EQ(out("photo.thm(S).jpg"), exiftool("ThumbnailImage", "photo.jpg"));
    const auto bmp = out("DSC_0001.thm(L).bmp");
    ASSERT_EQ(bmp.size(), 54u + 3 * 12);  // file and info headers, three rows of four pixels
    EXPECT_EQ(bmp[18], 4);  // width
    EXPECT_EQ(bmp[22], 3);  // height
}

}  // namespace
}  // namespace lx
