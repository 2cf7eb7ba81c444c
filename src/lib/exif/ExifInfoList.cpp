#include "ExifInfoList.h"

#include <cmath>
#include <cstdio>

#include "ExifText.h"
#include "ShootingTime.h"

namespace lx {

namespace {

// "%.Nf" without the trailing zeros and point that carry no information.
std::string Decimal(double value, int places) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    std::string s = text;
    if (s.find('.') != std::string::npos) {
        while (s.back() == '0') s.pop_back();
        if (s.back() == '.') s.pop_back();
    }
    return s == "-0" ? "0" : s;
}

// A name from a table of enumerated values, or the number itself.
struct Named {
    int64_t value;
    const char* name;
};
template <size_t N>
std::string NameOf(const Named (&table)[N], int64_t value) {
    for (const Named& n : table)
        if (n.value == value) return n.name;
    return std::to_string(value);
}

const Named kExposurePrograms[] = {
    {0, "未定義"}, {1, "マニュアル"}, {2, "プログラムAE"}, {3, "絞り優先AE"}, {4, "シャッター速度優先AE"},
    {5, "クリエイティブ (被写界深度優先)"}, {6, "アクション (高速シャッター優先)"}, {7, "ポートレート"},
    {8, "風景"}};
const Named kMeteringModes[] = {{0, "不明"},           {1, "平均測光"}, {2, "中央重点測光"},
                                {3, "スポット測光"},   {4, "マルチスポット測光"},
                                {5, "分割測光"},       {6, "部分測光"}, {255, "その他"}};
const Named kWhiteBalances[] = {{0, "オート"}, {1, "マニュアル"}};
const Named kOrientations[] = {{1, "標準"},
                               {2, "左右反転"},
                               {3, "180度回転"},
                               {4, "上下反転"},
                               {5, "左右反転、時計回りに270度回転"},
                               {6, "時計回りに90度回転"},
                               {7, "左右反転、時計回りに90度回転"},
                               {8, "時計回りに270度回転"}};
const Named kColorSpaces[] = {{1, "sRGB"}, {2, "Adobe RGB"}, {0xFFFF, "未調整"}};

// Collects one group's items, skipping empty values.
class GroupBuilder {
public:
    explicit GroupBuilder(std::string heading) { group_.heading = std::move(heading); }
    void add(const char* name, std::string value) {
        if (!value.empty()) group_.items.emplace_back(name, std::move(value));
    }
    void addTo(std::vector<ExifInfoGroup>& groups) {
        if (!group_.items.empty()) groups.push_back(std::move(group_));
    }

private:
    ExifInfoGroup group_;
};

std::string DateText(const ExifRecord& record, TagGroup group, uint16_t tagId) {
    auto t = ParseExifDateTime(record.text(group, tagId), {});
    if (!t) return {};
    char text[64];
    std::snprintf(text, sizeof text, "%04u/%02u/%02u %02u:%02u:%02u", t->year, t->month, t->day, t->hour,
                  t->minute, t->second);
    return text;
}

std::string NumberText(const ExifRecord& record, TagGroup group, uint16_t tagId, const auto& table) {
    auto value = record.integer(group, tagId);
    return value ? NameOf(table, *value) : std::string();
}

std::string PositiveReal(const ExifRecord& record, TagGroup group, uint16_t tagId, std::string (*format)(double)) {
    auto value = record.real(group, tagId);
    return value && *value > 0 ? format(*value) : std::string();
}

std::string ImageSizeText(const ExifRecord& record) {
    auto width = record.integer(TagGroup::Exif, tag::kPixelXDimension);
    auto height = record.integer(TagGroup::Exif, tag::kPixelYDimension);
    if (!width || !height) {
        width = record.integer(TagGroup::Image, tag::kImageWidth);
        height = record.integer(TagGroup::Image, tag::kImageLength);
    }
    if (!width || !height || *width <= 0 || *height <= 0) return {};
    return std::to_string(*width) + " × " + std::to_string(*height);
}

std::optional<double> GpsDegrees(const ExifRecord& record, uint16_t valueTag, uint16_t refTag, char negative,
                                 double limit) {
    auto d = record.real(TagGroup::Gps, valueTag, 0);
    if (!d) return std::nullopt;
    const double minutes = record.real(TagGroup::Gps, valueTag, 1).value_or(0);
    const double seconds = record.real(TagGroup::Gps, valueTag, 2).value_or(0);
    double degrees = *d + minutes / 60 + seconds / 3600;
    if (!(degrees >= 0 && degrees <= limit)) return std::nullopt;
    const std::string ref = record.text(TagGroup::Gps, refTag);
    if (!ref.empty() && ref[0] == negative) degrees = -degrees;
    return degrees;
}

}  // namespace

