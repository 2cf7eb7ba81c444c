// RenameNaming: how a new file name is composed from the chosen items, and the preview pass
// that names every entry of the list.
//
// Paths are wide strings, taken apart by PathNames.h.
#pragma once

#include <string>
#include <vector>

#include "PathNames.h"
#include "RenameChoices.h"
#include "RenameEntry.h"

namespace lx {

// The Japanese era of a year, decided on the year alone: letter and year within the era.
// Years before 1912 are counted from 1868 (so 1868 itself is year 0), and the last era
// known here goes on past 2019 (H31, H32, ...); the file names of existing collections
// were made that way and must keep sorting the same.
struct Era {
    wchar_t letter;
    int year;
};
Era EraOfYear(int year);

// The text one name item produces for a photograph; empty for kItemNone or an unknown item.
std::wstring NameItemText(int item, const ShootingTime& time, int counter, const std::wstring& oldPath);

// The three items joined with "_" (empty ones left out), or empty when all are empty.
std::wstring ComposeName(const RenameChoices& choices, const ShootingTime& time, int counter, const std::wstring& oldPath);

// Sets newPath of every entry, walking them in list order with the running number: it
// starts at 1, goes up by one per entry, and returns to 1 before an entry whose day, month
// or year (by the rule: that one field only) differs from the entry before it.
void BuildPreview(const std::vector<RenameEntry*>& entries, const RenameChoices& choices);
void BuildPreview(std::vector<RenameEntry>& entries, const RenameChoices& choices);

}  // namespace lx
