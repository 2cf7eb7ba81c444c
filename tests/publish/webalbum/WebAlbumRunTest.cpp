// The album's run over an in-memory file system: which sheets are written, what they say byte
// for byte, and which thumbnails land in a real scratch folder.
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <map>

#include "AlbumThumbnail.h"
#include "ImageSave.h"
#include "RecordingSink.h"
#include "TestFiles.h"
#include "WebAlbumRun.h"

namespace {

namespace fs = std::filesystem;

class MemoryAlbumFiles : public lx::AlbumFileSystem {
public:
    bool CreateSheet(const std::wstring& path) override {
        if (refuseSheet == static_cast<int>(sheetOrder.size())) return false;
        current = path;
        sheets[path].clear();
        sheetOrder.push_back(path);
        return true;
    }
    void WriteText(const std::wstring& text) override { sheets[current] += text; }
    void CloseSheet() override { current.clear(); }
    void CopySource(const std::wstring& source, const std::wstring& target) override {
        copies.push_back(source + L" -> " + target);
    }
    std::wstring RelativePath(const std::wstring& folder, const std::wstring& file) override {
        return file.rfind(folder, 0) == 0 ? L"." + file.substr(folder.size()) : std::wstring();
    }
    std::wstring Lower(const std::wstring& text) override {
        std::wstring lower = text;
        std::transform(lower.begin(), lower.end(), lower.begin(), [](wchar_t c) { return std::towlower(c); });
        return lower;
    }
    bool SamePath(const std::wstring& a, const std::wstring& b) override { return Lower(a) == Lower(b); }
    void OpenInBrowser(const std::wstring& sheet, const std::wstring&) override { opened.push_back(sheet); }

    std::map<std::wstring, std::wstring> sheets;
    std::vector<std::wstring> sheetOrder, copies, opened;
    std::wstring current;
    int refuseSheet = -1;
};

class WebAlbumRunTest : public ::testing::Test {
protected:
    lx::WebAlbumSettings Settings(int columns, int rows) {
        lx::WebAlbumSettings settings = lx::DefaultWebAlbumSettings();
        settings.columns = columns;
        settings.rows = rows;
        lx::SetAlbumFolder(settings, out.wstring());
        return settings;
    }
    lx::WebAlbumResult Build(const lx::WebAlbumSettings& settings, const std::vector<std::wstring>& files) {
        return lx::BuildWebAlbum(settings, files, {L"WEB", L"load", L"save", L"conv"}, files_, sink);
    }
    std::wstring Sheet(int number) { return files_.sheets[(out / ("sheet_" + std::to_string(number) + ".html")).wstring()]; }
    std::vector<std::wstring> Pictures(int count, int width = 64, int height = 48) {
        std::vector<std::wstring> paths;
        for (int i = 0; i < count; ++i) {
            const fs::path path = scratch / ("p" + std::to_string(i) + ".bmp");
            if (!fs::exists(path)) lx::SaveBmpFile(path, lx::PackedDib::Create(width, height, 24));
            paths.push_back(path.wstring());
        }
        return paths;
    }

