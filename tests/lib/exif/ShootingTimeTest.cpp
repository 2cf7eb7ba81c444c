#include "ShootingTime.h"

#include <gtest/gtest.h>

#include "ExifReader.h"
#include "ExifTestSupport.h"

using lx::ParseExifDateTime;
using lx::ShootingTime;
using namespace lxtest;

namespace {

ShootingTime Expect(uint16_t y, uint16_t mo, uint16_t dow, uint16_t d, uint16_t h, uint16_t mi, uint16_t s, uint16_t ms) {
    return ShootingTime{y, mo, dow, d, h, mi, s, ms};
}

}  // namespace

TEST(ShootingTimeText, ParsesFieldsWithDayOfWeekAndSubSeconds) {
    const struct {
        const char *text, *subSeconds;
        ShootingTime expected;
    } cases[] = {
        {"2024:05:01 12:34:56", "789", Expect(2024, 5, 3, 1, 12, 34, 56, 789)},
        {"2000:02:29 00:00:00", "", Expect(2000, 2, 2, 29, 0, 0, 0, 0)},
        {"1601:01:01 23:59:59", "", Expect(1601, 1, 1, 1, 23, 59, 59, 0)},
        {"2023:01:01 00:00:00", "", Expect(2023, 1, 0, 1, 0, 0, 0, 0)},  // a Sunday
        {"2024-05-01T12:34:56", "", Expect(2024, 5, 3, 1, 12, 34, 56, 0)},  // other writers' separators
        // Sub-seconds are a fraction of a second.
        {"2024:05:01 12:34:56", "5", Expect(2024, 5, 3, 1, 12, 34, 56, 500)},
        {"2024:05:01 12:34:56", "12", Expect(2024, 5, 3, 1, 12, 34, 56, 120)},
        {"2024:05:01 12:34:56", "1234", Expect(2024, 5, 3, 1, 12, 34, 56, 123)},
        {"2024:05:01 12:34:56", "007", Expect(2024, 5, 3, 1, 12, 34, 56, 7)},
        {"2024:05:01 12:34:56", " 25 ", Expect(2024, 5, 3, 1, 12, 34, 56, 250)},
        {"2024:05:01 12:34:56", "xx", Expect(2024, 5, 3, 1, 12, 34, 56, 0)},
    };
    for (const auto& c : cases) EXPECT_EQ(ParseExifDateTime(c.text, c.subSeconds), c.expected) << c.text << c.subSeconds;
}

TEST(ShootingTimeText, BlankZeroAndOutOfRangeDatesAreNoDate) {
    for (const char* text : {"0000:00:00 00:00:00", "    :  :     :  :  ", "", "2024:05:01", "2024:13:01 00:00:00",
                             "2024:00:10 00:00:00", "2023:02:29 10:00:00", "2024:04:31 10:00:00",
                             "2024:01:01 24:00:00", "2024:01:01 23:60:00", "2024:01:01 23:59:60",
                             "2024:05-01 12:00:00", "20x4:05:01 12:00:00", "1600:12:31 12:00:00"})
        EXPECT_FALSE(ParseExifDateTime(text, "")) << text;
}

// Expected values as `date -u` gives them.
TEST(ShootingTimeText, SecondsSinceEpochAndDayOfWeekAgreeWithTheCalendar) {
    const struct {
        uint32_t seconds;
        ShootingTime expected;
    } cases[] = {
        {0u, Expect(1970, 1, 4, 1, 0, 0, 0, 0)},
        {951782399u, Expect(2000, 2, 1, 28, 23, 59, 59, 0)},
        {1700000000u, Expect(2023, 11, 2, 14, 22, 13, 20, 0)},
        {4102444800u, Expect(2100, 1, 5, 1, 0, 0, 0, 0)},
        {4294967295u, Expect(2106, 2, 0, 7, 6, 28, 15, 0)},
    };
    for (const auto& c : cases) EXPECT_EQ(lx::ShootingTimeFromSeconds(c.seconds), c.expected) << c.seconds;
    EXPECT_EQ(lx::DayOfWeek(1999, 12, 31), 5);
    EXPECT_EQ(lx::DayOfWeek(2000, 3, 1), 3);
    EXPECT_EQ(lx::DayOfWeek(2100, 2, 28), 0);
    EXPECT_EQ(lx::DayOfWeek(2038, 1, 19), 2);
}

#ifndef _WIN32
// Real files whose tags exiftool wrote.
class ShootingTimeFiles : public ::testing::Test {
protected:
    void SetUp() override { LX_REQUIRE_TOOLS("convert exiftool"); }
    ScratchDir dir{"shoot"};
    std::filesystem::path jpeg(const std::string& name, const std::string& tags) {
        const auto path = dir / name;
        WriteFile(path, MakeJpeg(dir.path(), 32, 24));
        EXPECT_EQ(ExifTool(tags, path), 0) << tags;
        return path;
    }
};

TEST_F(ShootingTimeFiles, TakesTheOriginalElseTheDigitizedTimeEachWithItsOwnSubSeconds) {
    const std::optional<ShootingTime> none;
    const struct {
        const char* tags;
        std::optional<ShootingTime> expected;
        bool hasInfo;
    } cases[] = {
        {"-ExifByteOrder=II -DateTimeOriginal='2023:11:05 14:23:45' -SubSecTimeOriginal=678"
         " -CreateDate='2001:01:01 01:01:01'", Expect(2023, 11, 0, 5, 14, 23, 45, 678), true},
        {"-ExifByteOrder=MM -DateTimeOriginal='2023:11:05 14:23:45' -SubSecTimeOriginal=678",
         Expect(2023, 11, 0, 5, 14, 23, 45, 678), true},
        {"-CreateDate='2019:07:20 08:09:10' -SubSecTimeDigitized=25 -SubSecTimeOriginal=999",
         Expect(2019, 7, 6, 20, 8, 9, 10, 250), true},
        // A zeroed original counts as absent.
        {"'-DateTimeOriginal#=0000:00:00 00:00:00' -CreateDate='2019:07:20 08:09:10'",
         Expect(2019, 7, 6, 20, 8, 9, 10, 0), true},
        {"'-DateTimeOriginal#=0000:00:00 00:00:00'", none, true},
        {"", none, false},
        {"-Software=Editor -ModifyDate='2020:01:01 00:00:00'", none, false},
    };
    for (const auto& c : cases) {
        const auto path = jpeg("case.jpg", c.tags);
        EXPECT_EQ(lx::ReadShootingTime(path), c.expected) << c.tags;
        EXPECT_EQ(lx::HasShootingInfo(path), c.hasInfo) << c.tags;
        std::filesystem::remove(path);
    }
    EXPECT_FALSE(lx::ReadShootingTime(dir / "missing.jpg"));
    EXPECT_FALSE(lx::ReadShootingTime(dir.path()));  // a folder
}

TEST_F(ShootingTimeFiles, ReadsTiffFilesInBothByteOrders) {
    for (const char* endian : {"LSB", "MSB"}) {
        const auto path = dir / (std::string("pic-") + endian + ".tif");
        lxtest::Run(std::string("convert -size 8x8 xc:green -endian ") + endian + " '" + path.string() + "'");
        ASSERT_EQ(ExifTool("-DateTimeOriginal='2022:02:22 22:22:22' -SubSecTimeOriginal=2", path), 0);
        EXPECT_EQ(lx::ReadShootingTime(path), Expect(2022, 2, 2, 22, 22, 22, 22, 200)) << endian;
    }
}
#endif
