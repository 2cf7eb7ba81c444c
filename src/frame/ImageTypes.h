// The one vocabulary of image file types that every tool shares: the type ids and the
// extensions of the codec library's format table (ImageFormats.h), and the rules on paths
// built on them.
//
// A file's type is decided by its extension alone (the text after the last "." of the file
// name, without regard to ASCII case; "\" and "/" both separate folders). Save dialogs and
// the conversion dialog list the types they can write from the two tables below, in their
// display order, each ended by a row whose id is -1.
// Paths are wide strings; functions that change a path work in place on a buffer of
// kPathChars characters.
#pragma once

#include "CommandLine.h"  // kPathChars, the size of every path buffer
#include "ImageFormats.h"

#include <cstddef>
#include <cstdint>

namespace lx {

// The type of a path by its file name's extension; 0 for a null path, no dot in the file
// name or an unknown extension.
ImageType ImageTypeFromPath(const wchar_t* path);

// True for the types whose files may hold Exif data: JPEG, TIFF and the camera raw kinds.
bool MayCarryExif(ImageType type);

// Gives `path` (a buffer of kPathChars) the extension that saving as `target` writes. A path
// whose type already is `target` keeps its own spelling (.jpeg stays, .dib stays). Returns
// false, leaving the path, for a target this module cannot name an extension for.
bool ForceSaveExtension(wchar_t* path, ImageType target);

// Replaces the extension of the last path component (or appends one), the way the shell's
// PathRenameExtensionW does, including its limit: a result that would not fit in a classic
// 260-character path is refused and the path is left as it was.
bool RenamePathExtension(wchar_t* path, const wchar_t* extension);

// The formats the conversion dialog offers, in display order.
struct SaveFormat {
    ImageType id;
    const wchar_t* shortName;
    const wchar_t* longName;
};
extern const SaveFormat kSaveFormats[];

// One row per entry of the "save as any format" filter list, same order: the zero-based filter
// index a save dialog returns indexes this table.
struct SaveFilterType {
    ImageType id;
    const wchar_t* extension;
};
extern const SaveFilterType kSaveFilterTypes[];

// The row of kSaveFilterTypes at a filter index, or null when the index is out of the table.
const SaveFilterType* SaveFilterTypeAt(int filterIndex);

}  // namespace lx
