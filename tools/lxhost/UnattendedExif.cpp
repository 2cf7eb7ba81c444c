// `lxhost exif FILE...`: what the Exif reader finds in each file, as the tools see it.
#include <cstdio>
#include <filesystem>

#include "DescribeExifFile.h"
#include "HostConsole.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunExifReport(const Args& files) {
    if (files.empty()) {
        Print(stderr, L"usage: lxhost exif FILE...");
        return 2;
    }
    for (const auto& file : files) {
        const std::string report = lx::DescribeExifFile(std::filesystem::path(file));
        fwrite(report.data(), 1, report.size(), stdout);
    }
    fflush(stdout);
    return 0;
}

const UnattendedTool registration(L"exif", &RunExifReport);

}  // namespace
}  // namespace lxhost
