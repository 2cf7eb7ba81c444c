#include "WebAlbumRun.h"

#include <algorithm>
#include <future>

#include "AlbumPageText.h"
#include "AlbumThumbnail.h"
#include "ImageTypes.h"
#include "PathNames.h"

namespace lx {

namespace {

ImageType ThumbnailType(int thumbFormat) {
    switch (thumbFormat) {
    case kThumbPng:
        return kImagePng;
    case kThumbGif:
        return kImageGif;
    default:
        return kImageJpeg;
    }
}

// The sizes the run works with: stored values below 1 would never fit a picture or a row.
struct AlbumLayout {
    int columns;
    int perSheet;
    int thumbWidth;
    int thumbHeight;
};

AlbumLayout LayoutOf(const WebAlbumSettings& settings) {
    const int columns = std::max(settings.columns, 1);
    const int rows = std::max(settings.rows, 1);
    return {columns, columns * rows, std::max(settings.thumbWidth, 1), std::max(settings.thumbHeight, 1)};
}

class AlbumWriter {
public:
    AlbumWriter(const WebAlbumSettings& settings, const std::vector<std::wstring>& files, const WebAlbumTexts& texts,
                AlbumFileSystem& fileSystem, ToolSink& sink)
        : settings_(settings),
          layout_(LayoutOf(settings)),
          files_(files),
          texts_(texts),
          fs_(fileSystem),
          sink_(sink),
          folder_(AlbumFolder(settings)),
          title_(AlbumTitle(settings)) {}

    WebAlbumResult Run() {
        const int total = static_cast<int>(files_.size());
        const int sheetCount = (total + layout_.perSheet - 1) / layout_.perSheet;
        sink_.StartProgress(texts_.title, texts_.loading);
        sink_.SetProgress(0, static_cast<uint64_t>(total));
        for (int sheet = 0; sheet < sheetCount; ++sheet) {
            if (sink_.Cancelled()) {
                result_.cancelled = true;
                break;
            }
            if (!WriteSheet(sheet, sheetCount)) break;
        }
        sink_.EndProgress();
        if ((settings_.options & kAlbumOpenBrowser) && !result_.firstSheet.empty())
            fs_.OpenInBrowser(result_.firstSheet, folder_);
        return result_;
    }

private:
    bool WriteSheet(int sheet, int sheetCount) {
        const std::wstring path = JoinFolder(folder_, SheetFileName(sheet));
        if (!fs_.CreateSheet(path)) return false;
        ++result_.sheets;
        if (sheet == 0) result_.firstSheet = path;
        fs_.WriteText(SheetStartText(title_, sheet, (settings_.options & kAlbumTableBorder) != 0));
        const int first = sheet * layout_.perSheet;
        const int onSheet = std::min(layout_.perSheet, static_cast<int>(files_.size()) - first);
        int cellsInRow = 0;
        for (int i = 0; i < onSheet; ++i) {
            if (sink_.Cancelled()) {
                result_.cancelled = true;
                break;
            }
            if (cellsInRow == 0) fs_.WriteText(L"<tr>\n");
            fs_.WriteText(CellText(MakeCell(first + i), LinkMode(settings_) != kLinkNone));
            cellsInRow = (cellsInRow + 1) % layout_.columns;
            if (cellsInRow == 0) fs_.WriteText(L"</tr>\n");
            // Counts a short last sheet's files as if every sheet were as short, as always.
            sink_.SetProgress(static_cast<uint64_t>(onSheet) * sheet + i + 1, files_.size());
        }
        if (cellsInRow != 0) fs_.WriteText(RowPaddingText(cellsInRow, layout_.columns));
        fs_.WriteText(SheetEndText(sheet, sheetCount));
        fs_.CloseSheet();
        return true;
    }

    bool IsListedSource(const std::wstring& path) const {
        return std::any_of(files_.begin(), files_.end(), [&](const std::wstring& f) { return fs_.SamePath(f, path); });
    }

    // A source's picture, decoded and reduced to its thumbnail's size.
    struct PreparedPicture {
        std::optional<AlbumPicture> loaded;
        bool shrunk = false;
    };

