// The rename run over real files whose shooting times exiftool wrote, read back by our Exif
// reader, renamed on disk.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "ExifReader.h"
#include "FakeRenameWorld.h"
#include "LogicalOrder.h"
#include "RenameRun.h"
#include "TestFiles.h"

namespace lx {
namespace {

namespace fs = std::filesystem;

class RenameExifFilesTest : public ::testing::Test {
protected:
    void SetUp() override {
#ifdef _WIN32
        GTEST_SKIP() << "exiftool runs on the build machine only";
#endif
        ASSERT_EQ(lxtest::Run("convert -size 8x8 xc:gray -strip '" + (dir / "base.jpg").string() + "'"), 0);
    }

    // A copy of the base JPEG named `name`, taken at `when` ("YYYY:MM:DD HH:MM:SS"), or
    // without any Exif data when `when` is empty.
    std::wstring Photo(const std::string& name, const std::string& when) {
        const fs::path path = dir / name;
        fs::copy_file(dir / "base.jpg", path);
        if (!when.empty()) {
            const int status = lxtest::Run("exiftool -q -overwrite_original '-DateTimeOriginal=" + when + "' '" +
                                           path.string() + "'");
            EXPECT_EQ(status, 0);
        }
        return path.wstring();
    }

    std::set<std::string> Names() {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir.path())) names.insert(entry.path().filename().string());
        names.erase("base.jpg");
        return names;
    }

    RenameServices DiskServices() {
        RenameServices services;
        services.readShotTime = [](const std::wstring& path) { return ReadShootingTime(fs::path(path)); };
        services.fileSystem.exists = [](const std::wstring& path) { return fs::exists(fs::path(path)); };
        services.fileSystem.move = [](const std::wstring& from, const std::wstring& to) {
            std::error_code error;
            if (fs::exists(fs::path(to))) return false;
            fs::rename(fs::path(from), fs::path(to), error);
            return !error;
        };
        services.compareNames = CompareLogical;
        return services;
    }

    RenameRunResult Run(const RenameChoices& choices, const std::vector<std::wstring>& files) {
        return RunRenameToExifDate(choices, files, sink, DiskServices(), {L"t", L"l"});
    }

    lxtest::ScratchDir dir{"rename-exif"};
    lxtest::RecordingSink sink;
};

TEST_F(RenameExifFilesTest, DateAndCounterFromExiftoolDates) {
    const std::wstring photo = Photo("IMG_0001.jpg", "2024:05:07 10:20:30");
    const std::wstring plain = Photo("plain.jpg", "");
    const RenameRunResult result = Run({kItemDate8, kItemNone, kItemCounter1, kResetNever}, {plain, photo});
    EXPECT_EQ(result.listed, 1);
    EXPECT_EQ(result.renamed, 1);
    EXPECT_EQ(Names(), (std::set<std::string>{"20240507_1.jpg", "plain.jpg"}));
}

TEST_F(RenameExifFilesTest, SameSecondGoesByLogicalNameAndEraYearsFollowTheTable) {
    const std::wstring img10 = Photo("IMG10.jpg", "2020:01:02 03:04:05");
    const std::wstring img2 = Photo("IMG2.jpg", "2020:01:02 03:04:05");
    const std::wstring old = Photo("old.jpg", "1990:03:04 12:00:00");
    Run({kItemEraDate, kItemHourMinuteSec, kItemCounter2, kResetNever}, {img10, img2, old});
    EXPECT_EQ(Names(), (std::set<std::string>{"H020304_120000_01.jpg", "H320102_030405_02.jpg",
                                              "H320102_030405_03.jpg"}));
    EXPECT_EQ(sink.reports.at(1), img2 + L" -> " + (dir / "H320102_030405_02.jpg").wstring());
}

TEST_F(RenameExifFilesTest, DayRuleKeepsCountingFromTheFifthOfMayToTheFifthOfJune) {
    const std::wstring may = Photo("a.jpg", "2024:05:05 09:00:00");
    const std::wstring june = Photo("b.jpg", "2024:06:05 09:00:00");
    Run({kItemMonthDay, kItemCounter1, kItemNone, kResetOnDay}, {may, june});
    EXPECT_EQ(Names(), (std::set<std::string>{"0505_1.jpg", "0605_2.jpg"}));
}

TEST_F(RenameExifFilesTest, TakenNamesAreNumberedAndNoFileIsLost) {
    const std::wstring first = Photo("x.jpg", "2024:05:07 10:00:00");
    const std::wstring second = Photo("y.jpg", "2024:05:07 11:00:00");
    Photo("20240507.jpg", "");
    Run({kItemDate8, kItemNone, kItemNone, kResetNever}, {first, second});
    EXPECT_EQ(Names(), (std::set<std::string>{"20240507.jpg", "20240507(1).jpg", "20240507(2).jpg"}));
}

TEST_F(RenameExifFilesTest, NoExifAmongTheFilesGivesMessage4108) {
    const std::wstring plain = Photo("plain.jpg", "");
    const RenameRunResult result = Run({kItemDate8, 0, 0, 0}, {plain, (dir / "missing.jpg").wstring()});
    EXPECT_EQ(result.listed, 0);
    EXPECT_EQ(sink.messages, (std::vector<unsigned>{kMsgNoShotTime}));
    EXPECT_EQ(Names(), (std::set<std::string>{"plain.jpg"}));
}

}  // namespace
}  // namespace lx
