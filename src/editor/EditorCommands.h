// The editor's command table: when each command can run. The menu texts and accelerators
// live in the menu and accelerator resources; the handlers in the frame. A command of the
// table is enabled on idle by its rule over the present state of the document and the view.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace lx {

enum class EnableRule {
    Always,
    UndoAvailable,      // the document is modified
    ClipboardImage,     // the clipboard holds an image
    SelectionPresent,   // the selection is not empty
    DepthBelow24,       // palette and 16-bit images
    DepthFrom24,        // direct-colour images
    CanZoomIn,
    CanZoomOut,
};

struct EditorCommand {
    unsigned id;
    EnableRule rule;
    // False for a command whose operation comes with later work: it stays in the menu under
    // its rule, and running it only beeps.
    bool built;
};

std::span<const EditorCommand> EditorCommandTable();
const EditorCommand* FindEditorCommand(unsigned id);

// What the rules look at.
struct EditorState {
    size_t undoCount = 0;
    bool clipboardImage = false;
    bool selection = false;
    int depth = 0;  // bits per pixel of the document; 0 without one
    bool canZoomIn = false;
    bool canZoomOut = false;
};

bool CommandEnabled(const EditorCommand& command, const EditorState& state);

// The frame's option word: bit 0 small tool-bar buttons, bits 16-19 the zoom rule for a
// newly opened image.
constexpr uint32_t kOptionSmallButtons = 1u;
inline int ZoomRuleOf(uint32_t options) { return static_cast<int>((options >> 16) & 0xF); }
// The word the setup dialog leaves: the new rule, bit 0 as it was.
inline uint32_t OptionsWithZoomRule(uint32_t options, int rule) {
    return (static_cast<uint32_t>(rule & 0xF) << 16) | (options & kOptionSmallButtons);
}

// How a newly opened image is zoomed, after it was put in at 100 %.
enum class StartupZoom { Original, WholeImage, Saved };
StartupZoom ChooseStartupZoom(uint32_t options, int imageWidth, int imageHeight, int clientWidth, int clientHeight);

// The largest picture the editor takes (width times height): with its undo copies it must
// still fit in memory. Larger files are refused with a message, as are larger new images.
constexpr int64_t kEditorMaxPixels = 200'000'000;
inline bool EditableSize(int64_t width, int64_t height) {
    return width > 0 && height > 0 && width * height <= kEditorMaxPixels;
}

// True for "/clip" in any letter case.
bool IsClipboardArgument(const std::wstring& argument);

// The frame title of a document: "name - caption".
std::wstring DocumentTitle(const std::wstring& pathOrName, const std::wstring& caption);

}  // namespace lx
