#include "EditorCommands.h"

#include <algorithm>
#include <cwctype>
#include <iterator>

#include "StatusTexts.h"

namespace lx {
namespace {

using R = EnableRule;

constexpr EditorCommand kCommands[] = {
    {2006, R::Always, true},           // open
    {2010, R::Always, true},           // new image
    {2013, R::ClipboardImage, true},   // open the clipboard
    {2008, R::UndoAvailable, true},    // save
    {2002, R::Always, true},           // save as
    {2003, R::Always, true},           // save as wallpaper
    {2016, R::Always, false},          // scanner or camera
    {2005, R::Always, true},           // print
    {2001, R::Always, true},           // close
    {2036, R::UndoAvailable, true},    // undo
    {2031, R::SelectionPresent, true}, // copy
    {2032, R::ClipboardImage, true} ,  // paste
    {2033, R::Always, true},           // select all
    {2034, R::Always, true},           // clear the selection
    {2035, R::Always, true},           // select by size
    {2051, R::DepthBelow24, true},     // to 24-bit colour
    {2053, R::DepthFrom24, true} ,     // reduce colours
    {2055, R::Always, true} ,          // count colours
    {2054, R::DepthBelow24, true} ,    // edit the colour table
    {2071, R::Always, true} ,          // image size
    {2073, R::Always, true} ,          // canvas size
    {2072, R::SelectionPresent, true}, // crop
    {2083, R::Always, true},           // mirror
    {2084, R::Always, true},           // flip
    {2081, R::Always, true},           // rotate left
    {2082, R::Always, true},           // rotate right
    {2104, R::Always, true},           // navigator
    {2123, R::CanZoomIn, true},
    {2124, R::CanZoomOut, true},
    {2121, R::Always, true},
    {2122, R::Always, true},
    {2125, R::Always, true},
    {2126, R::Always, true},
    {2113, R::Always, true},           // grid
    {2103, R::Always, true},           // small tool-bar buttons
    {2110, R::Always, true},           // setup
    {2014, R::Always, true},           // previous file of the folder
    {2015, R::Always, true},           // next file of the folder
    {57664, R::Always, true},          // about
};

}  // namespace

std::span<const EditorCommand> EditorCommandTable() { return kCommands; }

const EditorCommand* FindEditorCommand(unsigned id) {
    const auto it = std::find_if(std::begin(kCommands), std::end(kCommands),
                                 [id](const EditorCommand& c) { return c.id == id; });
    return it == std::end(kCommands) ? nullptr : &*it;
}

bool CommandEnabled(const EditorCommand& command, const EditorState& s) {
    switch (command.rule) {
    case R::Always: return true;
    case R::UndoAvailable: return s.undoCount > 0;
    case R::ClipboardImage: return s.clipboardImage;
    case R::SelectionPresent: return s.selection;
    case R::DepthBelow24: return s.depth > 0 && s.depth < 24;
    case R::DepthFrom24: return s.depth >= 24;
    case R::CanZoomIn: return s.canZoomIn;
    case R::CanZoomOut: return s.canZoomOut;
    }
    return false;
}

StartupZoom ChooseStartupZoom(uint32_t options, int imageWidth, int imageHeight, int clientWidth, int clientHeight) {
    const int rule = ZoomRuleOf(options);
    if (rule & 1)
        return imageWidth > clientWidth || imageHeight > clientHeight ? StartupZoom::WholeImage
                                                                      : StartupZoom::Original;
    return rule ? StartupZoom::Saved : StartupZoom::Original;
}

bool IsClipboardArgument(const std::wstring& argument) {
    static constexpr std::wstring_view kClip = L"/clip";
    return argument.size() == kClip.size() &&
           std::equal(argument.begin(), argument.end(), kClip.begin(),
                      [](wchar_t a, wchar_t b) { return static_cast<wchar_t>(std::towlower(a)) == b; });
}

std::wstring DocumentTitle(const std::wstring& pathOrName, const std::wstring& caption) {
    return TitleFileName(pathOrName) + L" - " + caption;
}

}  // namespace lx
