#include "RenameFiles.h"

#include "RenameNaming.h"

namespace lx {

std::wstring FreeTargetPath(const std::wstring& target, const std::function<bool(const std::wstring&)>& exists) {
    if (!exists(target)) return target;
    const std::wstring stem = WithoutExtension(target);
    const std::wstring extension = ExtensionOf(target);
    for (int number = 1; number < kMaxConflictNumber; ++number) {
        std::wstring candidate = stem + L'(' + std::to_wstring(number) + L')' + extension;
        if (!exists(candidate)) return candidate;
    }
    return std::wstring();
}

RenameOutcome RenameEntryFile(const RenameEntry& entry, const RenameFileSystem& fileSystem) {
    RenameOutcome outcome;
    if (entry.oldPath.empty() || entry.newPath.empty() || entry.newPath == entry.oldPath) return outcome;
    const std::wstring target = FreeTargetPath(entry.newPath, fileSystem.exists);
    if (target.empty()) return outcome;
    if (!fileSystem.move(entry.oldPath, target)) return outcome;
    outcome.renamed = true;
    outcome.finalPath = target;
    return outcome;
}

}  // namespace lx
