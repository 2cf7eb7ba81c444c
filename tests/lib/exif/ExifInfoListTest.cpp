#include "ExifInfoList.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "DescribeExifFile.h"
#include "ExifReader.h"
#include "ExifTestSupport.h"
#include "ExifText.h"

using namespace lxtest;

TEST(ExifInfoFormat, ValuesReadAsPhotographersWriteThem) {
    EXPECT_EQ(lx::FormatExposureTime(1, 250), "1/250 s");
    EXPECT_EQ(lx::FormatExposureTime(10, 2500), "1/250 s");
    EXPECT_EQ(lx::FormatExposureTime(1, 3), "1/3 s");
    EXPECT_EQ(lx::FormatExposureTime(3, 10), "0.3 s");
    EXPECT_EQ(lx::FormatExposureTime(1, 1), "1 s");
    EXPECT_EQ(lx::FormatExposureTime(30, 1), "30 s");
    EXPECT_EQ(lx::FormatExposureTime(13, 10), "1.3 s");
    EXPECT_EQ(lx::FormatExposureTime(0, 1), "");
    EXPECT_EQ(lx::FormatExposureTime(1, 0), "");
    EXPECT_EQ(lx::FormatFNumber(2.8), "F2.8");
    EXPECT_EQ(lx::FormatFNumber(8.0), "F8");
    EXPECT_EQ(lx::FormatFNumber(11.0), "F11");
    EXPECT_EQ(lx::FormatFocalLength(35.0), "35 mm");
    EXPECT_EQ(lx::FormatFocalLength(4.3), "4.3 mm");
    EXPECT_EQ(lx::FormatExposureBias(0.0), "0 EV");
    EXPECT_EQ(lx::FormatExposureBias(-0.0), "0 EV");
    EXPECT_EQ(lx::FormatExposureBias(2.0 / 3), "+0.7 EV");
    EXPECT_EQ(lx::FormatExposureBias(-1.0), "-1 EV");
    EXPECT_EQ(lx::FormatCoordinate(35.65809, 'N'), "35.6581° N");
    EXPECT_EQ(lx::FormatAltitude(-5.5), "-5.5 m");
    EXPECT_EQ(lx::FormatFlash(0), "非発光");
    EXPECT_EQ(lx::FormatFlash(0x19), "発光 (オート)");
    EXPECT_EQ(lx::FormatFlash(0x49), "発光 (強制発光、赤目軽減)");
    EXPECT_EQ(lx::FormatFlash(0x10), "非発光 (発光禁止)");
    EXPECT_EQ(lx::FormatFlash(0x20), "フラッシュなし");
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

double Number(const std::string& text) { return std::stod(text); }

class ExifInfoFiles : public ::testing::Test {
protected:
    void SetUp() override { LX_NEEDS_TOOLS(); }
    ScratchDir dir{"info"};
    std::filesystem::path photo(const std::string& name, const std::string& tags) {
        const auto path = dir / name;
        WriteFile(path, MakeJpeg(dir.path(), 40, 30));
        EXPECT_EQ(ExifTool(tags, path), 0);
        return path;
    }
    std::string value(const std::filesystem::path& path, const std::string& tag, bool numeric = true) {
        auto& tags = seen_[{path.string(), numeric}];
        if (tags.empty()) tags = ExifToolAll(path, dir.path(), numeric);
        return tags[tag];
    }

private:
    std::map<std::pair<std::string, bool>, std::map<std::string, std::string>> seen_;
};

const char* const kCameraTags =
    "-Make=Canon '-Model=Canon EOS Test' '-LensModel=EF 35mm f/2' -Software=Firmware-1.0"
    " -ExposureTime=1/250 -FNumber=2.8 -ISO=200 '-ExposureProgram#=3' -ExposureCompensation=-0.67"
    " '-MeteringMode#=5' '-EXIF:Flash#=25' -FocalLength=35 -FocalLengthIn35mmFormat=52 '-WhiteBalance#=1'"
    " -ExifImageWidth=4000 -ExifImageHeight=3000 '-Orientation#=6' '-ColorSpace#=1'"
    " '-DateTimeOriginal=2024:05:01 12:34:56'"
    " -GPSLatitude=35.658099 -GPSLatitudeRef=N -GPSLongitude=139.741357 -GPSLongitudeRef=E"
    " -GPSAltitude=40 '-GPSAltitudeRef#=0'"
    " '-XPTitle=富士山の朝 \xF0\x9D\x84\x9E' '-UserComment=ユーザーのコメント' '-Artist=撮影 太郎'";

}  // namespace

