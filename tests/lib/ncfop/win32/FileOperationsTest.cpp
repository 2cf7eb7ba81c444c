#include "FileOperations.h"

#include <shlobj.h>

#include "../../nccore/win32/DialogDriver.h"
#include "RecycleBin.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using lxtest::DialogDriver;
using lxtest::RecycleBinHolds;

// Del in the viewer: the file leaves its folder for the recycle bin, without a question; its
// neighbours stay.
TEST(RecycleBin, MovesFilesAwayWithoutAsking) {
    lxtest::ScratchDir scratch("deleteone");
    const std::wstring name = L"lx-deleted-" + std::to_wstring(GetCurrentProcessId()) + L".jpg";
    const auto file = scratch.path() / name, spread = scratch / "spread.png", other = scratch / "keep.png";
    for (const auto& path : {file, spread, other}) lxtest::WriteFile(path, std::string("x"));
    EXPECT_TRUE(lx::ShellDeleteFiles(nullptr, lx::ShellPathList(spread.wstring()).c_str(),
                                     FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT));
    EXPECT_FALSE(std::filesystem::exists(spread));
    EXPECT_TRUE(lx::DeleteOneFile(file.c_str()));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_TRUE(RecycleBinHolds(name));
    EXPECT_FALSE(lx::DeleteOneFile(file.c_str()));
    EXPECT_FALSE(lx::DeleteOneFile(nullptr));
    EXPECT_FALSE(lx::ShellDeleteFiles(nullptr, L"", FOF_ALLOWUNDO));
}

// A file given up with its data kept at hand: it goes to the recycle bin and stays there, or
// comes back whole; a read-only or missing file is not given up at all.
TEST(RecycledFile, GoesToTheBinOrComesBackWhole) {
    lxtest::ScratchDir scratch("recycled");
    const std::wstring unique = std::to_wstring(GetCurrentProcessId());
    const struct {
        const wchar_t* name;
        bool readOnly, exists, putBack, moved;
    } cases[] = {
        {L"kept", false, true, false, true},
        {L"back", false, true, true, true},
        {L"readonly", true, true, false, false},
        {L"missing", false, false, false, false},
    };
    for (const auto& c : cases) {
        const std::wstring name = L"lx-" + std::wstring(c.name) + L"-" + unique + L".png";
        const auto file = scratch.path() / name;
        if (c.exists) lxtest::WriteFile(file, std::string("pixels of ") + std::to_string(name.size()));
        const auto bytes = lxtest::ReadFile(file);
        if (c.readOnly) SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
        {
            lx::RecycledFile recycled(nullptr, file.wstring());
            EXPECT_EQ(recycled.Moved(), c.moved) << c.name;
            EXPECT_EQ(std::filesystem::exists(file), c.exists && !c.moved) << c.name;
            if (c.putBack) EXPECT_TRUE(recycled.PutBack()) << c.name;
        }
        EXPECT_EQ(std::filesystem::exists(file), c.exists && (c.putBack || !c.moved)) << c.name;
        if (std::filesystem::exists(file)) EXPECT_EQ(lxtest::ReadFile(file), bytes) << c.name;
        if (c.moved) EXPECT_TRUE(RecycleBinHolds(name)) << c.name;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(scratch.path()), {}), c.exists && (c.putBack || !c.moved) ? 1 : 0)
            << c.name << ": no spare name is left behind";
        SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
        std::filesystem::remove(file);
    }
}

// A file on another file system than Wine's trash (here in memory, under /dev/shm): the
// shell copies it into the trash, or deletes it outright when it cannot. Either way the file
// is not lost: it is in the bin, or (when that cannot be told) back in its place whole.
TEST(RecycledFile, AFileFromAnotherFileSystemIsNeverLost) {
    const std::wstring name = L"lx-elsewhere-" + std::to_wstring(GetCurrentProcessId()) + L".png";
    const std::filesystem::path file = L"Z:\\dev\\shm\\" + name;
    lxtest::WriteFile(file, std::string("the only copy"));
    bool moved = false;
    {
        lx::RecycledFile recycled(nullptr, file.wstring());
        moved = recycled.Moved();
    }
    EXPECT_TRUE(moved ? RecycleBinHolds(name) : lxtest::ReadFile(file).size() == 13);
    std::filesystem::remove(file);
}

TEST(EnsureOutputFolder, AcceptsOrCreatesAFolderAndShowsWhyAFileCannotBeOne) {
    lxtest::ScratchDir scratch("ensure");
    EXPECT_TRUE(lx::EnsureOutputFolder(nullptr, scratch.path().c_str()));
    const auto deep = scratch / "out" / "web album";
    EXPECT_TRUE(lx::EnsureOutputFolder(nullptr, deep.c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(deep));
    const auto file = scratch / "taken";
    lxtest::WriteFile(file, std::string("x"));
    std::wstring texts;
    DialogDriver driver(L"Quarry7", [&](HWND box) {
        texts = lxtest::AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    EXPECT_FALSE(lx::EnsureOutputFolder(nullptr, file.c_str()));
    EXPECT_TRUE(driver.Found());
    EXPECT_NE(texts.find(file.wstring()), std::wstring::npos) << texts;
}

TEST(BrowseForFolder, StartsAtTheGivenFolderAndReturnsTheChoiceOrLeavesTheBuffer) {
    lxtest::ScratchDir scratch("browse");
    wchar_t folder[520] = {};
    lstrcpynW(folder, scratch.path().c_str(), 520);
    {
        DialogDriver driver(L"", DialogDriver::Press(IDOK));
        ASSERT_TRUE(lx::BrowseForFolder(nullptr, folder));
        EXPECT_TRUE(driver.Found());
        EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(folder), scratch.path())) << folder;
    }
    wchar_t kept[520] = L"C:\\windows";
    DialogDriver driver(L"", DialogDriver::Press(IDCANCEL));
    EXPECT_FALSE(lx::BrowseForFolder(nullptr, kept));
    EXPECT_TRUE(driver.Found());
    EXPECT_STREQ(kept, L"C:\\windows");
}

}  // namespace
