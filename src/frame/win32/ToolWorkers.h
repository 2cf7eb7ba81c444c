// The workers that the exported entry points of the batch and publishing tools hand their
// file list to. Each is given the owner window and the drop list read from the request key;
// the list stays owned by the entry point, which frees it afterwards.
#pragma once

#include <windows.h>
#include <shellapi.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lx {

constexpr int kWebAlbumStatusBytes = 1588;

void RunConvertImageTool(HWND owner, HDROP drop);
void RunSplitImageTool(HWND owner, HDROP drop);
void RunContrastResizeTool(HWND owner, HDROP drop);
void RunRenameToExifDateTool(HWND owner, HDROP drop);
void RunPickoutThumbnailTool(HWND owner, HDROP drop, const std::wstring& path);
// `savedStatus` is the album's saved settings block (1588 bytes), empty when absent.
void RunWebAlbumTool(HWND owner, HDROP drop, const std::vector<uint8_t>& savedStatus);
void RunJpeg2PdfTool(HWND owner, HDROP drop);

}  // namespace lx
