// pdf_bench OUTPUT JPEG...: packs the JPEG files into OUTPUT the way the tool does (every file
// read twice: once for its frame header, once to copy it), with no progress display. The
// Windows build goes through the worker's run: the content probe and the output file created
// with CreateFileW.
#include <cstdio>
#include <vector>

#include "JpegPdfJob.h"
#ifdef _WIN32
#include "Jpeg2PdfTool.h"
#endif

namespace {

class SilentSink : public lx::ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring&) override {}
    void SetLine(int, const std::wstring&, bool) override {}
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override {}
    int Message(unsigned textId, const std::wstring&, unsigned) override {
        std::fprintf(stderr, "pdf_bench: message %u\n", textId);
        return lx::kIdOk;
    }
};

}  // namespace

#ifdef _WIN32
int wmain(int argc, wchar_t** argv) {
#else
int main(int argc, char** argv) {
#endif
    if (argc < 3) {
        std::fprintf(stderr, "usage: pdf_bench OUTPUT JPEG...\n");
        return 2;
    }
    SilentSink sink;
#ifdef _WIN32
    const std::vector<std::wstring> files(argv + 2, argv + argc);
    const auto result = lx::RunJpeg2PdfFiles(argv[1], files, sink);
#else
    lx::JpegPdfJob job;
    job.output = argv[1];
    const std::vector<std::filesystem::path> files(argv + 2, argv + argc);
    const auto result = lx::RunJpegPdfJob(job, files, sink);
#endif
    return result == lx::JpegPdfResult::kWritten ? 0 : 1;
}
