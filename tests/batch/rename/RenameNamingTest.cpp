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
    const std::wstring old = L"C:\\photos\\IMG_0001.JPG";
    EXPECT_EQ(NameItemText(kItemNone, t, 5, old), L"");
    EXPECT_EQ(NameItemText(kItemDate8, t, 5, old), L"20240507");
    EXPECT_EQ(NameItemText(kItemDate6, t, 5, old), L"240507");
    EXPECT_EQ(NameItemText(kItemEraDate, t, 5, old), L"H360507");
    EXPECT_EQ(NameItemText(kItemMonthDay, t, 5, old), L"0507");
    EXPECT_EQ(NameItemText(kItemHourMinute, t, 5, old), L"0903");
    EXPECT_EQ(NameItemText(kItemHourMinuteSec, t, 5, old), L"090308");
    EXPECT_EQ(NameItemText(kItemCounter1, t, 5, old), L"5");
    EXPECT_EQ(NameItemText(kItemCounter2, t, 5, old), L"05");
    EXPECT_EQ(NameItemText(kItemCounter3, t, 5, old), L"005");
    EXPECT_EQ(NameItemText(kItemCounter4, t, 5, old), L"0005");
    EXPECT_EQ(NameItemText(kItemCounter2, t, 123, old), L"123");
    EXPECT_EQ(NameItemText(kItemOldName, t, 5, old), L"IMG_0001");
    EXPECT_EQ(NameItemText(12, t, 5, old), L"");
    EXPECT_EQ(NameItemText(-1, t, 5, old), L"");
}

TEST(RenameNaming, TwoDigitYearWrapsAtTheCentury) {
    EXPECT_EQ(NameItemText(kItemDate6, ShotAt(2000, 1, 2), 1, L"a.jpg"), L"000102");
    EXPECT_EQ(NameItemText(kItemDate6, ShotAt(1999, 12, 31), 1, L"a.jpg"), L"991231");
}

TEST(RenameNaming, EraTableKeepsItsTwoQuirks) {
    EXPECT_EQ(NameItemText(kItemEraDate, ShotAt(1990, 3, 4), 1, L"a.jpg"), L"H020304");
    EXPECT_EQ(NameItemText(kItemEraDate, ShotAt(2020, 3, 4), 1, L"a.jpg"), L"H320304");
    EXPECT_EQ(NameItemText(kItemEraDate, ShotAt(1900, 3, 4), 1, L"a.jpg"), L"M320304");
    EXPECT_EQ(NameItemText(kItemEraDate, ShotAt(1868, 3, 4), 1, L"a.jpg"), L"M000304");
    EXPECT_EQ(NameItemText(kItemEraDate, ShotAt(2019, 5, 1), 1, L"a.jpg"), L"H310501");
    // Boundaries are by year only; the day the era changed plays no part.
    EXPECT_EQ(EraOfYear(1911).letter, L'M');
    EXPECT_EQ(EraOfYear(1911).year, 43);
    EXPECT_EQ(EraOfYear(1912).letter, L'T');
    EXPECT_EQ(EraOfYear(1912).year, 1);
    EXPECT_EQ(EraOfYear(1925).letter, L'T');
    EXPECT_EQ(EraOfYear(1926).letter, L'S');
    EXPECT_EQ(EraOfYear(1926).year, 1);
    EXPECT_EQ(EraOfYear(1988).letter, L'S');
    EXPECT_EQ(EraOfYear(1988).year, 63);
    EXPECT_EQ(EraOfYear(1989).letter, L'H');
    EXPECT_EQ(EraOfYear(1989).year, 1);
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
    std::vector<RenameEntry> entries{Photo(L"C:\\p\\IMG_0001.jpg", ShotAt(2024, 5, 7, 10, 20, 30))};
    BuildPreview(entries, {kItemDate8, kItemNone, kItemCounter1, kResetNever});
    EXPECT_EQ(entries[0].newPath, L"C:\\p\\20240507_1.jpg");

    BuildPreview(entries, {kItemNone, kItemHourMinuteSec, kItemNone, kResetNever});
    EXPECT_EQ(entries[0].newPath, L"C:\\p\\102030.jpg");

    BuildPreview(entries, {kItemOldName, kItemDate6, kItemHourMinute, kResetNever});
    EXPECT_EQ(entries[0].newPath, L"C:\\p\\IMG_0001_240507_1020.jpg");
}

