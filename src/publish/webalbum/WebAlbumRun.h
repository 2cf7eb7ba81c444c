// The web album's run: the files of the list laid out on sheets of rows x columns in list
// order, each sheet an HTML page "sheet_N.html" in the output folder, each file a table cell
// with its thumbnail "sh_<name>" (lower case, the thumbnail format's extension), its name and
// optionally a link to the source. No dialog: used by the tool after its dialog, by lxhost's
// unattended form and by the tests.
//
// Before each sheet and each image the run asks the sink whether the user cancelled: before a
// sheet, the run ends there; before an image, the sheet is closed properly (row padding,
// table end, navigation) and the run ends at the next sheet. A sheet that cannot be created
// ends the run quietly, earlier sheets staying. A source that cannot be copied is ignored.
//
// Protecting the user's files: a thumbnail or a copy is never written over a file of the
// list itself (a source already in the output folder whose name another file's thumbnail or
// copy would take). A file that no reader can decode gets a cell with its name and link but
// no thumbnail, so the sheet still lists every file.
#pragma once

#include <string>
#include <vector>

#include "ToolSink.h"
#include "WebAlbumSettings.h"

namespace lx {

// What the run does to files, outside the portable core: on Windows the sheets are written in
// the system's ANSI code page, copies and relative paths come from the shell.
class AlbumFileSystem {
public:
    virtual ~AlbumFileSystem() = default;
    // Creates (or empties) the sheet file; false when it cannot be created.
    virtual bool CreateSheet(const std::wstring& path) = 0;
    virtual void WriteText(const std::wstring& text) = 0;
    virtual void CloseSheet() = 0;
    // Copies `source` to `target`, replacing a file there; failures are ignored.
    virtual void CopySource(const std::wstring& source, const std::wstring& target) = 0;
    // The path of `file` relative to `folder`, or empty when there is none (another drive).
    virtual std::wstring RelativePath(const std::wstring& folder, const std::wstring& file) = 0;
    virtual std::wstring Lower(const std::wstring& text) = 0;
    // Two paths naming the same file.
    virtual bool SamePath(const std::wstring& a, const std::wstring& b) = 0;
    // Shows the finished album.
    virtual void OpenInBrowser(const std::wstring& sheet, const std::wstring& folder) = 0;
};

// The progress display's texts (from the string table on Windows).
struct WebAlbumTexts {
    std::wstring title;
    std::wstring loading;     // "読み込んでいます..."
    std::wstring saving;      // "保存しています..."
    std::wstring converting;  // "変換しています..."
};

struct WebAlbumResult {
    int sheets = 0;      // sheet files created
    int thumbnails = 0;  // thumbnail files written
    bool cancelled = false;
    std::wstring firstSheet;  // the path of sheet_1.html once created
};

// `settings` are taken as they are; a box, column or row count below 1 counts as 1.
WebAlbumResult BuildWebAlbum(const WebAlbumSettings& settings, const std::vector<std::wstring>& files,
                             const WebAlbumTexts& texts, AlbumFileSystem& fileSystem, ToolSink& sink);

// The thumbnail's name for a source: "sh_" and the source's file name in lower case, with the
// extension of the thumbnail format (a name already of that type keeps its own, ".jpeg").
std::wstring ThumbnailFileName(const std::wstring& source, int thumbFormat, AlbumFileSystem& fileSystem);

// The link target of a cell before backslashes become slashes; empty for link mode 0.
std::wstring LinkTarget(const WebAlbumSettings& settings, const std::wstring& source, AlbumFileSystem& fileSystem);

// `folder` and `name` joined with one separator between them (a backslash, or "/" when the
// folder is written with those).
std::wstring JoinFolder(const std::wstring& folder, const std::wstring& name);

}  // namespace lx
