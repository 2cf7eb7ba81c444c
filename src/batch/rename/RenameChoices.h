// RenameChoices: what the user picked in the rename dialog, and its packed form as stored
// in the settings number "Rename" (section "Exif").
//
// The number holds item1 in bits 0-7, item2 in bits 8-15, item3 in bits 16-23 and the
// counter reset rule in bits 24-31. Unpacking clamps each byte, read as a signed value:
// an item above 10 comes back as 10 (so "document name", item 11, is restored as the
// four-digit counter; users of earlier versions rely on that), a rule above 3 as 3, and
// anything negative as 0.
#pragma once

#include <cstdint>

namespace lx {

// Name items, in the order of their combo-box entries.
enum NameItem : int {
    kItemNone = 0,
    kItemDate8 = 1,          // yyyymmdd
    kItemDate6 = 2,          // yymmdd
    kItemEraDate = 3,        // era letter, era year, mmdd
    kItemMonthDay = 4,       // mmdd
    kItemHourMinute = 5,     // HHMM
    kItemHourMinuteSec = 6,  // HHMMSS
    kItemCounter1 = 7,       // %d
    kItemCounter2 = 8,       // %02d
    kItemCounter3 = 9,       // %03d
    kItemCounter4 = 10,      // %04d
    kItemOldName = 11,       // old file name without its extension
};
constexpr int kNameItemCount = 12;

// When the running number starts again at 1.
enum ResetRule : int {
    kResetNever = 0,
    kResetOnDay = 1,
    kResetOnMonth = 2,
    kResetOnYear = 3,
};
constexpr int kResetRuleCount = 4;

struct RenameChoices {
    int item1 = kItemNone;
    int item2 = kItemNone;
    int item3 = kItemNone;
    int resetRule = kResetNever;

    bool operator==(const RenameChoices&) const = default;
    bool HasAnyItem() const { return item1 != kItemNone || item2 != kItemNone || item3 != kItemNone; }
};

uint32_t PackRenameChoices(const RenameChoices& choices);
RenameChoices UnpackRenameChoices(uint32_t packed);

}  // namespace lx
