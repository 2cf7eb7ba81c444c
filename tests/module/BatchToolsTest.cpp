// Split, contrast resize and thumbnail pickout through the DLL's exports, as the host calls
// them: a request key with the drop list, real files, the real task dialog, pickout dialog,
// progress dialog and recycle bin of Wine's shell. The questions are answered by a second
// thread, as a user would: the task dialog through its own messages (tick the box, press a
// button), the pickout dialog through its controls.
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

// A 24-bit picture with a different colour in each half, saved as PNG or BMP by extension.
void WritePicture(const fs::path& path, int width, int height) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t* pixel = dib.row(y) + 3 * x;
            pixel[0] = static_cast<uint8_t>(x < width / 2 ? 40 : 200);
            pixel[1] = static_cast<uint8_t>((x + y) & 0xff);
            pixel[2] = static_cast<uint8_t>(x < width / 2 ? 220 : 30);
        }
    const bool png = path.extension() == ".png";
    ASSERT_TRUE(png ? lx::SavePngFile(path, dib) : lx::SaveBmpFile(path, dib)) << path;
}

struct Loaded {
    int width = 0, height = 0, bits = 0;
    bool jpeg = false;
    bool blueSide = false;  // the middle pixel is of the right half's colour (more blue than red)
};

Loaded Load(const fs::path& path) {
    const auto bytes = lxtest::ReadFile(path);
    const auto dib = lx::LoadImageFile(path);
    if (!dib) return {};
    const uint8_t* middle = dib->row(dib->height() / 2) + (dib->bitCount() / 8) * (dib->width() / 2);
    return {dib->width(), dib->height(), dib->bitCount(), bytes.size() > 2 && bytes[0] == 0xFF && bytes[1] == 0xD8,
            dib->bitCount() >= 24 && middle[0] > middle[2]};
}