std::string FormatExposureTime(int64_t numerator, int64_t denominator) {
    if (numerator <= 0 || denominator <= 0) return {};
    if (numerator == 1 && denominator > 1) return "1/" + std::to_string(denominator) + " s";
    const double seconds = static_cast<double>(numerator) / static_cast<double>(denominator);
    // Cameras step from 1/4 s straight to 0.3 s; below that photographers read fractions.
    if (seconds < 0.29) return "1/" + Decimal(std::round(1.0 / seconds), 0) + " s";
    return Decimal(seconds, 1) + " s";
}

std::string FormatFNumber(double f) {
    std::string text = "F";
    text += Decimal(f, 1);
    return text;
}

std::string FormatFocalLength(double millimetres) { return Decimal(millimetres, 1) + " mm"; }

std::string FormatExposureBias(double ev) {
    const std::string text = Decimal(ev, 1);
    return (text != "0" && text[0] != '-' ? "+" : "") + text + " EV";
}

std::string FormatCoordinate(double degrees, char hemisphere) {
    char text[48];
    std::snprintf(text, sizeof text, "%.4f° %c", degrees, hemisphere);
    return text;
}

std::string FormatAltitude(double metres) { return Decimal(metres, 1) + " m"; }

std::string FormatFlash(int64_t flash) {
    if (flash < 0) return {};
    if (flash & 0x20) return "フラッシュなし";
    std::string text = (flash & 1) ? "発光" : "非発光";
    std::string details;
    const auto note = [&](const char* what) { details += (details.empty() ? "" : "、") + std::string(what); };
    switch ((flash >> 3) & 3) {
    case 1: note("強制発光"); break;
    case 2: note("発光禁止"); break;
    case 3: note("オート"); break;
    default: break;
    }
    if (flash & 0x40) note("赤目軽減");
    return details.empty() ? text : text + " (" + details + ")";
}

std::optional<double> GpsLatitude(const ExifRecord& record) {
    return GpsDegrees(record, tag::kGpsLatitude, tag::kGpsLatitudeRef, 'S', 90);
}

std::optional<double> GpsLongitude(const ExifRecord& record) {
    return GpsDegrees(record, tag::kGpsLongitude, tag::kGpsLongitudeRef, 'W', 180);
}

std::optional<double> GpsAltitude(const ExifRecord& record) {
    auto metres = record.real(TagGroup::Gps, tag::kGpsAltitude);
    if (!metres) return std::nullopt;
    return record.integer(TagGroup::Gps, tag::kGpsAltitudeRef) == 1 ? -*metres : *metres;
}

