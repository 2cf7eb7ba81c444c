// The run of the JPEG-to-PDF tool, free of any dialog: which files go in, whether their number
// is acceptable, the output name rule, and composing and writing the document with progress
// reported to a ToolSink. The Windows worker asks for the output name and then calls these;
// unattended runs call them directly.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ByteSink.h"
#include "JpegPdfWriter.h"
#include "ToolSink.h"

namespace lx {

// String-table ids of the tool's texts.
enum : unsigned {
    kJpegPdfNoJpegMessage = 4140,    // no JPEG file among the selection
    kJpegPdfTitle = 4141,            // dialog and progress title
    kJpegPdfProgressLine = 4142,     // first progress line
    kJpegPdfTooManyMessage = 4143,   // more than a document can hold
};

// The image type code the probe reports for JPEG files.
constexpr int kJpegImageType = 2;

using ImageTypeProbe = std::function<int(const std::filesystem::path&)>;

// The files the probe reports as JPEG, in list order.
std::vector<std::filesystem::path> KeepJpegFiles(const std::vector<std::filesystem::path>& files,
                                                 const ImageTypeProbe& probe);

// The message that ends the tool for this many JPEG files, or 0 when the run may go on. The
// limit is all or nothing: a selection over it writes no document at all.
unsigned JpegCountMessage(size_t jpegCount);

// Shows that message (stop icon) when there is one; true when the run may go on.
bool AcceptJpegCount(size_t jpegCount, ToolSink& sink);

// The chosen output name with ".pdf" appended unless its extension already is ".pdf" in any
// case: "album" and "album.jpg" become "album.pdf" and "album.jpg.pdf".
std::wstring WithPdfExtension(const std::wstring& name);

struct JpegPdfJob {
    std::filesystem::path output;
    std::wstring progressTitle;  // string 4141
    std::wstring progressLine;   // string 4142
    // Creates (replacing) the output file; null when it cannot be created.
    std::function<std::unique_ptr<ByteSink>(const std::filesystem::path&)> createOutput = CreateFileByteSink;
};

enum class JpegPdfResult {
    kWritten,     // the whole document is in the output file
    kNotCreated,  // the output file could not be created; nothing written
    kTruncated,   // a JPEG could not be read again or a write failed; the file holds a prefix
    kRefused,     // no JPEG, or too many: the message was shown and nothing written
};

// Composes one page per readable JPEG (others are left out without a word) and writes the
// document. Progress: title and first line at the start, each file's name on line 2. The
// user's cancel request is not consulted: a half-made document would be of no use.
JpegPdfResult RunJpegPdfJob(const JpegPdfJob& job, const std::vector<std::filesystem::path>& jpegs, ToolSink& sink);

// The whole run for a given output name: keep the JPEG files, check their number (showing
// the message that ends the tool), then RunJpegPdfJob.
JpegPdfResult RunJpegPdfTool(const JpegPdfJob& job, const std::vector<std::filesystem::path>& files,
                             const ImageTypeProbe& probe, ToolSink& sink);

}  // namespace lx
