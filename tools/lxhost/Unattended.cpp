#include "Unattended.h"

#include "HostConsole.h"

namespace lxhost {

int RunUnattended(const std::wstring& tool, const Args& args) {
    Print(stderr, L"lxhost: " + tool + L" has no unattended form yet");
    return 2;
}

int RunExifReport(const Args& files) {
    Print(stderr, L"lxhost: the Exif report is not available yet");
    return 2;
}

}  // namespace lxhost
