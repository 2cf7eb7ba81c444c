// WebAlbumSettings: the web album's saved options, the 1,588-byte settings block
// "WebAlbum" / "Status", laid out field by field in memory order exactly as it is stored.
//
// Title and folder are kept as 16-bit characters so the record has the same size on every
// build (wchar_t is 4 bytes outside Windows). A stored block of any other size is ignored and
// the defaults apply.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace lx {

constexpr size_t kAlbumTitleChars = 260;
constexpr size_t kAlbumFolderChars = 520;

enum AlbumOption : uint32_t {
    kAlbumCopySources = 1u << 0,
    kAlbumOpenBrowser = 1u << 1,
    kAlbumTableBorder = 1u << 2,
};

enum AlbumLinkMode : int { kLinkNone = 0, kLinkRelative = 1, kLinkAbsolute = 2 };
enum AlbumThumbFormat : int { kThumbJpeg = 0, kThumbPng = 1, kThumbGif = 2 };

struct WebAlbumSettings {
    int32_t thumbWidth;
    int32_t thumbHeight;
    int32_t columns;
    int32_t rows;
    char16_t title[kAlbumTitleChars];
    char16_t folder[kAlbumFolderChars];
    uint32_t background;  // a Windows colour: red in the low byte, then green, then blue
    uint32_t options;     // AlbumOption bits
    uint32_t kinds;       // bits 0-2 the link mode, bits 3-5 the thumbnail format, both signed
};

static_assert(sizeof(WebAlbumSettings) == 1588, "the stored block is 1,588 bytes");
static_assert(offsetof(WebAlbumSettings, title) == 16);
static_assert(offsetof(WebAlbumSettings, folder) == 536);
static_assert(offsetof(WebAlbumSettings, background) == 1576);
static_assert(offsetof(WebAlbumSettings, kinds) == 1584);

// All zero, then a 128 x 96 thumbnail box, 4 columns by 3 rows, a silver background and
// table borders.
WebAlbumSettings DefaultWebAlbumSettings();

// The settings a stored block holds; the defaults when `size` is not the record's size.
WebAlbumSettings WebAlbumSettingsFromBlock(const void* data, size_t size);

// The two three-bit fields, read as signed numbers (a stored 7 reads as -1, which links
// nothing and names no known format).
int LinkMode(const WebAlbumSettings& settings);
int ThumbFormat(const WebAlbumSettings& settings);
void SetLinkMode(WebAlbumSettings& settings, int mode);
void SetThumbFormat(WebAlbumSettings& settings, int format);

std::wstring AlbumTitle(const WebAlbumSettings& settings);
std::wstring AlbumFolder(const WebAlbumSettings& settings);
// Longer texts are cut to fit the buffer with its terminator.
void SetAlbumTitle(WebAlbumSettings& settings, const std::wstring& title);
void SetAlbumFolder(WebAlbumSettings& settings, const std::wstring& folder);

}  // namespace lx
