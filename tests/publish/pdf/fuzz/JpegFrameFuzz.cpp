// Hostile JPEG headers through the frame scan and on into one composed page, so that any size
// a header can claim goes through the page geometry and the fixed text buffers.
#include <cstddef>
#include <cstdint>

#include "JpegFrameHeader.h"
#include "JpegPdfWriter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto frame = lx::FindJpegFrameHeader(data, size);
    if (!frame) return 0;
    lx::JpegPdfWriter writer;
    writer.SetPageSize(595, 841);
    writer.WriteFreeXrefEntry();
    writer.ComposeHeader();
    writer.AddImagePage("fuzz.jpg", frame->width, frame->height, size, frame->components == 3);
    writer.FinishDocument();
    return 0;
}