    lxtest::ScratchDir scratch{"webalbum"};
    fs::path out = scratch / "album";
    MemoryAlbumFiles files_;
    lxtest::RecordingSink sink;
};

size_t Count(const std::wstring& text, const std::wstring& piece) {
    size_t count = 0;
    for (size_t at = text.find(piece); at != std::wstring::npos; at = text.find(piece, at + 1)) ++count;
    return count;
}

TEST_F(WebAlbumRunTest, ThirteenFilesOnFourByThreeMakeTwoSheets) {
    fs::create_directories(out);
    const auto result = Build(Settings(4, 3), Pictures(13));
    EXPECT_EQ(result.sheets, 2);
    EXPECT_EQ(result.thumbnails, 13);
    const std::wstring first = Sheet(1);
    EXPECT_EQ(Count(first, L"</tr>\n"), 3u);
    EXPECT_EQ(Count(first, L"<td></td>"), 0u);
    EXPECT_NE(first.find(L"<td><a href=\"sheet_2.html\">次へ≫></a></td>"), std::wstring::npos);

    const std::wstring cell = L"<td align=center width=128 height=96 bgcolor=#C0C0C0><img border=0 src=\"sh_p12.jpg\" "
                              L"alt=\"\"><br>p12.bmp</td>\n";
    const std::wstring expected =
        L"<head>\n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=shift_jis\">\n"
        L"<meta http-equiv=\"Content-Language\" content=\"ja\">\n"
        L"<meta name=\"GENERATOR\" content=\"Northcape Web Album\"><title>sheet[1]</title>\n"
        L"<style type=\"text/css\">\n<!--\na { text-decoration:none; }\n"
        L"a:link { color:#003399; text-decoration:none; }\n"
        L"a:visited {color:#003399; text-decoration:none; }\n"
        L"a:hover { color:#ffffff; background-color:#003399; text-decoration:none; }\n"
        L"body { font: , , ; font-size: 10pt; }\n"
        L"td { font: , , ; font-size: 10pt; vertical-align: middle;\n}\n//-->\n</style>\n"
        L"</head>\n<body><center>\n<table border=1 cellpadding=2>\n<tr>\n" +
        cell +
        L"<td></td>\n<td></td>\n<td></td>\n</tr>\n</table>\n"
        L"<p><br></p><table><tr><td>2/2ページ&nbsp;[&nbsp;</td><td><a href=\"sheet_1.html\">&nbsp;1&nbsp;</a></td>"
        L"<td><b>&nbsp;2&nbsp;</b></td><td>&nbsp;]&nbsp;</td><td><a href=\"sheet_1.html\">≪前へ</a></td>"
        L"</tr></table>\n</center></body></html>\n";
    EXPECT_EQ(Sheet(2), expected);
    EXPECT_EQ(lxtest::ReadFile(out / "sh_p12.jpg").at(1), 0xD8) << "the thumbnails are real JPEG files";
    // Progress counts the short last sheet's files as the album always has: 1 x 1 + 0 + 1.
    EXPECT_EQ(sink.events.end()[-2], L"progress 2/13");
}

TEST_F(WebAlbumRunTest, TitleNavigationAndBorderFollowTheSettings) {
    struct Row {
        std::wstring title;
        uint32_t options;
        std::vector<std::wstring> present, absent;
    };
    const Row rows[] = {
        {L"", lx::kAlbumTableBorder, {L"<title>sheet[0]</title>", L"<table border=1 "},
         {L"<p>sheet", L"≪前へ", L"次へ", L"<a href=\"sheet_"}},
        {L"旅&<行>", 0, {L"<title>旅&<行>[0]</title>", L"<p>旅&<行></p>\n", L"<table border=0 ", L"<b>&nbsp;1&nbsp;</b>"},
         {L"&amp;", L"&lt;"}},
    };
    for (const Row& row : rows) {
        auto settings = Settings(4, 3);
        lx::SetAlbumTitle(settings, row.title);
        settings.options = row.options;
        fs::create_directories(out);
        Build(settings, Pictures(2));
        const std::wstring sheet = Sheet(1);
        for (const auto& piece : row.present) EXPECT_NE(sheet.find(piece), std::wstring::npos) << piece;
        for (const auto& piece : row.absent) EXPECT_EQ(sheet.find(piece), std::wstring::npos) << piece;
    }
}

TEST_F(WebAlbumRunTest, LinksByModeAndCopying) {
    struct Row {
        int mode;
        bool copy;
        std::wstring source;
        std::wstring link;  // as written in the sheet
    };
    const std::wstring inside = out.wstring() + L"/sub/A&B.JPG";
    const Row rows[] = {
        {lx::kLinkAbsolute, false, L"D:\\Pics\\A.JPG", L"<a href=\"D:/Pics/A.JPG\">"},
        // A browser would cut the link at "#" and read "%41" as "A".
        {lx::kLinkAbsolute, false, L"D:\\#1\\100%41.JPG", L"<a href=\"D:/%231/100%2541.JPG\">"},
        {lx::kLinkRelative, false, inside, L"<a href=\"./sub/A&B.JPG\">"},
        {lx::kLinkRelative, false, L"E:\\other\\x.png", L"<a href=\"E:/other/x.png\">"},
        {lx::kLinkRelative, true, L"E:\\other\\x.png", L"<a href=\"x.png\">"},
        {lx::kLinkNone, true, L"E:\\other\\x.png", L""},
    };
    for (const Row& row : rows) {
        auto settings = Settings(4, 3);
        lx::SetLinkMode(settings, row.mode);
        if (row.copy) settings.options |= lx::kAlbumCopySources;
        files_.copies.clear();
        Build(settings, {row.source});
        const std::wstring sheet = Sheet(1);
        if (row.link.empty()) {
            EXPECT_EQ(sheet.find(L"<a href=\"x"), std::wstring::npos);
            EXPECT_EQ(sheet.find(L"</a></td>\n"), std::wstring::npos);
        } else {
            EXPECT_NE(sheet.find(row.link), std::wstring::npos) << row.link;
        }
        EXPECT_EQ(files_.copies.size(), row.copy ? 1u : 0u);
    }
    EXPECT_EQ(lx::ThumbnailFileName(L"D:\\Pics\\A.JPG", lx::kThumbJpeg, files_), L"sh_a.jpg");
    EXPECT_EQ(lx::ThumbnailFileName(L"D:\\Pics\\B.Jpeg", lx::kThumbJpeg, files_), L"sh_b.jpeg");
    EXPECT_EQ(lx::ThumbnailFileName(L"D:\\Pics\\C.JPG", lx::kThumbPng, files_), L"sh_c.png");
    EXPECT_EQ(lx::ThumbnailFileName(L"D:\\Pics\\D.tif", lx::kThumbGif, files_), L"sh_d.gif");
}

TEST(AlbumThumbnailSize, DivisorStepsOfAQuarter) {
    struct Row {
        int width, height, boxWidth, boxHeight;
        lx::ThumbSize expected;
    };
    const Row rows[] = {
        {1600, 1200, 128, 96, {128, 96}},  // d = 12.5
        {1000, 1000, 128, 96, {95, 95}},   // d = 10.5
        {100, 80, 128, 96, {100, 80}},     // fits: never enlarged
        {6000, 4000, 128, 96, {128, 85}},  // d = 46.75: 128.3 truncates to 128
        {5000, 10, 0, -3, {1, 1}},         // a stored box below 1 counts as 1, no side becomes 0
    };
    for (const Row& row : rows)
        EXPECT_EQ(lx::AlbumThumbnailSize(row.width, row.height, row.boxWidth, row.boxHeight), row.expected)
            << row.width << "x" << row.height;
}

TEST_F(WebAlbumRunTest, CancelBeforeAnImageStillClosesTheSheet) {
    fs::create_directories(out);
    sink.cancelAfterChecks = 2;  // the sheet's check and the first image's pass; the second image's stops
    const auto result = Build(Settings(4, 3), Pictures(20));
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.sheets, 1);
    const std::wstring sheet = Sheet(1);
    EXPECT_EQ(Count(sheet, L"<img "), 1u);
    EXPECT_NE(sheet.find(L"</td>\n<td></td>\n<td></td>\n<td></td>\n</tr>\n</table>\n<p><br></p>"), std::wstring::npos);
    EXPECT_NE(sheet.find(L"1/2ページ"), std::wstring::npos);
    EXPECT_TRUE(sheet.ends_with(L"</center></body></html>\n"));
}

