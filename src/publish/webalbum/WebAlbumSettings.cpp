#include "WebAlbumSettings.h"

#include <algorithm>
#include <cstring>

namespace lx {

namespace {

int SignedThreeBits(uint32_t bits) {
    const int value = static_cast<int>(bits & 7u);
    return value >= 4 ? value - 8 : value;
}

template <size_t N>
std::wstring ReadChars(const char16_t (&buffer)[N]) {
    std::wstring text;
    for (size_t i = 0; i < N && buffer[i] != 0; ++i) text.push_back(static_cast<wchar_t>(buffer[i]));
    return text;
}

template <size_t N>
void WriteChars(char16_t (&buffer)[N], const std::wstring& text) {
    std::memset(buffer, 0, sizeof buffer);
    const size_t count = std::min(text.size(), N - 1);
    // Characters beyond 16 bits (Linux wide strings) have no place in the stored record.
    for (size_t i = 0; i < count; ++i) buffer[i] = static_cast<char16_t>(text[i]);
}

}  // namespace

WebAlbumSettings DefaultWebAlbumSettings() {
    WebAlbumSettings settings;
    std::memset(&settings, 0, sizeof settings);
    settings.thumbWidth = 128;
    settings.thumbHeight = 96;
    settings.columns = 4;
    settings.rows = 3;
    settings.background = 0xC0C0C0;
    settings.options = kAlbumTableBorder;
    return settings;
}

WebAlbumSettings WebAlbumSettingsFromBlock(const void* data, size_t size) {
    WebAlbumSettings settings = DefaultWebAlbumSettings();
    if (data != nullptr && size == sizeof settings) {
        std::memcpy(&settings, data, sizeof settings);
        // A hand-edited block may lack the terminators; the texts must still end in their buffers.
        settings.title[kAlbumTitleChars - 1] = 0;
        settings.folder[kAlbumFolderChars - 1] = 0;
    }
    return settings;
}

int LinkMode(const WebAlbumSettings& settings) { return SignedThreeBits(settings.kinds); }
int ThumbFormat(const WebAlbumSettings& settings) { return SignedThreeBits(settings.kinds >> 3); }

void SetLinkMode(WebAlbumSettings& settings, int mode) {
    settings.kinds = (settings.kinds & ~7u) | (static_cast<uint32_t>(mode) & 7u);
}

void SetThumbFormat(WebAlbumSettings& settings, int format) {
    settings.kinds = (settings.kinds & ~(7u << 3)) | ((static_cast<uint32_t>(format) & 7u) << 3);
}

std::wstring AlbumTitle(const WebAlbumSettings& settings) { return ReadChars(settings.title); }
std::wstring AlbumFolder(const WebAlbumSettings& settings) { return ReadChars(settings.folder); }
void SetAlbumTitle(WebAlbumSettings& settings, const std::wstring& title) { WriteChars(settings.title, title); }
void SetAlbumFolder(WebAlbumSettings& settings, const std::wstring& folder) { WriteChars(settings.folder, folder); }

}  // namespace lx
