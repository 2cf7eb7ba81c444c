#include "RenameNaming.h"

#include <cwchar>

namespace lx {

namespace {

template <typename... Args>
std::wstring Format(const wchar_t* format, Args... args) {
    wchar_t buffer[64];
    const int n = std::swprintf(buffer, sizeof buffer / sizeof buffer[0], format, args...);
    return n > 0 ? std::wstring(buffer, static_cast<size_t>(n)) : std::wstring();
}

bool ResetsBetween(int rule, const ShootingTime& previous, const ShootingTime& current) {
    switch (rule) {
        case kResetOnDay: return previous.day != current.day;
        case kResetOnMonth: return previous.month != current.month;
        case kResetOnYear: return previous.year != current.year;
        default: return false;
    }
}

}  // namespace

Era EraOfYear(int year) {
    if (year < 1912) return {L'M', year - 1868};
    if (year < 1926) return {L'T', year - 1911};
    if (year < 1989) return {L'S', year - 1925};
    return {L'H', year - 1988};
}

std::wstring NameItemText(int item, const ShootingTime& t, int counter, const std::wstring& oldPath) {
    const int year = t.year, month = t.month, day = t.day;
    switch (item) {
        case kItemDate8: return Format(L"%04d%02d%02d", year, month, day);
        case kItemDate6: return Format(L"%02d%02d%02d", year % 100, month, day);
        case kItemEraDate: {
            const Era era = EraOfYear(year);
            return std::wstring(1, era.letter) + Format(L"%02d%02d%02d", era.year, month, day);
        }
        case kItemMonthDay: return Format(L"%02d%02d", month, day);
        case kItemHourMinute: return Format(L"%02d%02d", int{t.hour}, int{t.minute});
        case kItemHourMinuteSec: return Format(L"%02d%02d%02d", int{t.hour}, int{t.minute}, int{t.second});
        case kItemCounter1: return Format(L"%d", counter);
        case kItemCounter2: return Format(L"%02d", counter);
        case kItemCounter3: return Format(L"%03d", counter);
        case kItemCounter4: return Format(L"%04d", counter);
        case kItemOldName: return FileNameOf(WithoutExtension(oldPath));
        default: return std::wstring();
    }
}

std::wstring ComposeName(const RenameChoices& choices, const ShootingTime& time, int counter,
                         const std::wstring& oldPath) {
    std::wstring name;
    for (int item : {choices.item1, choices.item2, choices.item3}) {
        const std::wstring part = NameItemText(item, time, counter, oldPath);
        if (part.empty()) continue;
        if (!name.empty()) name += L'_';
        name += part;
    }
    return name;
}

void BuildPreview(const std::vector<RenameEntry*>& entries, const RenameChoices& choices) {
    int counter = 1;
    ShootingTime previous;  // all zero: the first entry always counts as a change
    for (RenameEntry* listed : entries) {
        RenameEntry& entry = *listed;
        if (ResetsBetween(choices.resetRule, previous, entry.shotTime)) counter = 1;
        const std::wstring name = ComposeName(choices, entry.shotTime, counter, entry.oldPath);
        entry.newPath = name.empty() ? std::wstring() : FolderOf(entry.oldPath) + name + ExtensionOf(entry.oldPath);
        previous = entry.shotTime;
        ++counter;
    }
}

}  // namespace lx

namespace lx {

void BuildPreview(std::vector<RenameEntry>& entries, const RenameChoices& choices) {
    std::vector<RenameEntry*> order;
    for (RenameEntry& entry : entries) order.push_back(&entry);
    BuildPreview(order, choices);
}

}  // namespace lx