TEST_F(WebAlbumRunTest, ASheetThatCannotBeCreatedStopsQuietlyKeepingEarlierOnes) {
    fs::create_directories(out);
    files_.refuseSheet = 1;
    auto settings = Settings(1, 1);
    settings.options |= lx::kAlbumOpenBrowser;
    const auto result = Build(settings, Pictures(3));
    EXPECT_EQ(result.sheets, 1);
    EXPECT_EQ(files_.sheetOrder.size(), 1u);
    EXPECT_EQ(files_.opened, std::vector<std::wstring>{(out / "sheet_1.html").wstring()});
    EXPECT_TRUE(std::none_of(sink.events.begin(), sink.events.end(),
                             [](const std::wstring& e) { return e.starts_with(L"message"); }));
}

// An undecodable file gets its name without a thumbnail; a source already in the output
// folder under the name another file's thumbnail takes is never written over, nor copied
// onto itself.
TEST_F(WebAlbumRunTest, UndecodableAndListedSourcesAreLeftAlone) {
    fs::create_directories(out);
    const fs::path listed = out / "sh_p0.jpg";
    lxtest::WriteFile(listed, std::vector<uint8_t>{1, 2, 3});
    lxtest::WriteFile(scratch / "broken.png", std::vector<uint8_t>{0x89, 'P', 'N', 'G', 1, 2, 3});
    auto files = Pictures(1);
    files.push_back((scratch / "broken.png").wstring());
    files.push_back(listed.wstring());
    auto settings = Settings(4, 3);
    settings.options |= lx::kAlbumCopySources;
    EXPECT_EQ(Build(settings, files).thumbnails, 0) << "p0.bmp's would take the listed name";
    EXPECT_NE(Sheet(1).find(L"bgcolor=#C0C0C0>broken.png</td>\n"), std::wstring::npos);
    EXPECT_FALSE(fs::exists(out / "sh_broken.jpg"));
    EXPECT_EQ(lxtest::ReadFile(listed), (std::vector<uint8_t>{1, 2, 3}));
    EXPECT_EQ(files_.copies.size(), 2u);
}

}  // namespace
