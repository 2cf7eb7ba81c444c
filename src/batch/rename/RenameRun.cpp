#include "RenameRun.h"

#include "RenameNaming.h"

namespace lx {

std::vector<RenameEntry> CollectRenameEntries(const std::vector<std::wstring>& files,
                                              const RenameServices& services) {
    std::vector<RenameEntry> entries;
    for (const std::wstring& file : files) {
        if (!services.fileSystem.exists(file)) continue;
        const std::optional<ShootingTime> time = services.readShotTime(file);
        if (!time) continue;
        RenameEntry entry;
        entry.oldPath = file;
        entry.shotTime = *time;
        entries.push_back(std::move(entry));
    }
    SortRenameEntries(entries, services.compareNames);
    return entries;
}

bool RenameListedEntries(const std::vector<const RenameEntry*>& entries, ToolSink& sink,
                         const RenameFileSystem& fileSystem, const RenameProgressTexts& texts) {
    if (sink.Message(kMsgConfirmRename, std::wstring(), kMbYesNo | kMbIconQuestion) != kIdYes) return false;
    sink.StartProgress(texts.title, texts.line);
    for (const RenameEntry* entry : entries) {
        if (sink.Cancelled()) break;
        const RenameOutcome outcome = RenameEntryFile(*entry, fileSystem);
        if (outcome.renamed) sink.Report(entry->oldPath + L" -> " + outcome.finalPath);
    }
    sink.EndProgress();
    return true;
}

RenameRunResult RunRenameToExifDate(const RenameChoices& choices, const std::vector<std::wstring>& files,
                                    ToolSink& sink, const RenameServices& services,
                                    const RenameProgressTexts& texts) {
    RenameRunResult result;
    std::vector<RenameEntry> entries = CollectRenameEntries(files, services);
    result.listed = static_cast<int>(entries.size());
    if (entries.empty()) {
        sink.Message(kMsgNoShotTime, std::wstring(), kMbOk | kMbIconInformation);
        return result;
    }
    if (!choices.HasAnyItem()) return result;
    BuildPreview(entries, choices);

    // Count the moves through the file system the run is given.
    RenameFileSystem counting = services.fileSystem;
    counting.move = [&](const std::wstring& from, const std::wstring& to) {
        const bool moved = services.fileSystem.move(from, to);
        if (moved) ++result.renamed;
        return moved;
    };
    std::vector<const RenameEntry*> order;
    for (const RenameEntry& entry : entries) order.push_back(&entry);
    result.confirmed = RenameListedEntries(order, sink, counting, texts);
    return result;
}

}  // namespace lx
