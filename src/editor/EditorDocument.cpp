#include "EditorDocument.h"

#include "StatusTexts.h"

namespace lx {

std::wstring CommandShortName(const std::wstring& text) {
    const size_t feed = text.find(L'\n');
    return feed == std::wstring::npos ? text : text.substr(feed + 1);
}

void EditorDocument::RecordFacts(ImageHandle image) {
    facts_ = host_.Facts(image);
    host_.ShowFacts(ImageSizeText(facts_.width, facts_.height), DepthText(facts_.depth));
}

bool EditorDocument::Commit(ImageHandle image, int command, bool /*keep*/, bool restore) {
    if (!image) return false;
    const ViewRect selection = host_.Selection();
    if (ImageHandle shown = host_.ShownImage(); command != 0 && shown) {
        ImageHandle before = host_.CopyImage(shown);
        if (!before) {
            // Without its undo step the change could not be taken back: refuse it whole.
            host_.FreeImage(image);
            return false;
        }
        PushUndo(command, before);
    }
    RecordFacts(image);
    host_.SetSelection(ViewRect{});
    if (ImageHandle previous = host_.ReplaceImage(image)) host_.FreeImage(previous);
    host_.ShowInNavigator(image);
    if (restore && !selection.empty()) host_.SetSelection(selection);
    return true;
}

void EditorDocument::SetImage(ImageHandle image) {
    RecordFacts(image);
    host_.SetSelection(ViewRect{});
    if (ImageHandle previous = host_.ReplaceImage(image)) host_.FreeImage(previous);
    host_.ShowInNavigator(image);
}

void EditorDocument::PushUndo(int command, ImageHandle image) {
    undo_.push_back({CommandShortName(host_.CommandText(command)), image, host_.Selection()});
    while (undo_.size() > kMaxUndo) {
        FreeEntry(undo_.front());
        undo_.pop_front();
    }
}

ImageHandle EditorDocument::PopUndo(ViewRect& selection) {
    if (undo_.empty()) return nullptr;
    UndoEntry& newest = undo_.back();
    selection = newest.selection;
    ImageHandle image = newest.image;
    undo_.pop_back();
    return image;
}

bool EditorDocument::Undo() {
    ViewRect selection;
    ImageHandle image = PopUndo(selection);
    if (!image) return false;
    Commit(image, 0, true, false);
    host_.SetSelection(selection);
    return true;
}

void EditorDocument::ClearUndo() {
    for (UndoEntry& entry : undo_) FreeEntry(entry);
    undo_.clear();
}

void EditorDocument::FreeEntry(UndoEntry& entry) {
    if (entry.image) host_.FreeImage(entry.image);
    entry.image = nullptr;
}

void EditorDocument::SelectAll() {
    if (!host_.ShownImage()) return;
    host_.SetSelection(ViewRect{0, 0, facts_.width, facts_.height});
}

void EditorDocument::ClearSelection() {
    if (!host_.Selection().empty()) host_.SetSelection(ViewRect{});
}

}  // namespace lx
