// ShootingTime: when a photograph was taken, laid out field for field like the Win32
// SYSTEMTIME record (eight 16-bit fields), so the Windows tools can use it as one.
//
// Exif writes times as "YYYY:MM:DD HH:MM:SS" text without a time zone; sub-seconds live
// in separate tags as decimal fractions ("5" is half a second).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lx {

class ExifRecord;

struct ShootingTime {
    uint16_t year = 0;
    uint16_t month = 0;      // 1-12
    uint16_t dayOfWeek = 0;  // 0 Sunday - 6 Saturday
    uint16_t day = 0;
    uint16_t hour = 0;
    uint16_t minute = 0;
    uint16_t second = 0;
    uint16_t milliseconds = 0;
    bool operator==(const ShootingTime&) const = default;
};
static_assert(sizeof(ShootingTime) == 16, "SYSTEMTIME layout");

// Day of the week (0 Sunday) of a date in the Gregorian calendar.
int DayOfWeek(int year, int month, int day);

// Parses an Exif date-time text with its sub-second text (may be empty). nullopt for
// the blank or all-zero "no date" forms and for anything malformed or out of range.
std::optional<ShootingTime> ParseExifDateTime(const std::string& text, const std::string& subSeconds);

// Civil time of a count of seconds since 1970-01-01 00:00:00.
ShootingTime ShootingTimeFromSeconds(uint32_t seconds);

// DateTimeOriginal with SubSecTimeOriginal, else DateTimeDigitized with SubSecTimeDigitized.
std::optional<ShootingTime> ShootingTimeOf(const ExifRecord& record);

// "2024-05-01 12:34:56.789" for reports.
std::string FormatShootingTime(const ShootingTime& time);

}  // namespace lx