TEST_F(ExifInfoFiles, ItemsAgreeWithExiftoolInBothByteOrders) {
    for (const char* order : {"II", "MM"}) {
        const auto path = photo(std::string("camera-") + order + ".jpg",
                                std::string(kCameraTags) + " -ExifByteOrder=" + order);
        std::vector<std::string> headings;
        InfoMap info = Enumerate(path, &headings);
        EXPECT_EQ(headings, (std::vector<std::string>{"カメラ", "日時", "撮影条件", "画像", "GPS", "説明"}));

        EXPECT_EQ(info["メーカー"], value(path, "Make"));
        EXPECT_EQ(info["機種"], value(path, "Model"));
        EXPECT_EQ(info["レンズ"], value(path, "LensModel"));
        EXPECT_EQ(info["ソフトウェア"], value(path, "Software"));
        EXPECT_EQ(info["撮影日時"], "2024/05/01 12:34:56");
        const double exposure = Number(value(path, "ExposureTime"));
        EXPECT_EQ(info["シャッター速度"], "1/" + std::to_string(std::lround(1 / exposure)) + " s");
        EXPECT_EQ(info["絞り値"], "F" + value(path, "FNumber"));
        EXPECT_EQ(info["ISO感度"], value(path, "ISO"));
        EXPECT_EQ(value(path, "ExposureProgram", false), "Aperture-priority AE");
        EXPECT_EQ(info["露出プログラム"], "絞り優先AE");
        char bias[32];
        std::snprintf(bias, sizeof bias, "%+.1f EV", Number(value(path, "ExposureCompensation")));
        EXPECT_EQ(info["露出補正"], bias);
        EXPECT_EQ(value(path, "MeteringMode", false), "Multi-segment");
        EXPECT_EQ(info["測光方式"], "分割測光");
        EXPECT_EQ(value(path, "Flash", false), "Auto, Fired");
        EXPECT_EQ(info["フラッシュ"], "発光 (オート)");
        EXPECT_EQ(info["焦点距離"], value(path, "FocalLength").substr(0, 2) + " mm");
        EXPECT_EQ(info["35mm換算焦点距離"], value(path, "FocalLengthIn35mmFormat") + " mm");
        EXPECT_EQ(value(path, "WhiteBalance", false), "Manual");
        EXPECT_EQ(info["ホワイトバランス"], "マニュアル");
        EXPECT_EQ(info["画像サイズ"], value(path, "ExifImageWidth") + " × " + value(path, "ExifImageHeight"));
        EXPECT_EQ(value(path, "Orientation", false), "Rotate 90 CW");
        EXPECT_EQ(info["画像の向き"], "時計回りに90度回転");
        EXPECT_EQ(info["色空間"], "sRGB");
        EXPECT_EQ(info["緯度"], lx::FormatCoordinate(Number(value(path, "GPSLatitude")), 'N'));
        EXPECT_EQ(info["緯度"], "35.6581° N");
        EXPECT_EQ(info["経度"], lx::FormatCoordinate(Number(value(path, "GPSLongitude")), 'E'));
        EXPECT_EQ(info["高度"], value(path, "GPSAltitude") + " m");
        EXPECT_EQ(info["タイトル"], value(path, "XPTitle"));
        EXPECT_EQ(info["ユーザーコメント"], value(path, "UserComment"));
        EXPECT_EQ(info["作成者"], value(path, "Artist"));
        EXPECT_EQ(lx::ReadOrientation(path), 6);
        // No ImageDescription: the title is the caption.
        EXPECT_EQ(lx::ReadDescription(path), value(path, "XPTitle"));
    }
}

TEST_F(ExifInfoFiles, SouthWestAndBelowSeaLevelAsExiftoolSigns) {
    const auto path = photo("south.jpg",
                            "-GPSLatitude=33.8688 -GPSLatitudeRef=S -GPSLongitude=151.2093 -GPSLongitudeRef=W"
                            " -GPSAltitude=12.5 '-GPSAltitudeRef#=1'");
    InfoMap info = Enumerate(path);
    EXPECT_EQ(info["緯度"], lx::FormatCoordinate(-Number(value(path, "GPSLatitude")), 'S'));
    EXPECT_EQ(info["経度"], lx::FormatCoordinate(-Number(value(path, "GPSLongitude")), 'W'));
    EXPECT_EQ(info["高度"], value(path, "GPSAltitude") + " m");
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

TEST_F(ExifInfoFiles, DescribeReportsTimeImagesCaptionAndItems) {
    const auto thumb = dir / "t.jpg";
    WriteFile(thumb, MakeJpeg(dir.path(), 24, 16, "blue"));
    const auto path = photo("report.jpg", std::string(kCameraTags) + " -SubSecTimeOriginal=5 '-ThumbnailImage<=" +
                                              thumb.string() + "'");
    const std::string report = lx::DescribeExifFile(path);
    EXPECT_NE(report.find("shooting time: 2024-05-01 12:34:56.500\n"), std::string::npos) << report;
    EXPECT_NE(report.find("JPEG 24x16, " + std::to_string(ReadFile(thumb).size()) + " bytes (IFD1)"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("description: 富士山の朝"), std::string::npos) << report;
    EXPECT_NE(report.find("    絞り値: F2.8\n"), std::string::npos) << report;
    EXPECT_NE(lx::DescribeExifFile(dir / "missing.jpg").find("cannot open"), std::string::npos);
}
