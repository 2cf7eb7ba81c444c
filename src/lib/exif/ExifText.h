// ExifText: the texts of an Exif record as UTF-8.
//
// All texts this library returns are UTF-8 std::string. ASCII fields are passed through
// with any byte sequence that is not valid UTF-8 replaced by U+FFFD; the Windows "XP"
// fields are UTF-16LE; UserComment names its own character code in its first 8 bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ExifRecord.h"

namespace lx {

// UTF-16 code units (two bytes each, in the given order) up to the first NUL, as UTF-8;
// unpaired surrogates become U+FFFD.
std::string Utf16ToUtf8(const uint8_t* bytes, size_t size, bool littleEndian);

// `text` with every invalid UTF-8 sequence replaced by U+FFFD.
std::string ValidUtf8(const std::string& text);

// An ASCII field as valid UTF-8, trailing blanks removed.
std::string FieldText(const ExifRecord& record, TagGroup group, uint16_t tag);
// One of IFD0's XPTitle, XPComment, XPAuthor, XPSubject fields.
std::string XpText(const ExifRecord& record, uint16_t tag);
// The Exif UserComment in the ASCII, Unicode or undefined character codes (JIS is not
// decoded and gives an empty text).
std::string UserCommentText(const ExifRecord& record);

// The file's descriptive text for captions: ImageDescription, else XPTitle, else
// UserComment; blank texts and a camera's stock description count as none.
std::string DescriptionOf(const ExifRecord& record);

}  // namespace lx
