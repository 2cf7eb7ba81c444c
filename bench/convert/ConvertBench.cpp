// convert_bench FORMAT LONGSIDE QUALITY OUTDIR FILE...: converts the files as the tool's run
// does (long-side scaling, JPEG at the given quality) and prints how many were written.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "ConvertOptions.h"
#include "ConvertRun.h"
#include "ToolSink.h"

namespace {

class QuietSink : public lx::ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring&) override {}
    void SetLine(int, const std::wstring&, bool) override {}
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override {}
    int Message(unsigned, const std::wstring&, unsigned) override { return lx::kIdOk; }
};

std::wstring Wide(const char* text) { return std::wstring(text, text + std::char_traits<char>::length(text)); }

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6) {
        std::fprintf(stderr, "usage: convert_bench FORMAT LONGSIDE QUALITY OUTDIR FILE...\n");
        return 2;
    }
    lx::ConvertOptions options = lx::DefaultConvertOptions();
    options.saveType = std::atoi(argv[1]);
    options.resize = 1;
    options.resizeMode = lx::kResizeLongSide;
    options.size = std::atoi(argv[2]);
    options.jpegQuality = std::atoi(argv[3]);
    lx::SetOutputFolder(options, Wide(argv[4]));
    std::vector<std::wstring> files;
    for (int i = 5; i < argc; ++i) files.push_back(Wide(argv[i]));
    QuietSink sink;
    const lx::ConvertRunResult result = lx::RunConversion(options, files, {}, sink);
    std::printf("%d written, %d skipped\n", result.written, result.skipped);
    return result.skipped == 0 ? 0 : 1;
}
