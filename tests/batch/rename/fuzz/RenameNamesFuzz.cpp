// Feeds arbitrary file names, shooting times and setting numbers through the naming rules:
// names come from outside (whatever the selected files are called), so composing, ordering
// and numbering them must stay in bounds and keep the new file in the old one's folder.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "LogicalOrder.h"
#include "RenameChoices.h"
#include "RenameFiles.h"
#include "RenameNaming.h"
#include "RenameOrder.h"

namespace {

// Layout: 4 bytes setting number, 16 bytes shooting time, 1 byte taken-name count, then
// two names as 16-bit characters separated by a 0 character.
void Check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 21) return 0;
    uint32_t packed;
    std::memcpy(&packed, data, 4);
    lx::ShootingTime time;
    std::memcpy(&time, data + 4, sizeof time);
    const int taken = data[20];
    std::wstring names[2];
    int which = 0;
    for (size_t i = 21; i + 1 < size && which < 2; i += 2) {
        const wchar_t c = static_cast<wchar_t>(data[i] | (data[i + 1] << 8));
        if (c == 0) {
            ++which;
            continue;
        }
        names[which] += c;
    }

    lx::RenameChoices choices = lx::UnpackRenameChoices(packed);
    choices.item3 = data[20] % lx::kNameItemCount;  // reach the old-name item too
    std::vector<lx::RenameEntry> entries(2);
    for (int i = 0; i < 2; ++i) {
        entries[i].oldPath = names[i];
        entries[i].shotTime = time;
    }
    lx::SortRenameEntries(entries, lx::CompareLogical);
    lx::BuildPreview(entries, choices);
    for (const lx::RenameEntry& entry : entries) {
        if (entry.newPath.empty()) continue;
        Check(lx::FolderOf(entry.newPath) == lx::FolderOf(entry.oldPath));
        Check(lx::ExtensionOf(entry.newPath) == lx::ExtensionOf(entry.oldPath));
        int asked = 0;
        const std::wstring target =
            lx::FreeTargetPath(entry.newPath, [&](const std::wstring&) { return asked++ < taken; });
        Check(!target.empty() && lx::FolderOf(target) == lx::FolderOf(entry.newPath));
        Check(lx::ExtensionOf(target) == lx::ExtensionOf(entry.newPath));
    }
    const int forward = lx::CompareLogical(names[0], names[1]);
    const int backward = lx::CompareLogical(names[1], names[0]);
    Check((forward > 0) == (backward < 0) && (forward == 0) == (backward == 0));
    return 0;
}