std::vector<ExifInfoGroup> CollectExifInfo(const ExifRecord& record) {
    std::vector<ExifInfoGroup> groups;
    const auto image = TagGroup::Image;
    const auto exif = TagGroup::Exif;

    GroupBuilder camera("カメラ");
    camera.add("メーカー", FieldText(record, image, tag::kMake));
    camera.add("機種", FieldText(record, image, tag::kModel));
    std::string lens = FieldText(record, exif, tag::kLensModel);
    camera.add("レンズ", lens.empty() ? FieldText(record, exif, tag::kLensMake) : lens);
    camera.add("ソフトウェア", FieldText(record, image, tag::kSoftware));
    camera.addTo(groups);

    GroupBuilder dates("日時");
    dates.add("撮影日時", DateText(record, exif, tag::kDateTimeOriginal));
    dates.add("デジタル化日時", DateText(record, exif, tag::kDateTimeDigitized));
    dates.add("更新日時", DateText(record, image, tag::kDateTime));
    dates.addTo(groups);

    GroupBuilder shot("撮影条件");
    auto exposure = record.rational(exif, tag::kExposureTime);
    shot.add("シャッター速度", exposure ? FormatExposureTime(exposure->first, exposure->second) : "");
    shot.add("絞り値", PositiveReal(record, exif, tag::kFNumber, FormatFNumber));
    auto iso = record.integer(exif, tag::kIso);
    shot.add("ISO感度", iso && *iso > 0 ? std::to_string(*iso) : "");
    shot.add("露出プログラム", NumberText(record, exif, tag::kExposureProgram, kExposurePrograms));
    auto bias = record.real(exif, tag::kExposureBias);
    shot.add("露出補正", bias ? FormatExposureBias(*bias) : "");
    shot.add("測光方式", NumberText(record, exif, tag::kMeteringMode, kMeteringModes));
    auto flash = record.integer(exif, tag::kFlash);
    shot.add("フラッシュ", flash ? FormatFlash(*flash) : "");
    shot.add("焦点距離", PositiveReal(record, exif, tag::kFocalLength, FormatFocalLength));
    auto focal35 = record.integer(exif, tag::kFocalLength35);
    shot.add("35mm換算焦点距離", focal35 && *focal35 > 0 ? FormatFocalLength(double(*focal35)) : "");
    shot.add("ホワイトバランス", NumberText(record, exif, tag::kWhiteBalance, kWhiteBalances));
    shot.addTo(groups);

    GroupBuilder picture("画像");
    picture.add("画像サイズ", ImageSizeText(record));
    picture.add("画像の向き", NumberText(record, image, tag::kOrientation, kOrientations));
    picture.add("色空間", NumberText(record, exif, tag::kColorSpace, kColorSpaces));
    picture.addTo(groups);

    GroupBuilder gps("GPS");
    auto latitude = GpsLatitude(record);
    gps.add("緯度", latitude ? FormatCoordinate(std::fabs(*latitude), *latitude < 0 ? 'S' : 'N') : "");
    auto longitude = GpsLongitude(record);
    gps.add("経度", longitude ? FormatCoordinate(std::fabs(*longitude), *longitude < 0 ? 'W' : 'E') : "");
    auto altitude = GpsAltitude(record);
    gps.add("高度", altitude ? FormatAltitude(*altitude) : "");
    gps.addTo(groups);

    GroupBuilder notes("説明");
    notes.add("タイトル", XpText(record, tag::kXpTitle));
    notes.add("説明", FieldText(record, image, tag::kImageDescription));
    notes.add("件名", XpText(record, tag::kXpSubject));
    notes.add("コメント", XpText(record, tag::kXpComment));
    notes.add("ユーザーコメント", UserCommentText(record));
    std::string author = FieldText(record, image, tag::kArtist);
    notes.add("作成者", author.empty() ? XpText(record, tag::kXpAuthor) : author);
    notes.add("著作権", FieldText(record, image, tag::kCopyright));
    notes.addTo(groups);
    return groups;
}

bool DeliverExifInfo(const std::vector<ExifInfoGroup>& groups, const ExifInfoCallback& callback) {
    for (const ExifInfoGroup& group : groups) {
        if (!callback(kExifInfoGroup, group.heading, {})) return false;
        for (const auto& [name, value] : group.items)
            if (!callback(kExifInfoItem, name, value)) return false;
    }
    return true;
}

}  // namespace lx
