#include "RenameNaming.h"

#include <gtest/gtest.h>

#include "FakeRenameWorld.h"

namespace lx {
namespace {

using lxtest::ShotAt;

RenameEntry Photo(const std::wstring& path, const ShootingTime& time) {
    RenameEntry entry;
    entry.oldPath = path;
    entry.shotTime = time;
    return entry;
}

std::vector<std::wstring> NewNames(const std::vector<RenameEntry>& entries) {
    std::vector<std::wstring> names;
    for (const RenameEntry& entry : entries) names.push_back(FileNameOf(entry.newPath));
    return names;
}

TEST(RenameNaming, EachItemProducesItsText) {
    const ShootingTime t = ShotAt(2024, 5, 7, 9, 3, 8);
    const struct {
        int item;
        ShootingTime time;
        int counter;
        const wchar_t* expected;
    } cases[] = {
        {kItemNone, t, 5, L""}, {kItemDate8, t, 5, L"20240507"}, {kItemDate6, t, 5, L"240507"},
        {kItemEraDate, t, 5, L"H360507"}, {kItemMonthDay, t, 5, L"0507"}, {kItemHourMinute, t, 5, L"0903"},
        {kItemHourMinuteSec, t, 5, L"090308"}, {kItemCounter1, t, 5, L"5"}, {kItemCounter2, t, 5, L"05"},
        {kItemCounter3, t, 5, L"005"}, {kItemCounter4, t, 5, L"0005"}, {kItemCounter2, t, 123, L"123"},
        {kItemOldName, t, 5, L"IMG_0001"}, {12, t, 5, L""}, {-1, t, 5, L""},
        // The two-digit year wraps at the century.
        {kItemDate6, ShotAt(2000, 1, 2), 1, L"000102"}, {kItemDate6, ShotAt(1999, 12, 31), 1, L"991231"},
        // The era table keeps its two quirks: no era after Heisei, and boundaries by year only.
        {kItemEraDate, ShotAt(1990, 3, 4), 1, L"H020304"}, {kItemEraDate, ShotAt(2020, 3, 4), 1, L"H320304"},
        {kItemEraDate, ShotAt(1900, 3, 4), 1, L"M320304"}, {kItemEraDate, ShotAt(1868, 3, 4), 1, L"M000304"},
        {kItemEraDate, ShotAt(2019, 5, 1), 1, L"H310501"}, {kItemEraDate, ShotAt(1911, 3, 4), 1, L"M430304"},
        {kItemEraDate, ShotAt(1912, 3, 4), 1, L"T010304"}, {kItemEraDate, ShotAt(1925, 3, 4), 1, L"T140304"},
        {kItemEraDate, ShotAt(1926, 3, 4), 1, L"S010304"}, {kItemEraDate, ShotAt(1988, 3, 4), 1, L"S630304"},
        {kItemEraDate, ShotAt(1989, 3, 4), 1, L"H010304"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(NameItemText(c.item, c.time, c.counter, L"C:\\photos\\IMG_0001.JPG"), c.expected) << c.item;
}

TEST(RenameNaming, PathPartsLookOnlyAtTheFileName) {
    EXPECT_EQ(ExtensionOf(L"C:\\a.b\\IMG.tar.jpg"), L".jpg");
    EXPECT_EQ(ExtensionOf(L"C:\\a.b\\IMG"), L"");
    EXPECT_EQ(ExtensionOf(L"/x.y/IMG"), L"");
    EXPECT_EQ(WithoutExtension(L"C:\\a.b\\IMG"), L"C:\\a.b\\IMG");
    EXPECT_EQ(WithoutExtension(L"C:\\a.b\\IMG.tar.jpg"), L"C:\\a.b\\IMG.tar");
    EXPECT_EQ(FolderOf(L"C:\\a\\IMG.jpg"), L"C:\\a\\");
    EXPECT_EQ(FolderOf(L"IMG.jpg"), L"");
    EXPECT_EQ(FileNameOf(L"C:\\a\\IMG.jpg"), L"IMG.jpg");
}

TEST(RenameNaming, ItemsJoinWithUnderscoreKeepingFolderAndExtension) {
    const struct {
        RenameChoices choices;
        const wchar_t *oldPath, *expected;
    } cases[] = {
        {{kItemDate8, kItemNone, kItemCounter1, kResetNever}, L"C:\\p\\IMG_0001.jpg", L"C:\\p\\20240507_1.jpg"},
        {{kItemNone, kItemHourMinuteSec, kItemNone, kResetNever}, L"C:\\p\\IMG_0001.jpg", L"C:\\p\\102030.jpg"},
        {{kItemOldName, kItemDate6, kItemHourMinute, kResetNever}, L"C:\\p\\IMG_0001.jpg",
         L"C:\\p\\IMG_0001_240507_1020.jpg"},
        {{kItemNone, kItemNone, kItemOldName, kResetNever}, L"C:\\p\\IMG_0001.jpg", L"C:\\p\\IMG_0001.jpg"},
        {{kItemMonthDay, kItemNone, kItemNone, kResetNever}, L"C:\\p\\NOEXT", L"C:\\p\\0507"},
        // No items, or a name without text (the old name of ".jpg" is empty): no new path.
        {{kItemNone, kItemNone, kItemNone, kResetNever}, L"C:\\p\\.jpg", L""},
        {{kItemOldName, kItemNone, kItemNone, kResetNever}, L"C:\\p\\.jpg", L""},
    };
    for (const auto& c : cases) {
        std::vector<RenameEntry> entries{Photo(c.oldPath, ShotAt(2024, 5, 7, 10, 20, 30))};
        BuildPreview(entries, c.choices);
        EXPECT_EQ(entries[0].newPath, c.expected) << c.oldPath;
    }
}

TEST(RenameNaming, ResetRulesCompareOneFieldOnly) {
    // 5 May, 5 May, 5 June, 6 June 2024, then 6 June 2025.
    std::vector<RenameEntry> entries{Photo(L"a.jpg", ShotAt(2024, 5, 5, 8)), Photo(L"b.jpg", ShotAt(2024, 5, 5, 9)),
                                     Photo(L"c.jpg", ShotAt(2024, 6, 5)), Photo(L"d.jpg", ShotAt(2024, 6, 6)),
                                     Photo(L"e.jpg", ShotAt(2025, 6, 6))};
    const std::pair<int, std::vector<std::wstring>> rules[] = {
        {kResetNever, {L"001.jpg", L"002.jpg", L"003.jpg", L"004.jpg", L"005.jpg"}},
        {kResetOnDay, {L"001.jpg", L"002.jpg", L"003.jpg", L"001.jpg", L"002.jpg"}},
        {kResetOnMonth, {L"001.jpg", L"002.jpg", L"001.jpg", L"002.jpg", L"003.jpg"}},
        {kResetOnYear, {L"001.jpg", L"002.jpg", L"003.jpg", L"004.jpg", L"001.jpg"}},
    };
    for (const auto& [rule, names] : rules) {
        BuildPreview(entries, {kItemCounter3, kItemNone, kItemNone, rule});
        EXPECT_EQ(NewNames(entries), names) << rule;
    }
}

}  // namespace
}  // namespace lx
