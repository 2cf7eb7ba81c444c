// Split, contrast resize and thumbnail pickout through the DLL's exports, as the host calls
// them, for what lxhost's unattended runs (tests/module/unattended-batch.sh) never reach: the
// task dialog about portraits, the pickout dialog, a read-only source. A second thread answers
// as a user would.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "../lib/nccore/win32/DialogDriver.h"
#include "DropBlock.h"
#include "ImageLoad.h"
#include "ImageSave.h"
#include "ModuleTest.h"
#include "RecycleBin.h"
#include "RegistryTestKey.h"
#include "TestFiles.h"

namespace {

namespace fs = std::filesystem;
using lxtest::Dll;
using lxtest::Entry;
using lxtest::ScratchDir;
using lxtest::WaitFor;
using lxtest::WideEntry;

const wchar_t* const kSplitTitle = L"イメージの分割";
const wchar_t* const kPickoutTitle = L"サムネイルの抽出";
constexpr UINT kTdmClickButton = WM_USER + 102, kTdmClickVerification = WM_USER + 113;

// Calls `entry` with a request holding `files` and `path`, as lxhost does.
void CallWithRequest(const char* entry, const std::vector<fs::path>& files, const std::wstring& path = L"") {
    std::vector<std::wstring> names;
    for (const auto& f : files) names.push_back(f.wstring());
    lxtest::RegistryTestKey key(L"batch");
    const std::vector<uint8_t> drop = lxtest::WideDropBlock(names);
    key.Set(L"drop", REG_BINARY, drop.data(), static_cast<DWORD>(drop.size()));
    key.SetText(L"path", path);
    key.Close();
    std::wstring line = key.name();
    Entry<WideEntry>(entry)(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
    EXPECT_FALSE(key.Exists()) << entry << " left its request";
}

// A 24-bit bitmap of one colour.
void WritePicture(const fs::path& path, int width, int height) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    ASSERT_TRUE(lx::SaveBmpFile(path, dib)) << path;
}

// The width of a JPEG file, 0 for anything else.
int JpegWidth(const fs::path& path) {
    const auto bytes = lxtest::ReadFile(path);
    const auto dib = lx::LoadImageFile(path);
    return dib && bytes.size() > 2 && bytes[0] == 0xFF && bytes[1] == 0xD8 ? dib->width() : 0;
}

// Runs split over `files`, answering the task dialogs titled kSplitTitle with the buttons of
// `script` in turn (ticking the box first when asked); the content text of each.
struct Answer {
    int button;
    bool tick;
};
std::vector<std::wstring> SplitAnswering(const std::vector<fs::path>& files, const std::vector<Answer>& script) {
    std::vector<std::wstring> texts;
    {
        lxtest::DialogDriver driver(kSplitTitle, [&](HWND dialog) {
            for (const Answer& answer : script) {
                if (!texts.empty() && !WaitFor([&] { return (dialog = FindWindowW(L"#32770", kSplitTitle)) && IsWindowVisible(dialog); }, 10000))
                    return;
                Sleep(100);
                texts.push_back(lxtest::AllChildTexts(dialog));
                if (answer.tick) SendMessageW(dialog, kTdmClickVerification, TRUE, FALSE);
                PostMessageW(dialog, kTdmClickButton, static_cast<WPARAM>(answer.button), 0);
                WaitFor([&] { return !IsWindow(dialog); }, 10000);
            }
        });
        CallWithRequest("RunSplitImageW", files);
    }
    return texts;
}

TEST(SplitImageExport, PortraitsAreAskedAboutAndTheBoxAnswersTheRest) {
    ScratchDir dir("split-portrait");
    const std::string unique = std::to_string(GetCurrentProcessId());
    std::vector<fs::path> talls;
    for (const char* stem : {"tall1-", "tall2-", "tall3-"}) {
        talls.push_back(dir / (stem + unique + ".bmp"));
        WritePicture(talls.back(), 150, 200);
    }
    const auto texts = SplitAnswering(talls, {{IDNO, false}, {IDYES, true}});
    ASSERT_EQ(texts.size(), 2u) << "the box ticked with Yes asks no more";
    const std::wstring asked = talls[0].filename().wstring() + L" は縦長（150 x 200 pixel）のイメージです。";
    EXPECT_NE(texts[0].find(asked), std::wstring::npos) << texts[0];
    EXPECT_NE(texts[0].find(L"以降も同様に処理する"), std::wstring::npos) << texts[0];
    for (size_t i = 0; i < talls.size(); ++i) {
        const fs::path right = fs::path(talls[i]).replace_extension().wstring() + L"-1.jpg";
        EXPECT_EQ(JpegWidth(right), i == 0 ? 0 : 75) << right;
        EXPECT_EQ(fs::exists(talls[i]), i == 0) << talls[i];
        if (i > 0) EXPECT_TRUE(lxtest::RecycleBinHolds(talls[i].filename().wstring())) << talls[i];
    }
    EXPECT_EQ(SplitAnswering({talls[0]}, {{IDCANCEL, false}}).size(), 1u);
    EXPECT_TRUE(fs::exists(talls[0]));
    EXPECT_EQ(JpegWidth(fs::path(talls[0]).replace_extension().wstring() + L"-1.jpg"), 0);
}

TEST(ContrastResizeExport, AReadOnlySourceStaysAndTheResultGoesBesideIt) {
    ScratchDir dir("contrast-export");
    const fs::path locked = dir / "locked.bmp";
    WritePicture(locked, 300, 400);
    SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_READONLY);
    const auto lockedBytes = lxtest::ReadFile(locked);
    CallWithRequest("RunContrastResizeW", {locked});
    EXPECT_EQ(JpegWidth(locked.wstring() + L".cr.jpg"), 300);
    EXPECT_EQ(lxtest::ReadFile(locked), lockedBytes);
    SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_NORMAL);
}