    PreparedPicture Prepare(const std::wstring& source) const {
        PreparedPicture prepared;
        prepared.loaded = LoadAlbumPicture(source, layout_.thumbWidth, layout_.thumbHeight);
        if (prepared.loaded)
            prepared.shrunk = ShrinkToThumbnail(prepared.loaded->picture, layout_.thumbWidth, layout_.thumbHeight,
                                                prepared.loaded->sourceSize);
        return prepared;
    }

    // The picture of source `index`. The next source is decoded on a second thread at the same
    // time: decoding is most of an album's time, and it touches no file of the album.
    PreparedPicture TakePrepared(size_t index) {
        std::future<PreparedPicture> current;
        if (ahead_.valid() && aheadIndex_ == index) current = std::move(ahead_);
        if (ahead_.valid()) ahead_.wait();
        if (index + 1 < files_.size()) {
            aheadIndex_ = index + 1;
            ahead_ = std::async(std::launch::async, [this, index] { return Prepare(files_[index + 1]); });
        }
        return current.valid() ? current.get() : Prepare(files_[index]);
    }

    AlbumCell MakeCell(size_t index) {
        const std::wstring& source = files_[index];
        if (settings_.options & kAlbumCopySources) {
            const std::wstring copy = JoinFolder(folder_, FileNameOf(source));
            if (!IsListedSource(copy)) fs_.CopySource(source, copy);
        }
        AlbumCell cell;
        cell.width = settings_.thumbWidth;
        cell.height = settings_.thumbHeight;
        cell.background = settings_.background;
        cell.caption = FileNameOf(source);
        cell.link = LinkTarget(settings_, source, fs_);
        sink_.SetLine(1, texts_.loading, false);
        sink_.SetLine(1, source, true);
        PreparedPicture prepared = TakePrepared(index);
        auto& loaded = prepared.loaded;
        if (!loaded) return cell;
        cell.altText = loaded->altText;
        sink_.SetLine(1, texts_.saving, false);
        if (!prepared.shrunk) return cell;
        sink_.SetLine(1, texts_.converting, false);
        const std::wstring name = ThumbnailFileName(source, ThumbFormat(settings_), fs_);
        const std::wstring thumbnail = JoinFolder(folder_, name);
        if (IsListedSource(thumbnail)) return cell;
        if (SaveAlbumThumbnail(thumbnail, loaded->picture, ThumbFormat(settings_))) {
            ++result_.thumbnails;
            cell.thumbnail = name;
        }
        return cell;
    }

    const WebAlbumSettings& settings_;
    const AlbumLayout layout_;
    const std::vector<std::wstring>& files_;
    const WebAlbumTexts& texts_;
    AlbumFileSystem& fs_;
    ToolSink& sink_;
    const std::wstring folder_;
    const std::wstring title_;
    WebAlbumResult result_;
    std::future<PreparedPicture> ahead_;
    size_t aheadIndex_ = 0;
};

}  // namespace

std::wstring JoinFolder(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty() || IsPathSeparator(folder.back())) return folder + name;
    // The folder's own separator: Windows takes either, and a Linux folder only "/".
    return folder + (folder.find(L'/') != std::wstring::npos ? L"/" : L"\\") + name;
}

std::wstring ThumbnailFileName(const std::wstring& source, int thumbFormat, AlbumFileSystem& fileSystem) {
    const std::wstring name = fileSystem.Lower(L"sh_" + FileNameOf(source));
    wchar_t buffer[kPathChars] = {};
    if (name.size() >= kPathChars) return name;
    std::copy(name.begin(), name.end(), buffer);
    ForceSaveExtension(buffer, ThumbnailType(thumbFormat));
    return buffer;
}

std::wstring LinkTarget(const WebAlbumSettings& settings, const std::wstring& source, AlbumFileSystem& fileSystem) {
    const int mode = LinkMode(settings);
    if (mode == kLinkNone) return {};
    if (settings.options & kAlbumCopySources) return FileNameOf(source);
    if (mode == kLinkRelative) {
        const std::wstring relative = fileSystem.RelativePath(AlbumFolder(settings), source);
        if (!relative.empty()) return relative;
    }
    return source;
}

WebAlbumResult BuildWebAlbum(const WebAlbumSettings& settings, const std::vector<std::wstring>& files,
                             const WebAlbumTexts& texts, AlbumFileSystem& fileSystem, ToolSink& sink) {
    return AlbumWriter(settings, files, texts, fileSystem, sink).Run();
}

}  // namespace lx
