// The photo editor's document: the image shown in the view, the undo list and the one
// commit operation that every editing command ends in.
//
// The document never touches a window. It reaches the view, the status panes and the
// navigator through a DocumentHost, which the frame implements with the view's messages and
// tests implement with plain objects. Images are opaque handles (on Windows a global block
// holding a packed DIB): the view owns the one it shows, the undo list owns the copies in
// its entries, and whoever takes a handle out of either frees it through the host.
//
// The document is modified exactly while the undo list holds a step: there is no separate
// flag. Saving clears the list; undoing every step makes the document clean again. The list
// keeps at most kMaxUndo steps, dropping the oldest; there is no redo.
#pragma once

#include <cstddef>
#include <list>
#include <string>

#include "ZoomGeometry.h"

namespace lx {

using ImageHandle = void*;

struct ImageFacts {
    int width = 0;
    int height = 0;
    int depth = 0;  // bits per pixel
};

class DocumentHost {
public:
    virtual ~DocumentHost() = default;
    virtual ViewRect Selection() = 0;                      // empty when there is none
    virtual void SetSelection(const ViewRect& selection) = 0;  // empty removes it
    virtual ImageHandle ShownImage() = 0;                  // lent: still the view's
    virtual ImageHandle ReplaceImage(ImageHandle image) = 0;  // takes it; returns the previous one
    virtual ImageHandle CopyImage(ImageHandle image) = 0;  // a new handle; null when memory runs out
    virtual void FreeImage(ImageHandle image) = 0;
    virtual ImageFacts Facts(ImageHandle image) = 0;
    virtual void ShowFacts(const std::wstring& sizeText, const std::wstring& depthText) = 0;
    virtual void ShowInNavigator(ImageHandle image) = 0;   // lent
    virtual std::wstring CommandText(int commandId) = 0;   // the command's string-table entry
};

struct UndoEntry {
    std::wstring name;
    ImageHandle image = nullptr;  // the picture before the step; owned by the entry
    ViewRect selection;           // the selection before the step
};

// The short name of a command: its string after the first line feed, or all of it.
std::wstring CommandShortName(const std::wstring& commandText);

class EditorDocument {
public:
    static constexpr size_t kMaxUndo = 16;

    explicit EditorDocument(DocumentHost& host) : host_(host) {}
    EditorDocument(const EditorDocument&) = delete;
    EditorDocument& operator=(const EditorDocument&) = delete;
    ~EditorDocument() { ClearUndo(); }

    // Puts `image` (taken) into the view as the document's picture. With a non-zero `command`
    // the picture it replaces becomes an undo step named after that command. With `restore`
    // the selection that was there is set again afterwards. False, with `image` freed and
    // nothing changed, when the undo copy cannot be made or `image` is null.
    bool Commit(ImageHandle image, int command, bool keep, bool restore);
    // Puts `image` (taken) into the view without touching the undo list: a loaded document.
    void SetImage(ImageHandle image);

    // Appends a step named after `command` holding `image` (taken) and the present selection.
    void PushUndo(int command, ImageHandle image);
    // Takes the newest step out: its image (now the caller's) and its selection; null when
    // the list is empty.
    ImageHandle PopUndo(ViewRect& selection);
    // Goes back one step; false when there is none.
    bool Undo();
    void ClearUndo();

    void SelectAll();
    void ClearSelection();

    size_t UndoCount() const { return undo_.size(); }
    bool Modified() const { return !undo_.empty(); }
    // The name of the step Undo would take back; empty when none.
    std::wstring NewestStepName() const { return undo_.empty() ? std::wstring() : undo_.back().name; }
    // Size and depth of the picture last put in.
    const ImageFacts& Facts() const { return facts_; }

private:
    void RecordFacts(ImageHandle image);
    void FreeEntry(UndoEntry& entry);

    DocumentHost& host_;
    std::list<UndoEntry> undo_;  // oldest first
    ImageFacts facts_;
};

}  // namespace lx
