#include "ShootingTime.h"

#include <gtest/gtest.h>

#include <cstdio>

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
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", "789"), Expect(2024, 5, 3, 1, 12, 34, 56, 789));
    EXPECT_EQ(ParseExifDateTime("2000:02:29 00:00:00", ""), Expect(2000, 2, 2, 29, 0, 0, 0, 0));
    EXPECT_EQ(ParseExifDateTime("1601:01:01 23:59:59", ""), Expect(1601, 1, 1, 1, 23, 59, 59, 0));
    EXPECT_EQ(ParseExifDateTime("2023:01:01 00:00:00", "")->dayOfWeek, 0);  // a Sunday
    // Other writers' separators.
    EXPECT_EQ(ParseExifDateTime("2024-05-01T12:34:56", ""), Expect(2024, 5, 3, 1, 12, 34, 56, 0));
}

TEST(ShootingTimeText, SubSecondsAreAFractionOfASecond) {
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", "5")->milliseconds, 500);
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", "12")->milliseconds, 120);
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", "1234")->milliseconds, 123);
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", "007")->milliseconds, 7);
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", " 25 ")->milliseconds, 250);
    EXPECT_EQ(ParseExifDateTime("2024:05:01 12:34:56", "xx")->milliseconds, 0);
}

TEST(ShootingTimeText, BlankZeroAndOutOfRangeDatesAreNoDate) {
    for (const char* text : {"0000:00:00 00:00:00", "    :  :     :  :  ", "", "2024:05:01", "2024:13:01 00:00:00",
                             "2024:00:10 00:00:00", "2023:02:29 10:00:00", "2024:04:31 10:00:00",
                             "2024:01:01 24:00:00", "2024:01:01 23:60:00", "2024:01:01 23:59:60",
                             "2024:05-01 12:00:00", "20x4:05:01 12:00:00", "1600:12:31 12:00:00"})
        EXPECT_FALSE(ParseExifDateTime(text, "")) << text;
}

TEST(ShootingTimeText, DayOfWeekAgreesWithTheSystemCalendar) {
    LX_NEEDS_TOOLS();
    ScratchDir dir("dow");
    for (const char* date : {"1970-01-01", "1999-12-31", "2000-03-01", "2100-02-28", "2038-01-19"}) {
        int y, m, d;
        std::sscanf(date, "%d-%d-%d", &y, &m, &d);
        const std::string expected = Capture(std::string("date -u -d ") + date + " +%w", dir.path());
        EXPECT_EQ(std::to_string(lx::DayOfWeek(y, m, d)), expected) << date;
    }
}

TEST(ShootingTimeText, SecondsSinceEpochAgreeWithTheSystemCalendar) {
    LX_NEEDS_TOOLS();
    ScratchDir dir("epoch");
    for (uint32_t seconds : {0u, 951782399u, 1700000000u, 4102444800u, 4294967295u}) {
        const std::string expected = Capture("date -u -d @" + std::to_string(seconds) + " '+%Y-%m-%d %H:%M:%S %w'",
                                             dir.path());
        const ShootingTime t = lx::ShootingTimeFromSeconds(seconds);
        char got[64];
        std::snprintf(got, sizeof got, "%04u-%02u-%02u %02u:%02u:%02u %u", t.year, t.month, t.day, t.hour, t.minute,
                      t.second, t.dayOfWeek);
        EXPECT_EQ(got, expected) << seconds;
    }
}

class ShootingTimeFiles : public ::testing::Test {
protected:
    void SetUp() override { LX_NEEDS_TOOLS(); }
    ScratchDir dir{"shoot"};
    std::filesystem::path jpeg(const std::string& name) {
        const auto path = dir / name;
        WriteFile(path, MakeJpeg(dir.path(), 32, 24));
        return path;
    }
};

TEST_F(ShootingTimeFiles, ReadsDateTimeOriginalInBothByteOrdersAsExiftoolDoes) {
    for (const char* order : {"II", "MM"}) {
        const auto path = jpeg(std::string("order-") + order + ".jpg");
        ASSERT_EQ(ExifTool(std::string("-ExifByteOrder=") + order +
                               " -DateTimeOriginal='2023:11:05 14:23:45' -SubSecTimeOriginal=678"
                               " -CreateDate='2001:01:01 01:01:01'",
                           path),
                  0);
        int y, mo, d, h, mi, s, ms;
        ASSERT_EQ(std::sscanf(ExifToolValue("SubSecDateTimeOriginal", path, dir.path(), true).c_str(),
                              "%d:%d:%d %d:%d:%d.%d", &y, &mo, &d, &h, &mi, &s, &ms),
                  7);
        auto t = lx::ReadShootingTime(path);
        ASSERT_TRUE(t) << order;
        EXPECT_EQ(*t, Expect(y, mo, 0 /* a Sunday */, d, h, mi, s, ms)) << order;
        EXPECT_TRUE(lx::HasShootingInfo(path));
    }
}

TEST_F(ShootingTimeFiles, FallsBackToDateTimeDigitizedWithItsOwnSubSeconds) {
    const auto path = jpeg("digitized.jpg");
    ASSERT_EQ(ExifTool("-CreateDate='2019:07:20 08:09:10' -SubSecTimeDigitized=25 -SubSecTimeOriginal=999",
                       path),
              0);
    ASSERT_EQ(ExifToolValue("DateTimeOriginal", path, dir.path(), true), "");
    EXPECT_EQ(lx::ReadShootingTime(path), Expect(2019, 7, 6, 20, 8, 9, 10, 250));

    // A zeroed original counts as absent, so the digitized time is taken.
    ASSERT_EQ(ExifTool("'-DateTimeOriginal#=0000:00:00 00:00:00'", path), 0);
    EXPECT_EQ(lx::ReadShootingTime(path), Expect(2019, 7, 6, 20, 8, 9, 10, 250));
}

TEST_F(ShootingTimeFiles, FilesWithoutShootingDataGiveNothing) {
    const auto plain = jpeg("plain.jpg");
    EXPECT_FALSE(lx::ReadShootingTime(plain));
    EXPECT_FALSE(lx::HasShootingInfo(plain));

    // Exif that only names the software is not shooting information.
    const auto software = jpeg("software.jpg");
    ASSERT_EQ(ExifTool("-Software=Editor -ModifyDate='2020:01:01 00:00:00'", software), 0);
    EXPECT_FALSE(lx::ReadShootingTime(software));
    EXPECT_FALSE(lx::HasShootingInfo(software));

    const auto zero = jpeg("zero.jpg");
    ASSERT_EQ(ExifTool("'-DateTimeOriginal#=0000:00:00 00:00:00'", zero), 0);
    EXPECT_FALSE(lx::ReadShootingTime(zero));

    const auto png = dir / "a.png";
    lxtest::Run("convert -size 4x4 xc:red '" + png.string() + "'");
    EXPECT_FALSE(lx::ReadShootingTime(png));
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
