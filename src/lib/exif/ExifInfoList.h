// ExifInfoList: the information of a file as the viewer's Exif view lists it: headed
// groups of (name, value) pairs, names in Japanese and values written the way
// photographers read them ("1/250 s", "F2.8", "35 mm", "35.6581° N"). All texts UTF-8.
//
// Groups without any value are left out; so is a tag whose value is malformed.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ExifRecord.h"

namespace lx {

struct ExifInfoGroup {
    std::string heading;
    std::vector<std::pair<std::string, std::string>> items;  // name, value
};

std::vector<ExifInfoGroup> CollectExifInfo(const ExifRecord& record);

// Kinds of the enumeration callback: a group heading starts a new group (value empty),
// an item belongs to the group last started.
constexpr int kExifInfoGroup = 1;
constexpr int kExifInfoItem = 2;
// Returns false to stop the enumeration.
using ExifInfoCallback = std::function<bool(int kind, std::string_view name, std::string_view value)>;

// Delivers the groups in order; false when the callback stopped it.
bool DeliverExifInfo(const std::vector<ExifInfoGroup>& groups, const ExifInfoCallback& callback);

// Value formats, exposed for the tests and the report.
std::string FormatExposureTime(int64_t numerator, int64_t denominator);  // "1/250 s", "0.5 s", "2 s"
std::string FormatFNumber(double f);                                       // "F2.8", "F8"
std::string FormatFocalLength(double millimetres);                         // "35 mm", "4.3 mm"
std::string FormatExposureBias(double ev);                                 // "+0.7 EV", "0 EV"
std::string FormatCoordinate(double degrees, char hemisphere);             // "35.6581° N"
std::string FormatAltitude(double metres);                                 // "40 m", "-5.5 m"
std::string FormatFlash(int64_t flash);                                    // "発光 (オート)"

// A signed latitude or longitude in degrees from the GPS IFD: degrees, minutes and
// seconds with their N/S or E/W reference (south and west negative); nullopt when absent
// or out of range.
std::optional<double> GpsLatitude(const ExifRecord& record);
std::optional<double> GpsLongitude(const ExifRecord& record);
// Metres above sea level (negative below); nullopt when absent.
std::optional<double> GpsAltitude(const ExifRecord& record);

}  // namespace lx
