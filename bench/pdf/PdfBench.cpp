// pdf_bench OUTPUT JPEG...: packs the JPEG files into OUTPUT the way the tool does (every file
// read twice: once for its frame header, once to copy it), with no progress display.
#include <cstdio>
#include <vector>

#include "JpegPdfJob.h"

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

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: pdf_bench OUTPUT JPEG...\n");
        return 2;
    }
    lx::JpegPdfJob job;
    job.output = argv[1];
    std::vector<std::filesystem::path> files(argv + 2, argv + argc);
    SilentSink sink;
    const auto result = lx::RunJpegPdfJob(job, files, sink);
    return result == lx::JpegPdfResult::kWritten ? 0 : 1;
}
