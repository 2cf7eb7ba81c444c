#include "JpegPdfJob.h"

namespace lx {

namespace {

// A4 portrait in whole points.
constexpr int kDefaultPageWidth = 595;
constexpr int kDefaultPageHeight = 841;

// The name shown on the progress line. A name the wide conversion cannot take shows as
// nothing rather than stopping the run.
std::wstring DisplayName(const std::filesystem::path& file) {
    try {
        return file.filename().wstring();
    } catch (...) {
        return std::wstring();
    }
}

wchar_t LowerAscii(wchar_t c) { return (c >= L'A' && c <= L'Z') ? wchar_t(c - L'A' + L'a') : c; }

}  // namespace

std::vector<std::filesystem::path> KeepJpegFiles(const std::vector<std::filesystem::path>& files,
                                                 const ImageTypeProbe& probe) {
    std::vector<std::filesystem::path> kept;
    for (const auto& file : files) {
        if (probe(file) == kJpegImageType) kept.push_back(file);
    }
    return kept;
}

unsigned JpegCountMessage(size_t jpegCount) {
    if (jpegCount == 0) return kJpegPdfNoJpegMessage;
    if (jpegCount > size_t(JpegPdfWriter::kMaxPages)) return kJpegPdfTooManyMessage;
    return 0;
}

bool AcceptJpegCount(size_t jpegCount, ToolSink& sink) {
    const unsigned message = JpegCountMessage(jpegCount);
    if (message == 0) return true;
    sink.Message(message, std::wstring(), kMbIconError);
    return false;
}

std::wstring WithPdfExtension(const std::wstring& name) {
    const size_t leaf = name.find_last_of(L"\\/");
    const size_t dot = name.rfind(L'.');
    const bool hasExtension = dot != std::wstring::npos && (leaf == std::wstring::npos || dot > leaf);
    if (hasExtension) {
        const std::wstring_view extension = std::wstring_view(name).substr(dot);
        const std::wstring_view pdf = L".pdf";
        bool same = extension.size() == pdf.size();
        for (size_t i = 0; same && i < pdf.size(); ++i) same = LowerAscii(extension[i]) == pdf[i];
        if (same) return name;
    }
    return name + L".pdf";
}

JpegPdfResult RunJpegPdfJob(const JpegPdfJob& job, const std::vector<std::filesystem::path>& jpegs, ToolSink& sink) {
    sink.StartProgress(job.progressTitle, job.progressLine);

    JpegPdfWriter writer;
    writer.SetPageSize(kDefaultPageWidth, kDefaultPageHeight);
    writer.WriteFreeXrefEntry();
    writer.ComposeHeader();
    for (const auto& file : jpegs) {
        sink.SetLine(2, DisplayName(file), false);
        writer.AddJpegFile(file);
    }
    writer.FinishDocument();

    JpegPdfResult result = JpegPdfResult::kNotCreated;
    if (auto out = job.createOutput(job.output)) {
        result = writer.WriteDocument(*out) ? JpegPdfResult::kWritten : JpegPdfResult::kTruncated;
    }
    sink.EndProgress();
    return result;
}

JpegPdfResult RunJpegPdfTool(const JpegPdfJob& job, const std::vector<std::filesystem::path>& files,
                             const ImageTypeProbe& probe, ToolSink& sink) {
    const auto jpegs = KeepJpegFiles(files, probe);
    if (!AcceptJpegCount(jpegs.size(), sink)) return JpegPdfResult::kRefused;
    return RunJpegPdfJob(job, jpegs, sink);
}

}  // namespace lx
