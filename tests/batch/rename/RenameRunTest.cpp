#include "RenameRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "FakeRenameWorld.h"
#include "LogicalOrder.h"

namespace lx {
namespace {

using lxtest::ShotAt;

class RenameRunTest : public ::testing::Test {
protected:
    lxtest::MemoryFolder folder;
    lxtest::RecordingSink sink;
    std::map<std::wstring, ShootingTime> exif;  // files that carry a shooting time
    const RenameProgressTexts texts{L"title", L"line"};

    // Adds photographs to the folder; without a time they have no Exif date.
    void Add(std::initializer_list<std::wstring> paths, std::optional<ShootingTime> time = ShotAt(2024, 5, 7)) {
        for (const std::wstring& path : paths) {
            folder.files.insert(path);
            if (time) exif[path] = *time;
        }
    }

    RenameServices Services() {
        RenameServices services;
        services.readShotTime = [this](const std::wstring& path) -> std::optional<ShootingTime> {
            const auto found = exif.find(path);
            if (found == exif.end()) return std::nullopt;
            return found->second;
        };
        services.fileSystem = folder.FileSystem();
        services.compareNames = CompareLogical;
        return services;
    }

    RenameRunResult Run(const RenameChoices& choices, const std::vector<std::wstring>& files) {
        return RunRenameToExifDate(choices, files, sink, Services(), texts);
    }
    // How many of the sink's events start with `what` ("start", "end", ...).
    long Events(const std::wstring& what) const {
        return std::count_if(sink.events.begin(), sink.events.end(),
                             [&](const std::wstring& e) { return e.rfind(what, 0) == 0; });
    }
};

TEST_F(RenameRunTest, NoFileWithShootingTimeShowsTheMessageAndRenamesNothing) {
    Add({L"d\\plain.jpg"}, std::nullopt);
    exif[L"d\\gone.jpg"] = ShotAt(2024, 5, 7);  // a time would be found, but the file is not there
    const RenameRunResult result = Run({kItemDate8, 0, 0, 0}, {L"d\\plain.jpg", L"d\\gone.jpg"});
    EXPECT_EQ(result.listed, 0);
    EXPECT_EQ(sink.messages, (std::vector<unsigned>{kMsgNoShotTime}));
    EXPECT_EQ(Events(L"start"), 0);
    EXPECT_EQ(folder.moves, 0);
}

TEST_F(RenameRunTest, NamesTheExampleAndReportsIt) {
    Add({L"d\\IMG_0001.jpg"});
    Add({L"d\\other.jpg"}, std::nullopt);
    const RenameRunResult result = Run({kItemDate8, kItemNone, kItemCounter1, kResetNever},
                                       {L"d\\other.jpg", L"d\\IMG_0001.jpg"});
    EXPECT_EQ(result.listed, 1);
    EXPECT_EQ(result.renamed, 1);
    EXPECT_TRUE(result.confirmed);
    EXPECT_EQ(folder.files, (std::set<std::wstring>{L"d\\other.jpg", L"d\\20240507_1.jpg"}));
    EXPECT_EQ(sink.messages, (std::vector<unsigned>{kMsgConfirmRename}));
    EXPECT_EQ(sink.reports, (std::vector<std::wstring>{L"d\\IMG_0001.jpg -> d\\20240507_1.jpg"}));
    EXPECT_EQ(Events(L"start title | line"), 1);
    EXPECT_EQ(Events(L"start"), 1);
    EXPECT_EQ(Events(L"end"), 1);
}

TEST_F(RenameRunTest, AnsweringNoLeavesEveryFile) {
    Add({L"d\\a.jpg"});
    sink.answer = kIdNo;
    const RenameRunResult result = Run({kItemDate8, 0, 0, 0}, {L"d\\a.jpg"});
    EXPECT_FALSE(result.confirmed);
    EXPECT_EQ(folder.moves, 0);
    EXPECT_EQ(Events(L"start"), 0);
}

TEST_F(RenameRunTest, NoItemsAsksNothingAndOldNameAloneRenamesNothing) {
    Add({L"d\\a.jpg"});
    const RenameRunResult none = Run({}, {L"d\\a.jpg"});
    EXPECT_EQ(none.listed, 1);
    EXPECT_TRUE(sink.messages.empty());
    const RenameRunResult oldName = Run({kItemNone, kItemNone, kItemOldName, kResetNever}, {L"d\\a.jpg"});
    EXPECT_TRUE(oldName.confirmed);
    EXPECT_EQ(oldName.renamed, 0);
    EXPECT_EQ(folder.moves, 0);
    EXPECT_EQ(folder.files, (std::set<std::wstring>{L"d\\a.jpg"}));
}

TEST_F(RenameRunTest, AnEarlierRenameOfTheSameRunPushesTheNextToNumberOne) {
    Add({L"d\\IMG10.jpg"}, ShotAt(2024, 5, 7, 8));
    Add({L"d\\IMG2.jpg", L"d\\IMG3.jpg"}, ShotAt(2024, 5, 7, 20));
    Run({kItemDate8, 0, 0, 0}, {L"d\\IMG3.jpg", L"d\\IMG2.jpg", L"d\\IMG10.jpg"});
    EXPECT_EQ(folder.files,
              (std::set<std::wstring>{L"d\\20240507.jpg", L"d\\20240507(1).jpg", L"d\\20240507(2).jpg"}));
    // Taken first, IMG10 got the plain name; of the two taken together IMG2 comes first.
    EXPECT_EQ(sink.reports, (std::vector<std::wstring>{L"d\\IMG10.jpg -> d\\20240507.jpg",
                                                       L"d\\IMG2.jpg -> d\\20240507(1).jpg",
                                                       L"d\\IMG3.jpg -> d\\20240507(2).jpg"}));
}

TEST_F(RenameRunTest, LockedFileAndTakenNamesLoseNothing) {
    Add({L"d\\a.jpg", L"d\\b.jpg"});
    Add({L"d\\20240507_1.jpg"}, std::nullopt);
    folder.locked = {L"d\\a.jpg"};
    EXPECT_EQ(Run({kItemDate8, kItemCounter1, 0, 0}, {L"d\\a.jpg", L"d\\b.jpg"}).renamed, 1);
    EXPECT_EQ(folder.files, (std::set<std::wstring>{L"d\\a.jpg", L"d\\20240507_1.jpg", L"d\\20240507_2.jpg"}));
    EXPECT_EQ(sink.reports, (std::vector<std::wstring>{L"d\\b.jpg -> d\\20240507_2.jpg"}));
}

TEST_F(RenameRunTest, CancellingStopsBetweenFiles) {
    Add({L"d\\a.jpg", L"d\\b.jpg", L"d\\c.jpg"});
    sink.cancelAfterChecks = 1;
    const RenameRunResult result = Run({kItemCounter1, 0, 0, 0}, {L"d\\a.jpg", L"d\\b.jpg", L"d\\c.jpg"});
    EXPECT_EQ(result.renamed, 1);
    EXPECT_EQ(folder.files, (std::set<std::wstring>{L"d\\1.jpg", L"d\\b.jpg", L"d\\c.jpg"}));
    EXPECT_EQ(Events(L"end"), 1);
}

}  // namespace
}  // namespace lx