// Fills the pickout dialog: the folder field, the radio of the choice, then OK. Keeps the
// folder the dialog started with, and whether the dialog was still there after OK.
struct PickoutAnswer {
    std::wstring folder;
    bool largest = true;
    std::wstring shownFolder;
    bool shownLargest = false;
};

void AnswerPickout(HWND dialog, PickoutAnswer& answer) {
    answer.shownFolder = lxtest::WindowText(GetDlgItem(dialog, 1205));
    answer.shownLargest = IsDlgButtonChecked(dialog, 1209) == BST_CHECKED;
    SetDlgItemTextW(dialog, 1205, answer.folder.c_str());
    SendMessageW(GetDlgItem(dialog, answer.largest ? 1209 : 1206), BM_CLICK, 0, 0);
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
}

fs::path Photo(const char* name) { return lxtest::SourceDir() / "tests/batch/pickout/photos" / name; }

std::wstring SavedPickoutPath() {
    wchar_t text[520] = {};
    DWORD bytes = sizeof text;
    RegGetValueW(HKEY_CURRENT_USER, L"software\\Northcape\\Applets\\lxpicture\\Exif", L"PickoutPath", RRF_RT_REG_SZ,
                 nullptr, text, &bytes);
    return text;
}

TEST(PickoutThumbnailExport, WritesTheChosenThumbnailIntoTheChosenFolder) {
    ScratchDir dir("pickout-export");
    const fs::path raw = dir / "IMG_0001.CR2";
    fs::copy_file(Photo("IMG_0001.CR2"), raw);
    fs::copy_file(Photo("IMG_0002.CR2"), dir / "IMG_0002.CR2");
    const fs::path out = dir / "thumbs" / "new";
    const struct {
        bool largest;
        const char* written;
        size_t bytes;  // as exiftool -b -PreviewImage / -ThumbnailImage extract them
    } runs[] = {{true, "IMG_0001.thm(L).jpg", 855}, {false, "IMG_0001.thm(S).jpg", 424}};
    for (const auto& run : runs) {
        PickoutAnswer answer{out.wstring(), run.largest};
        lxtest::DialogDriver driver(kPickoutTitle, [&](HWND dialog) { AnswerPickout(dialog, answer); });
        CallWithRequest("RunPickoutThumbnailW", {raw, dir / "IMG_0002.CR2"}, dir.path().wstring());
        ASSERT_TRUE(driver.Found());
        EXPECT_EQ(answer.shownFolder, dir.path().wstring()) << "the host's folder comes first";
        EXPECT_TRUE(answer.shownLargest) << "the largest is offered";
        EXPECT_EQ(lxtest::ReadFile(out / run.written).size(), run.bytes) << run.written;
    }
    EXPECT_EQ(SavedPickoutPath(), out.wstring());
    // Run again: the file is there, so nothing is written over it.
    lxtest::WriteFile(out / "IMG_0001.thm(L).jpg", std::string("kept"));
    PickoutAnswer again{out.wstring(), true};
    lxtest::DialogDriver driver(kPickoutTitle, [&](HWND dialog) { AnswerPickout(dialog, again); });
    CallWithRequest("RunPickoutThumbnailW", {raw}, L"");
    EXPECT_EQ(again.shownFolder, out.wstring()) << "without a host folder the saved one is offered";
    EXPECT_EQ(lxtest::ReadFile(out / "IMG_0001.thm(L).jpg").size(), 4u);
}

TEST(PickoutThumbnailExport, AFolderFieldNamingAFileIsRefused) {
    ScratchDir dir("pickout-refuse");
    const fs::path raw = dir / "IMG_0001.CR2";
    fs::copy_file(Photo("IMG_0001.CR2"), raw);
    bool stayed = false;
    lxtest::DialogDriver driver(kPickoutTitle, [&](HWND dialog) {
        for (const std::wstring& refused : {raw.wstring(), std::wstring()}) {
            SetDlgItemTextW(dialog, 1205, refused.c_str());
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
            Sleep(200);
            stayed = IsWindowVisible(dialog);
            if (!stayed) return;
        }
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    CallWithRequest("RunPickoutThumbnailW", {raw}, dir.path().wstring());
    ASSERT_TRUE(driver.Found());
    EXPECT_TRUE(stayed) << "OK with an existing file or an empty field keeps the dialog open";
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir.path())) ++count;
    EXPECT_EQ(count, 1u) << "a cancelled pickout writes nothing";
}

}  // namespace
