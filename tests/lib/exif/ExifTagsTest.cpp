// What the reader makes of the tags: the shooting time (from text, seconds and real files),
// the photographer's info list, descriptions and the report of one file.
#include "ExifInfoList.h"
#include "ShootingTime.h"

#include <gtest/gtest.h>

#include <map>

#include "DescribeExifFile.h"
#include "ExifReader.h"
#include "ExifTestSupport.h"
#include "ExifText.h"

using lx::ParseExifDateTime;
using lx::ShootingTime;
using namespace lxtest;

TEST(ExifInfoFormat, ValuesReadAsPhotographersWriteThem) {
    const std::pair<std::string, std::string> cases[] = {
        {lx::FormatExposureTime(1, 250), "1/250 s"}, {lx::FormatExposureTime(10, 2500), "1/250 s"},
        {lx::FormatExposureTime(1, 3), "1/3 s"},     {lx::FormatExposureTime(3, 10), "0.3 s"},
        {lx::FormatExposureTime(1, 1), "1 s"},       {lx::FormatExposureTime(30, 1), "30 s"},
        {lx::FormatExposureTime(13, 10), "1.3 s"},   {lx::FormatExposureTime(0, 1), ""},
        {lx::FormatExposureTime(1, 0), ""},          {lx::FormatFNumber(2.8), "F2.8"},
        {lx::FormatFNumber(8.0), "F8"},              {lx::FormatFNumber(11.0), "F11"},
        {lx::FormatFocalLength(35.0), "35 mm"},      {lx::FormatFocalLength(4.3), "4.3 mm"},
        {lx::FormatExposureBias(0.0), "0 EV"},       {lx::FormatExposureBias(-0.0), "0 EV"},
        {lx::FormatExposureBias(2.0 / 3), "+0.7 EV"}, {lx::FormatExposureBias(-1.0), "-1 EV"},
        {lx::FormatCoordinate(35.65809, 'N'), "35.6581° N"}, {lx::FormatAltitude(-5.5), "-5.5 m"},
        {lx::FormatFlash(0), "非発光"},              {lx::FormatFlash(0x19), "発光 (オート)"},
        {lx::FormatFlash(0x49), "発光 (強制発光、赤目軽減)"}, {lx::FormatFlash(0x10), "非発光 (発光禁止)"},
        {lx::FormatFlash(0x20), "フラッシュなし"},
    };
    for (const auto& [got, expected] : cases) EXPECT_EQ(got, expected);
}

