#include "ShootingTime.h"

#include <cctype>
#include <cstdio>

#include "ExifRecord.h"

namespace lx {

namespace {

bool IsLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : days[month - 1];
}

// Reads `digits` decimal digits at `at`; -1 when any is not a digit.
int Digits(const std::string& text, size_t at, int digits) {
    int value = 0;
    for (int i = 0; i < digits; ++i) {
        const char c = at + i < text.size() ? text[at + i] : '\0';
        if (c < '0' || c > '9') return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

bool IsDateSeparator(char c) { return c == ':' || c == '-' || c == '/'; }

// Milliseconds of a sub-second fraction: its first three digits, padded with zeros.
int Milliseconds(const std::string& subSeconds) {
    size_t at = 0;
    while (at < subSeconds.size() && subSeconds[at] == ' ') ++at;
    int value = 0, digits = 0;
    for (; digits < 3 && at < subSeconds.size() && std::isdigit(static_cast<unsigned char>(subSeconds[at])); ++at)
        value = value * 10 + (subSeconds[at] - '0'), ++digits;
    if (digits == 0) return 0;
    for (; digits < 3; ++digits) value *= 10;
    return value;
}

}  // namespace

int DayOfWeek(int year, int month, int day) {
    // Sakamoto's method: January and February count as months of the previous year.
    static const int offsets[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    if (month < 3) year -= 1;
    return (year + year / 4 - year / 100 + year / 400 + offsets[month - 1] + day) % 7;
}

std::optional<ShootingTime> ParseExifDateTime(const std::string& text, const std::string& subSeconds) {
    // "YYYY:MM:DD HH:MM:SS": some writers use '-' or '/' in the date, or 'T' between.
    if (text.size() < 19 || !IsDateSeparator(text[4]) || text[7] != text[4] || (text[10] != ' ' && text[10] != 'T') ||
        text[13] != ':' || text[16] != ':')
        return std::nullopt;
    const int year = Digits(text, 0, 4), month = Digits(text, 5, 2), day = Digits(text, 8, 2);
    const int hour = Digits(text, 11, 2), minute = Digits(text, 14, 2), second = Digits(text, 17, 2);
    if (year < 1601 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) || hour < 0 ||
        hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
        return std::nullopt;
    ShootingTime t;
    t.year = static_cast<uint16_t>(year);
    t.month = static_cast<uint16_t>(month);
    t.day = static_cast<uint16_t>(day);
    t.dayOfWeek = static_cast<uint16_t>(DayOfWeek(year, month, day));
    t.hour = static_cast<uint16_t>(hour);
    t.minute = static_cast<uint16_t>(minute);
    t.second = static_cast<uint16_t>(second);
    t.milliseconds = static_cast<uint16_t>(Milliseconds(subSeconds));
    return t;
}

ShootingTime ShootingTimeFromSeconds(uint32_t seconds) {
    // Days to civil date (Howard Hinnant's algorithm), counted from 1970-01-01.
    const int64_t days = seconds / 86400;
    const int64_t z = days + 719468;
    const int64_t era = z / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int64_t day = doy - (153 * mp + 2) / 5 + 1;
    const int64_t month = mp < 10 ? mp + 3 : mp - 9;
    const int64_t year = yoe + era * 400 + (month <= 2 ? 1 : 0);
    ShootingTime t;
    t.year = static_cast<uint16_t>(year);
    t.month = static_cast<uint16_t>(month);
    t.day = static_cast<uint16_t>(day);
    t.dayOfWeek = static_cast<uint16_t>((days + 4) % 7);  // 1970-01-01 was a Thursday
    t.hour = static_cast<uint16_t>(seconds % 86400 / 3600);
    t.minute = static_cast<uint16_t>(seconds % 3600 / 60);
    t.second = static_cast<uint16_t>(seconds % 60);
    return t;
}

std::optional<ShootingTime> ShootingTimeOf(const ExifRecord& record) {
    if (auto t = ParseExifDateTime(record.text(TagGroup::Exif, tag::kDateTimeOriginal),
                                   record.text(TagGroup::Exif, tag::kSubSecTimeOriginal)))
        return t;
    return ParseExifDateTime(record.text(TagGroup::Exif, tag::kDateTimeDigitized),
                             record.text(TagGroup::Exif, tag::kSubSecTimeDigitized));
}

std::string FormatShootingTime(const ShootingTime& t) {
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u", t.year, t.month, t.day, t.hour, t.minute,
                  t.second, t.milliseconds);
    return text;
}

}  // namespace lx