// Answers each task dialog titled kSplitTitle with the next button of `script` (ticking the
// box first when asked), keeping each content text.
class TaskDialogAnswers {
public:
    struct Answer {
        int button;
        bool tick;
    };
    explicit TaskDialogAnswers(std::vector<Answer> script) : script_(std::move(script)) {
        thread_ = std::thread([this] { Run(); });
    }
    ~TaskDialogAnswers() {
        stop_ = true;
        thread_.join();
    }
    const std::vector<std::wstring>& texts() const { return texts_; }

private:
    void Run() {
        for (const Answer& answer : script_) {
            HWND dialog = nullptr;
            if (!WaitFor([&] { return stop_ || (dialog = FindQuestion()) != nullptr; }, 30000) || !dialog) return;
            Sleep(100);
            texts_.push_back(lxtest::AllChildTexts(dialog));
            if (answer.tick) SendMessageW(dialog, kTdmClickVerification, TRUE, FALSE);
            PostMessageW(dialog, kTdmClickButton, static_cast<WPARAM>(answer.button), 0);
            WaitFor([&] { return !IsWindow(dialog); }, 10000);
        }
    }
    // The visible task dialog of this process titled kSplitTitle.
    static HWND FindQuestion() {
        HWND found = nullptr;
        EnumWindows(
            [](HWND window, LPARAM out) -> BOOL {
                DWORD process = 0;
                GetWindowThreadProcessId(window, &process);
                if (process != GetCurrentProcessId() || !IsWindowVisible(window) ||
                    lxtest::WindowText(window) != kSplitTitle)
                    return TRUE;
                *reinterpret_cast<HWND*>(out) = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&found));
        return found;
    }
    std::vector<Answer> script_;
    std::vector<std::wstring> texts_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

TEST(SplitImageExport, LandscapeImagesSplitIntoTwoJpegHalvesAndTheSourceIsRestorable) {
    ScratchDir dir("split-export");
    const std::wstring unique = std::to_wstring(GetCurrentProcessId());
    const fs::path spread = dir / "spread.bmp", odd = dir / "odd.bmp";
    const fs::path png = dir.path() / (L"scan-" + unique + L".png");
    WritePicture(spread, 2000, 1500);
    WritePicture(odd, 1001, 800);
    WritePicture(png, 640, 480);
    lxtest::WriteFile(dir / "broken.png", std::string("not a picture"));
    TaskDialogAnswers none({});
    CallWithRequest("RunSplitImageW", {dir / "broken.png", spread, odd, png});
    EXPECT_TRUE(none.texts().empty()) << "landscape images need no question";
    const struct {
        const char* file;
        int width, height;
        bool right;
    } halves[] = {{"spread-1.jpg", 1000, 1500, true}, {"spread-2.jpg", 1000, 1500, false},
                  {"odd-1.jpg", 501, 800, true}, {"odd-2.jpg", 500, 800, false}};
    for (const auto& half : halves) {
        const Loaded loaded = Load(dir / half.file);
        EXPECT_TRUE(loaded.jpeg) << half.file;
        EXPECT_EQ(loaded.width, half.width) << half.file;
        EXPECT_EQ(loaded.height, half.height) << half.file;
        EXPECT_EQ(loaded.blueSide, half.right) << half.file << " holds the other half";
    }
    EXPECT_TRUE(Load(dir.path() / (L"scan-" + unique + L"-1.jpg")).jpeg);
    EXPECT_FALSE(fs::exists(spread));
    EXPECT_FALSE(fs::exists(png));
    EXPECT_TRUE(fs::exists(dir / "broken.png"));
    ASSERT_TRUE(lxtest::RecycleBinHolds(png.filename().wstring()));
    ASSERT_TRUE(lxtest::RestoreFromRecycleBin(png.filename().wstring()));
    EXPECT_EQ(Load(png).width, 640) << "the source comes back whole from the recycle bin";
}

TEST(SplitImageExport, PortraitsAreAskedAboutAndTheBoxAnswersTheRest) {
    ScratchDir dir("split-portrait");
    for (const char* name : {"tall1.bmp", "tall2.bmp", "tall3.bmp"}) WritePicture(dir / name, 150, 200);
    TaskDialogAnswers answers({{IDNO, false}, {IDYES, true}});
    CallWithRequest("RunSplitImageW", {dir / "tall1.bmp", dir / "tall2.bmp", dir / "tall3.bmp"});
    ASSERT_EQ(answers.texts().size(), 2u) << "the box ticked with Yes asks no more";
    EXPECT_NE(answers.texts()[0].find(L"tall1.bmp は縦長（150 x 200 pixel）のイメージです。"), std::wstring::npos)
        << answers.texts()[0];
    EXPECT_NE(answers.texts()[0].find(L"以降も同様に処理する"), std::wstring::npos) << answers.texts()[0];
    EXPECT_TRUE(fs::exists(dir / "tall1.bmp"));
    EXPECT_FALSE(fs::exists(dir / "tall1-1.jpg"));
    for (const char* stem : {"tall2", "tall3"}) {
        EXPECT_EQ(Load(dir / (std::string(stem) + "-1.jpg")).width, 75) << stem;
        EXPECT_FALSE(fs::exists(dir / (std::string(stem) + ".bmp"))) << stem;
    }

    TaskDialogAnswers cancel({{IDCANCEL, false}});
    CallWithRequest("RunSplitImageW", {dir / "tall1.bmp"});
    EXPECT_EQ(cancel.texts().size(), 1u);
    EXPECT_TRUE(fs::exists(dir / "tall1.bmp"));
    EXPECT_FALSE(fs::exists(dir / "tall1-1.jpg"));
}

TEST(ContrastResizeExport, ScansBecomeGreyJpegUnderTheirNameOrBesideAReadOnlySource) {
    ScratchDir dir("contrast-export");
    const std::wstring unique = std::to_wstring(GetCurrentProcessId());
    const fs::path scan = dir.path() / (L"scan-" + unique + L".png");
    const fs::path page = dir / "page.bmp", locked = dir / "locked.bmp";
    WritePicture(scan, 2480, 3508);
    WritePicture(page, 1200, 1600);
    WritePicture(locked, 300, 400);
    SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_READONLY);
    const auto lockedBytes = lxtest::ReadFile(locked);
    CallWithRequest("RunContrastResizeW", {scan, page, locked});
    const struct {
        fs::path file;
        int width, height;
    } results[] = {{scan, 1131, 1600}, {page, 1200, 1600}, {fs::path(locked.wstring() + L".cr.jpg"), 300, 400}};
    for (const auto& r : results) {
        const Loaded loaded = Load(r.file);
        EXPECT_TRUE(loaded.jpeg) << r.file;
        EXPECT_EQ(loaded.width, r.width) << r.file;
        EXPECT_EQ(loaded.height, r.height) << r.file;
        EXPECT_EQ(loaded.bits, 8) << r.file << " is a grey JPEG";
    }
    EXPECT_EQ(lxtest::ReadFile(locked), lockedBytes) << "a read-only source stays as it was";
    SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(lxtest::RecycleBinHolds(scan.filename().wstring()));
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

TEST(PickoutThumbnailExport, WritesEachThumbnailOnceIntoTheChosenFolder) {
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
    // Run again: the files are there, so nothing is written over them.
    lxtest::WriteFile(out / "IMG_0001.thm(L).jpg", std::string("kept"));
    PickoutAnswer again{out.wstring(), true};
    lxtest::DialogDriver driver(kPickoutTitle, [&](HWND dialog) { AnswerPickout(dialog, again); });
    CallWithRequest("RunPickoutThumbnailW", {raw}, L"");
    EXPECT_EQ(again.shownFolder, out.wstring()) << "without a host folder the saved one is offered";
    EXPECT_EQ(lxtest::ReadFile(out / "IMG_0001.thm(L).jpg").size(), 4u);
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(out)) ++count;
    EXPECT_EQ(count, 2u) << "the raw file whose offsets point past its end gives nothing";
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
