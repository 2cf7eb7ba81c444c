// RenameRun: renaming photographs after their shooting time from start to end, without a
// dialog: collect the files that carry a shooting time, order and name them, ask once,
// then rename them one by one under a progress display.
//
// The rename dialog uses the same pieces around its own list; an unattended run (lxhost,
// tests) calls RunRenameToExifDate with the choices it was given. What the system provides
// (reading Exif, the file system, the shell's name order) comes in RenameServices.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "RenameChoices.h"
#include "RenameEntry.h"
#include "RenameFiles.h"
#include "RenameOrder.h"
#include "ToolSink.h"

namespace lx {

// String-table ids of the tool's messages.
constexpr unsigned kMsgNoShotTime = 4108;     // no selected file carries a shooting time
constexpr unsigned kMsgRenameTitle = 4109;    // caption and progress title
constexpr unsigned kMsgRenameLine = 4110;     // progress line
constexpr unsigned kMsgConfirmRename = 4111;  // the question before renaming

using ShotTimeReader = std::function<std::optional<ShootingTime>(const std::wstring& path)>;

struct RenameServices {
    ShotTimeReader readShotTime;
    RenameFileSystem fileSystem;
    NameComparison compareNames;
};

// The progress display's title and first line, as loaded by the caller.
struct RenameProgressTexts {
    std::wstring title;
    std::wstring line;
};

// Entries, without new names yet, for the files in `files` that exist and carry a shooting
// time, in list order (see SortRenameEntries).
std::vector<RenameEntry> CollectRenameEntries(const std::vector<std::wstring>& files,
                                              const RenameServices& services);

// Asks the question (4111); on Yes renames `entries` in their order under the progress
// display, stopping between files when the sink is cancelled, and reports each file.
// Returns false when the user said No.
bool RenameListedEntries(const std::vector<const RenameEntry*>& entries, ToolSink& sink,
                         const RenameFileSystem& fileSystem, const RenameProgressTexts& texts);

struct RenameRunResult {
    int listed = 0;   // files that carry a shooting time
    int renamed = 0;  // files actually moved
    bool confirmed = false;
};

// The whole run for a list of files. No listed file gives message 4108; choices without
// any item rename nothing and ask nothing.
RenameRunResult RunRenameToExifDate(const RenameChoices& choices, const std::vector<std::wstring>& files,
                                    ToolSink& sink, const RenameServices& services,
                                    const RenameProgressTexts& texts);

}  // namespace lx