TEST(ExifInfoText, Utf16AndUtf8AreConvertedAndRepaired) {
    // "Aあ" then U+1D11E as a surrogate pair, then an unpaired surrogate, then NUL.
    const Bytes le = {'A', 0, 0x42, 0x30, 0x34, 0xD8, 0x1E, 0xDD, 0x00, 0xDC, 0, 0, 'Z', 0};
    EXPECT_EQ(lx::Utf16ToUtf8(le.data(), le.size(), true), "Aあ\xF0\x9D\x84\x9E\xEF\xBF\xBD");
    const Bytes be = {0x30, 0x42, 0, 'b'};
    EXPECT_EQ(lx::Utf16ToUtf8(be.data(), be.size(), false), "あb");
    EXPECT_EQ(lx::ValidUtf8("ok あ"), "ok あ");
    EXPECT_EQ(lx::ValidUtf8("\x82\xA0x"), "\xEF\xBF\xBD\xEF\xBF\xBDx");  // Shift-JIS is not UTF-8
    EXPECT_EQ(lx::ValidUtf8("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");      // overlong '/'
    EXPECT_EQ(lx::ValidUtf8("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");  // surrogate
}

#ifndef _WIN32
namespace {

using InfoMap = std::map<std::string, std::string>;

InfoMap Enumerate(const std::filesystem::path& path, std::vector<std::string>* headings = nullptr) {
    InfoMap items;
    lx::EnumerateExifInfo(path, [&](int kind, std::string_view name, std::string_view value) {
        if (kind == lx::kExifInfoGroup && headings) headings->emplace_back(name);
        if (kind == lx::kExifInfoItem) items[std::string(name)] = std::string(value);
        return true;
    });
    return items;
}

using ExifInfoFiles = ExiftoolPhotos;

const char* const kCameraTags =
    "-Make=Canon '-Model=Canon EOS Test' '-LensModel=EF 35mm f/2' -Software=Firmware-1.0"
    " -ExposureTime=1/250 -FNumber=2.8 -ISO=200 '-ExposureProgram#=3' -ExposureCompensation=-0.67"
    " '-MeteringMode#=5' '-EXIF:Flash#=25' -FocalLength=35 -FocalLengthIn35mmFormat=52 '-WhiteBalance#=1'"
    " -ExifImageWidth=4000 -ExifImageHeight=3000 '-Orientation#=6' '-ColorSpace#=1'"
    " '-DateTimeOriginal=2024:05:01 12:34:56'"
    " -GPSLatitude=35.658099 -GPSLatitudeRef=N -GPSLongitude=139.741357 -GPSLongitudeRef=E"
    " -GPSAltitude=40 '-GPSAltitudeRef#=0'"
    " '-XPTitle=富士山の朝' '-UserComment=ユーザーのコメント' '-Artist=撮影 太郎'";

}  // namespace

TEST_F(ExifInfoFiles, ItemsOfEveryGroupInBothByteOrders) {
    const InfoMap expected = {
        {"メーカー", "Canon"}, {"機種", "Canon EOS Test"}, {"レンズ", "EF 35mm f/2"},
        {"ソフトウェア", "Firmware-1.0"}, {"撮影日時", "2024/05/01 12:34:56"}, {"シャッター速度", "1/250 s"},
        {"絞り値", "F2.8"}, {"ISO感度", "200"}, {"露出プログラム", "絞り優先AE"}, {"露出補正", "-0.7 EV"},
        {"測光方式", "分割測光"}, {"フラッシュ", "発光 (オート)"}, {"焦点距離", "35 mm"},
        {"35mm換算焦点距離", "52 mm"}, {"ホワイトバランス", "マニュアル"}, {"画像サイズ", "4000 × 3000"},
        {"画像の向き", "時計回りに90度回転"}, {"色空間", "sRGB"}, {"緯度", "35.6581° N"},
        {"経度", "139.7414° E"}, {"高度", "40 m"}, {"タイトル", "富士山の朝"},
        {"ユーザーコメント", "ユーザーのコメント"}, {"作成者", "撮影 太郎"},
    };
    for (const char* order : {"II", "MM"}) {
        const auto path = photo(std::string("camera-") + order + ".jpg",
                                std::string(kCameraTags) + " -ExifByteOrder=" + order);
        std::vector<std::string> headings;
        InfoMap info = Enumerate(path, &headings);
        EXPECT_EQ(headings, (std::vector<std::string>{"カメラ", "日時", "撮影条件", "画像", "GPS", "説明"}));
        for (const auto& [name, value] : expected) EXPECT_EQ(info[name], value) << name << " " << order;
        EXPECT_EQ(lx::ReadOrientation(path), 6);
        // No ImageDescription: the title is the caption.
        EXPECT_EQ(lx::ReadDescription(path), expected.at("タイトル"));
    }
}

TEST_F(ExifInfoFiles, SouthWestAndBelowSeaLevelAsExiftoolSigns) {
    const auto path = photo("south.jpg",
                            "-GPSLatitude=33.8688 -GPSLatitudeRef=S -GPSLongitude=151.2093 -GPSLongitudeRef=W"
                            " -GPSAltitude=12.5 '-GPSAltitudeRef#=1'");
    InfoMap info = Enumerate(path);
    EXPECT_EQ(info["緯度"], "33.8688° S");
    EXPECT_EQ(info["経度"], "151.2093° W");
    EXPECT_EQ(info["高度"], "-12.5 m");
    EXPECT_TRUE(lx::HasShootingInfo(path));
}

TEST_F(ExifInfoFiles, DescriptionPrefersImageDescriptionOverTitleAndComment) {
    const auto path = photo("described.jpg", "'-ImageDescription=湖の夕景' -XPTitle=Title -UserComment=Comment");
    EXPECT_EQ(lx::ReadDescription(path), "湖の夕景");
    EXPECT_EQ(lx::RenderPreview(path), std::nullopt);  // no embedded JPEG to render

    const auto stock = photo("stock.jpg", "'-ImageDescription=OLYMPUS DIGITAL CAMERA' -UserComment=Comment");
    EXPECT_EQ(lx::ReadDescription(stock), "Comment");
    const auto none = photo("none.jpg", "'-ImageDescription=   '");
    EXPECT_EQ(lx::ReadDescription(none), "");
    EXPECT_EQ(lx::ReadDescription(dir / "missing.jpg"), "");
}

TEST_F(ExifInfoFiles, CallbackStopsTheEnumeration) {
    const auto path = photo("stop.jpg", kCameraTags);
    std::vector<int> kinds;
    const bool completed = lx::EnumerateExifInfo(path, [&](int kind, std::string_view, std::string_view) {
        kinds.push_back(kind);
        return kinds.size() < 3;
    });
    EXPECT_FALSE(completed);
    EXPECT_EQ(kinds, (std::vector<int>{lx::kExifInfoGroup, lx::kExifInfoItem, lx::kExifInfoItem}));

    // A file without Exif lists nothing, not even a heading.
    const auto plain = dir / "plain.jpg";
    WriteFile(plain, MakeJpeg(dir.path(), 8, 8));
    int calls = 0;
    EXPECT_TRUE(lx::EnumerateExifInfo(plain, [&](int, std::string_view, std::string_view) { return ++calls, true; }));
    EXPECT_EQ(calls, 0);
}

// The IFD1 thumbnail exiftool writes is listed, read with either choice, rendered and reported.
TEST_F(ExifInfoFiles, DescribeReportsTimeThumbnailCaptionAndItems) {
    const auto thumb = dir / "t.jpg";
    WriteFile(thumb, MakeJpeg(dir.path(), 24, 16, "blue"));
    const auto path = photo("report.jpg", std::string(kCameraTags) + " -SubSecTimeOriginal=5 '-ThumbnailImage<=" +
                                              thumb.string() + "'");
    const auto stored = dir / "stored.jpg";
    lxtest::Run("exiftool -b -ThumbnailImage '" + path.string() + "' > '" + stored.string() + "'");
    const Bytes expected = ReadFile(stored);
    const auto list = lx::ListEmbeddedImages(path);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].where, "IFD1");
    for (auto choice : {lx::EmbeddedChoice::Smallest, lx::EmbeddedChoice::Largest})
        EXPECT_EQ(lx::ReadEmbeddedImage(path, choice)->bytes, expected);
    EXPECT_EQ(lx::RenderPreview(path)->jpeg, expected);

    const std::string report = lx::DescribeExifFile(path);
    EXPECT_NE(report.find("shooting time: 2024-05-01 12:34:56.500\n"), std::string::npos) << report;
    EXPECT_NE(report.find("JPEG 24x16, " + std::to_string(expected.size()) + " bytes (IFD1)"), std::string::npos)
        << report;
    EXPECT_NE(report.find("description: 富士山の朝"), std::string::npos) << report;
    EXPECT_NE(report.find("    絞り値: F2.8\n"), std::string::npos) << report;
    EXPECT_NE(lx::DescribeExifFile(dir / "missing.jpg").find("cannot open"), std::string::npos);
}
#endif

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
using ShootingTimeFiles = ExiftoolPhotos;

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
        const auto path = photo("case.jpg", c.tags);
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
