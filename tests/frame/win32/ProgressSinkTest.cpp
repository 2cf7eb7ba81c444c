#include "ProgressSink.h"

#include "../../lib/nccore/win32/DialogDriver.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

using lxtest::DialogDriver;
using lxtest::WaitFor;

TEST(ProgressSink, ShowsTitleAndLinesAndHearsCancelUnlessToldNever) {
    for (const auto mode : {lx::ProgressSink::kUserMayCancel, lx::ProgressSink::kNeverCancels}) {
        lx::ProgressSink sink(nullptr, MAKEINTRESOURCEW(4086), lx::ProgressSink::kDefaultFlags, mode);
        std::wstring texts;
        std::atomic<bool> read{false};
        DialogDriver driver(L"lx progress", [&](HWND dialog) {
            texts = lxtest::AllChildTexts(dialog);
            read = true;
            PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        });
        sink.StartProgress(L"lx progress", L"reading files...");
        ASSERT_TRUE(sink.Showing()) << "the shell progress dialog object is missing";
        sink.SetLine(2, L"IMG_0001.JPG", false);
        sink.SetLine(9, L"ignored", false);
        EXPECT_FALSE(sink.Cancelled());
        ASSERT_TRUE(WaitFor([&] { return read.load(); }));
        EXPECT_NE(texts.find(L"reading files..."), std::wstring::npos) << texts;
        EXPECT_NE(texts.find(L"IMG_0001.JPG"), std::wstring::npos) << texts;
        if (mode == lx::ProgressSink::kUserMayCancel) {
            EXPECT_TRUE(WaitFor([&] { return sink.Cancelled(); }));
        } else {
            Sleep(1000);  // the press has long reached the dialog
            EXPECT_FALSE(sink.Cancelled());
        }
        sink.EndProgress();
        EXPECT_FALSE(sink.Showing());
        EXPECT_FALSE(sink.Cancelled());
        EXPECT_TRUE(WaitFor([] { return FindWindowW(nullptr, L"lx progress") == nullptr; }));
    }
}

TEST(ProgressSink, WorksWithoutADialogShownAndMessagesComeFromTheStringTableWithTheCaption) {
    lx::ProgressSink sink(nullptr, MAKEINTRESOURCEW(4086));
    sink.SetLine(1, L"x", true);
    sink.SetProgress(1, 2);
    EXPECT_FALSE(sink.Cancelled());
    sink.EndProgress();
    EXPECT_FALSE(sink.Showing());
    std::wstring texts;
    DialogDriver driver(L"Fotolume", [&](HWND box) {
        texts = lxtest::AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    EXPECT_EQ(sink.Message(4130, L"unused", MB_OKCANCEL | MB_ICONWARNING), IDCANCEL);
    EXPECT_TRUE(driver.Found());
    EXPECT_NE(texts.find(L"Jpeg;Png;GIF;"), std::wstring::npos) << texts;
}

}  // namespace
