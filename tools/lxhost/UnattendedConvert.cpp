// `lxhost convert --unattended --format TYPE ... --output DIR FILE...`: the batch conversion
// without its dialog, reading and writing no setting. Prints each file written; exits 0 when
// every file was converted, 1 when some were skipped, 2 for a bad command line or folder.
#include <filesystem>
#include <system_error>

#include "ConvertArguments.h"
#include "ConvertImageTool.h"
#include "ConvertRun.h"
#include "HostConsole.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunConvert(const Args& args) {
    std::wstring error;
    const auto request = lx::ParseConvertArguments(args, error);
    if (!request) {
        Print(stderr, L"lxhost convert: " + error);
        return 2;
    }
    const std::filesystem::path folder(lx::OutputFolder(request->options));
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (!std::filesystem::is_directory(folder, failure)) {
        Print(stderr, L"lxhost convert: the output folder cannot be used: " + folder.wstring());
        return 2;
    }
    ConsoleSink sink;
    const lx::ConvertRunResult result =
        lx::RunConversion(request->options, request->files, lx::LoadConvertTexts(), sink);
    return result.skipped == 0 ? 0 : 1;
}

const UnattendedTool registration(L"convert", &RunConvert);

}  // namespace
}  // namespace lxhost
