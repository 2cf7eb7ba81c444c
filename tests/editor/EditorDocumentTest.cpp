// The document through a host made of plain objects: each image is a numbered block whose
// life the host tracks, so a leak or a double free shows.
#include "EditorDocument.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace lx {
namespace {

struct FakeImage {
    int tag;  // which edit made it
    ImageFacts facts;
};

class FakeHost : public DocumentHost {
public:
    ~FakeHost() override {
        if (shown) FreeImage(shown);
    }
    ImageHandle Make(int tag, int width = 10, int height = 8, int depth = 24) {
        auto* image = new FakeImage{tag, {width, height, depth}};
        live.insert(image);
        return image;
    }
    static int Tag(ImageHandle image) { return static_cast<FakeImage*>(image)->tag; }

    ViewRect Selection() override { return selection; }
    void SetSelection(const ViewRect& s) override {
        selection = s.empty() ? ViewRect{} : s;
        calls.push_back(s.empty() ? "clear" : "select");
    }
    ImageHandle ShownImage() override { return shown; }
    ImageHandle ReplaceImage(ImageHandle image) override {
        calls.push_back("replace");
        std::swap(shown, image);
        return image;
    }
    ImageHandle CopyImage(ImageHandle image) override {
        if (copiesFail) return nullptr;
        return Make(Tag(image), Facts(image).width, Facts(image).height, Facts(image).depth);
    }
    void FreeImage(ImageHandle image) override {
        auto* fake = static_cast<FakeImage*>(image);
        ASSERT_EQ(live.erase(fake), 1u) << "freed twice or never made";
        delete fake;
    }
    ImageFacts Facts(ImageHandle image) override { return static_cast<FakeImage*>(image)->facts; }
    void ShowFacts(const std::wstring& size, const std::wstring& depth) override {
        sizePane = size;
        depthPane = depth;
    }
    void ShowInNavigator(ImageHandle image) override { navigator = image; }
    std::wstring CommandText(int id) override {
        static const std::map<int, std::wstring> texts = {
            {2072, L"トリミングして選択されている範囲を切り出します。\nトリミング"},
            {2081, L"左へ回転します\n左へ90度"},
            {2010, L"新規作成"},
        };
        auto it = texts.find(id);
        return it == texts.end() ? L"" : it->second;
    }

    std::set<FakeImage*> live;
    ImageHandle shown = nullptr;
    ImageHandle navigator = nullptr;
    ViewRect selection;
    std::vector<std::string> calls;
    std::wstring sizePane, depthPane;
    bool copiesFail = false;
};

class EditorDocumentTest : public ::testing::Test {
protected:
    void TearDown() override {
        doc.ClearUndo();
        EXPECT_EQ(host.live.size(), host.shown ? 1u : 0u) << "images leaked";
    }
    FakeHost host;
    EditorDocument doc{host};
};

TEST_F(EditorDocumentTest, CommitRecordsTheOldPictureAndPutsTheNewOneInInOrder) {
    doc.SetImage(host.Make(0, 640, 480, 8));
    EXPECT_FALSE(doc.Modified());
    host.selection = {1, 2, 30, 40};
    host.calls.clear();
    ASSERT_TRUE(doc.Commit(host.Make(1, 300, 200, 24), 2072, false, true));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"clear", "replace", "select"}));
    EXPECT_EQ(FakeHost::Tag(host.shown), 1);
    EXPECT_EQ(host.navigator, host.shown);
    EXPECT_EQ(host.sizePane, L"300 x 200");
    EXPECT_EQ(host.depthPane, L"24bpp");
    EXPECT_EQ(doc.Facts().width, 300);
    EXPECT_EQ(host.selection, (ViewRect{1, 2, 30, 40}));  // restored
    ASSERT_EQ(doc.UndoCount(), 1u);
    EXPECT_EQ(doc.NewestStepName(), L"トリミング");
    EXPECT_TRUE(doc.Modified());

    // Without restore the selection stays cleared; command 0 pushes nothing.
    ASSERT_TRUE(doc.Commit(host.Make(2), 0, true, false));
    EXPECT_TRUE(host.selection.empty());
    EXPECT_EQ(doc.UndoCount(), 1u);
    // Undo brings back the picture and the selection from before the crop.
    ASSERT_TRUE(doc.Undo());
    EXPECT_EQ(host.selection, (ViewRect{1, 2, 30, 40}));
    EXPECT_EQ(host.sizePane, L"640 x 480");
    EXPECT_EQ(host.depthPane, L"8bpp");
    // A command text without a line feed names the step whole.
    doc.Commit(host.Make(3), 2010, true, false);
    EXPECT_EQ(doc.NewestStepName(), L"新規作成");
}

TEST_F(EditorDocumentTest, TheSeventeenthStepDropsTheOldestAndSixteenUndosReachTheFirstEdit) {
    doc.SetImage(host.Make(0));
    for (int edit = 1; edit <= 17; ++edit) {
        host.selection = {edit, edit, edit + 5, edit + 5};  // the selection before edit N+1
        ASSERT_TRUE(doc.Commit(host.Make(edit), 2081, true, false));
    }
    EXPECT_EQ(doc.UndoCount(), 16u);
    for (int undo = 1; undo <= 16; ++undo) {
        ASSERT_TRUE(doc.Undo());
        const int expected = 17 - undo;
        EXPECT_EQ(FakeHost::Tag(host.shown), expected);
        // The selection that was there before the undone step, i.e. the one set after edit N.
        EXPECT_EQ(host.selection, (ViewRect{expected + 1, expected + 1, expected + 6, expected + 6}));
    }
    EXPECT_EQ(FakeHost::Tag(host.shown), 1);  // not the loaded picture: that step was dropped
    EXPECT_FALSE(doc.Modified());
    EXPECT_FALSE(doc.Undo());
}

TEST_F(EditorDocumentTest, AFailedUndoCopyRefusesTheCommitAndLosesNothing) {
    doc.SetImage(host.Make(0));
    host.copiesFail = true;
    EXPECT_FALSE(doc.Commit(host.Make(1), 2081, true, false));
    EXPECT_EQ(FakeHost::Tag(host.shown), 0);
    EXPECT_FALSE(doc.Modified());
    EXPECT_FALSE(doc.Commit(nullptr, 2081, true, false));
}

TEST_F(EditorDocumentTest, SelectAllAndClearSelection) {
    doc.SelectAll();  // empty document: nothing
    EXPECT_TRUE(host.calls.empty());
    doc.SetImage(host.Make(0, 64, 48));
    doc.SelectAll();
    EXPECT_EQ(host.selection, (ViewRect{0, 0, 64, 48}));
    host.calls.clear();
    doc.ClearSelection();
    doc.ClearSelection();  // already empty: the view is not asked again
    EXPECT_EQ(host.calls, std::vector<std::string>{"clear"});
}

}  // namespace
}  // namespace lx
