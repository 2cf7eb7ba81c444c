#include "RenameFiles.h"

#include <gtest/gtest.h>

#include "FakeRenameWorld.h"

namespace lx {
namespace {

RenameEntry Named(const std::wstring& from, const std::wstring& to) {
    RenameEntry entry;
    entry.oldPath = from;
    entry.newPath = to;
    return entry;
}

TEST(RenameFiles, FreeTargetInsertsTheFirstFreeNumberBeforeTheExtension) {
    lxtest::MemoryFolder folder;
    folder.files = {L"C:\\p\\a.b\\x.jpg", L"C:\\p\\a.b\\x(1).jpg", L"C:\\p\\a.b\\x(3).jpg"};
    const auto exists = folder.FileSystem().exists;
    EXPECT_EQ(FreeTargetPath(L"C:\\p\\a.b\\y.jpg", exists), L"C:\\p\\a.b\\y.jpg");
    EXPECT_EQ(FreeTargetPath(L"C:\\p\\a.b\\x.jpg", exists), L"C:\\p\\a.b\\x(2).jpg");
    folder.files.insert(L"C:\\p\\a.b\\noext");
    EXPECT_EQ(FreeTargetPath(L"C:\\p\\a.b\\noext", folder.FileSystem().exists), L"C:\\p\\a.b\\noext(1)");
}

TEST(RenameFiles, GivesUpWhenNumbersUpTo999AreTaken) {
    int asked = 0;
    const auto allTaken = [&](const std::wstring&) { ++asked; return true; };
    EXPECT_EQ(FreeTargetPath(L"x.jpg", allTaken), L"");
    EXPECT_EQ(asked, 1000);  // the name itself and (1) to (999)

    const auto onlyLastFree = [](const std::wstring& path) { return path != L"x(999).jpg"; };
    EXPECT_EQ(FreeTargetPath(L"x.jpg", onlyLastFree), L"x(999).jpg");
}

TEST(RenameFiles, LeavesUnnamedAndUnchangedEntriesAlone) {
    lxtest::MemoryFolder folder;
    folder.files = {L"d\\IMG.jpg"};
    EXPECT_FALSE(RenameEntryFile(Named(L"d\\IMG.jpg", L""), folder.FileSystem()).renamed);
    EXPECT_FALSE(RenameEntryFile(Named(L"", L"d\\new.jpg"), folder.FileSystem()).renamed);
    // Exactly the same path: no "(1)" copy of a file onto itself.
    EXPECT_FALSE(RenameEntryFile(Named(L"d\\IMG.jpg", L"d\\IMG.jpg"), folder.FileSystem()).renamed);
    EXPECT_EQ(folder.moves, 0);
    EXPECT_EQ(folder.files, (std::set<std::wstring>{L"d\\IMG.jpg"}));
}

}  // namespace
}  // namespace lx
