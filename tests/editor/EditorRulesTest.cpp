#include <gtest/gtest.h>

#include "EditorCommands.h"
#include "RecentDocuments.h"

namespace lx {
namespace {

TEST(EditorCommands, DepthDecidesColourCommandsAndStateTheRest) {
    const struct {
        unsigned id;
        EditorState state;
        bool enabled;
    } cases[] = {
        {2051, {.depth = 8}, true},   {2051, {.depth = 24}, false}, {2051, {.depth = 0}, false},
        {2054, {.depth = 4}, true},   {2054, {.depth = 32}, false},
        {2053, {.depth = 24}, true},  {2053, {.depth = 32}, true},  {2053, {.depth = 16}, false},
        {2008, {.undoCount = 0}, false}, {2008, {.undoCount = 1}, true}, {2036, {.undoCount = 16}, true},
        {2031, {.selection = false}, false}, {2072, {.selection = true}, true},
        {2013, {.clipboardImage = true}, true}, {2032, {.clipboardImage = false}, false},
        {2123, {.canZoomIn = true}, true}, {2124, {.canZoomIn = true}, false},
        {2002, {}, true}, {57664, {}, true},
    };
    for (const auto& c : cases) {
        const EditorCommand* command = FindEditorCommand(c.id);
        ASSERT_NE(command, nullptr) << c.id;
        EXPECT_EQ(CommandEnabled(*command, c.state), c.enabled) << c.id;
    }
    EXPECT_EQ(FindEditorCommand(2109), nullptr);  // the viewer's, not the editor's
}

TEST(EditorCommands, StartupZoomRuleAndSetupKeepsSmallButtons) {
    const struct {
        uint32_t options;
        int width, height;
        StartupZoom zoom;
    } cases[] = {
        {0x00000, 4000, 3000, StartupZoom::Original},
        {0x10000, 400, 300, StartupZoom::Original},
        {0x10000, 801, 300, StartupZoom::WholeImage},
        {0x10001, 400, 601, StartupZoom::WholeImage},
        {0x20000, 4000, 3000, StartupZoom::Saved},
        {0x20000, 10, 10, StartupZoom::Saved},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ChooseStartupZoom(c.options, c.width, c.height, 800, 600), c.zoom) << std::hex << c.options;
    EXPECT_EQ(OptionsWithZoomRule(0x10001, 2), 0x20001u);
    EXPECT_EQ(OptionsWithZoomRule(0xFFFFFFFE, 1), 0x10000u);
}

TEST(EditorCommands, ClipboardArgumentAndTitle) {
    for (const wchar_t* clip : {L"/clip", L"/CLIP", L"/Clip"}) EXPECT_TRUE(IsClipboardArgument(clip)) << clip;
    for (const wchar_t* other : {L"/clip ", L"clip", L"/clipboard", L""}) EXPECT_FALSE(IsClipboardArgument(other));
    EXPECT_EQ(DocumentTitle(L"C:\\写真\\a.jpg", L"フォト イメージ"), L"a.jpg - フォト イメージ");
    EXPECT_EQ(DocumentTitle(L"クリップボード", L"フォト レタッチ"), L"クリップボード - フォト レタッチ");
}

TEST(RecentDocuments, FourNewestFirstWithCommandsCountingDown) {
    RecentDocuments recent;
    for (const wchar_t* path : {L"C:\\1.jpg", L"C:\\2.jpg", L"C:\\3.jpg", L"C:\\4.jpg", L"C:\\5.jpg"}) recent.Add(path);
    EXPECT_EQ(recent.Paths(), (std::vector<std::wstring>{L"C:\\5.jpg", L"C:\\4.jpg", L"C:\\3.jpg", L"C:\\2.jpg"}));
    recent.Add(L"c:\\3.JPG");  // the same file moves up, once
    EXPECT_EQ(recent.Paths(), (std::vector<std::wstring>{L"c:\\3.JPG", L"C:\\5.jpg", L"C:\\4.jpg", L"C:\\2.jpg"}));
    recent.Add(std::wstring(260, L'x'));  // longer than a path may be
    recent.Add(L"");
    EXPECT_EQ(recent.Paths().size(), 4u);
    EXPECT_EQ(RecentDocuments::CommandOf(0), 57616u);
    EXPECT_EQ(RecentDocuments::CommandOf(3), 57613u);
    EXPECT_EQ(recent.IndexOfCommand(57613), 3u);
    EXPECT_EQ(recent.IndexOfCommand(57612), std::nullopt);
    EXPECT_EQ(recent.IndexOfCommand(57617), std::nullopt);
    EXPECT_EQ(RecentDocuments::MenuText(0, L"C:\\a.jpg"), L"&1 C:\\a.jpg");
    recent.Remove(0);
    EXPECT_EQ(recent.IndexOfCommand(57613), std::nullopt);
    RecentDocuments stored;
    stored.Assign({L"a", L"b", L"A", L"c", L"d", L"e"});
    EXPECT_EQ(stored.Paths(), (std::vector<std::wstring>{L"a", L"b", L"c", L"d"}));
}

}  // namespace
}  // namespace lx
