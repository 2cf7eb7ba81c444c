#include "RenameSystem.h"

#include <windows.h>
#include <shlwapi.h>

#include "ExifReader.h"
#include "ModuleResources.h"

namespace lx {

RenameServices WindowsRenameServices() {
    RenameServices services;
    services.readShotTime = [](const std::wstring& path) { return ReadShootingTime(std::filesystem::path(path)); };
    services.fileSystem.exists = [](const std::wstring& path) {
        return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    };
    // No flags: a rename never replaces another file and never copies across volumes.
    services.fileSystem.move = [](const std::wstring& from, const std::wstring& to) {
        return MoveFileExW(from.c_str(), to.c_str(), 0) != FALSE;
    };
    services.compareNames = [](const std::wstring& a, const std::wstring& b) {
        return StrCmpLogicalW(a.c_str(), b.c_str());
    };
    return services;
}

RenameProgressTexts LoadRenameProgressTexts() {
    return {LoadResString(kMsgRenameTitle), LoadResString(kMsgRenameLine)};
}

RenameRunResult RunRenameToExifDate(const RenameChoices& choices, const std::vector<std::wstring>& files,
                                    ToolSink& sink) {
    return RunRenameToExifDate(choices, files, sink, WindowsRenameServices(), LoadRenameProgressTexts());
}

}  // namespace lx