TEST(RenameNaming, OldNameAloneRebuildsTheSamePath) {
    std::vector<RenameEntry> entries{Photo(L"C:\\p\\IMG_0001.jpg", ShotAt(2024, 5, 7))};
    BuildPreview(entries, {kItemNone, kItemNone, kItemOldName, kResetNever});
    EXPECT_EQ(entries[0].newPath, entries[0].oldPath);
}

TEST(RenameNaming, NoItemsAndNameWithoutTextGiveNoNewPath) {
    std::vector<RenameEntry> entries{Photo(L"C:\\p\\.jpg", ShotAt(2024, 5, 7))};
    BuildPreview(entries, {kItemNone, kItemNone, kItemNone, kResetNever});
    EXPECT_EQ(entries[0].newPath, L"");
    // The old name of ".jpg" is empty, so there is nothing to name the file after.
    BuildPreview(entries, {kItemOldName, kItemNone, kItemNone, kResetNever});
    EXPECT_EQ(entries[0].newPath, L"");
    entries[0].oldPath = L"C:\\p\\NOEXT";
    BuildPreview(entries, {kItemMonthDay, kItemNone, kItemNone, kResetNever});
    EXPECT_EQ(entries[0].newPath, L"C:\\p\\0507");
}

TEST(RenameNaming, CounterRunsOnWithoutReset) {
    std::vector<RenameEntry> entries{Photo(L"a.jpg", ShotAt(2024, 5, 5)), Photo(L"b.jpg", ShotAt(2024, 5, 6)),
                                     Photo(L"c.jpg", ShotAt(2025, 1, 1))};
    BuildPreview(entries, {kItemCounter3, kItemNone, kItemNone, kResetNever});
    EXPECT_EQ(NewNames(entries), (std::vector<std::wstring>{L"001.jpg", L"002.jpg", L"003.jpg"}));
}

TEST(RenameNaming, ResetRulesCompareOneFieldOnly) {
    // 5 May, 5 May, 5 June, 6 June 2024, then 6 June 2025.
    std::vector<RenameEntry> entries{Photo(L"a.jpg", ShotAt(2024, 5, 5, 8)), Photo(L"b.jpg", ShotAt(2024, 5, 5, 9)),
                                     Photo(L"c.jpg", ShotAt(2024, 6, 5)), Photo(L"d.jpg", ShotAt(2024, 6, 6)),
                                     Photo(L"e.jpg", ShotAt(2025, 6, 6))};
    BuildPreview(entries, {kItemCounter1, kItemNone, kItemNone, kResetOnDay});
    EXPECT_EQ(NewNames(entries), (std::vector<std::wstring>{L"1.jpg", L"2.jpg", L"3.jpg", L"1.jpg", L"2.jpg"}));

    BuildPreview(entries, {kItemCounter1, kItemNone, kItemNone, kResetOnMonth});
    EXPECT_EQ(NewNames(entries), (std::vector<std::wstring>{L"1.jpg", L"2.jpg", L"1.jpg", L"2.jpg", L"3.jpg"}));

    BuildPreview(entries, {kItemCounter1, kItemNone, kItemNone, kResetOnYear});
    EXPECT_EQ(NewNames(entries), (std::vector<std::wstring>{L"1.jpg", L"2.jpg", L"3.jpg", L"4.jpg", L"1.jpg"}));
}

}  // namespace
}  // namespace lx
