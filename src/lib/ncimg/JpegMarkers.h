// The marker layer of the JPEG decoder: walks the segments of a file (tables, frame header,
// restart interval, JFIF and Adobe markers) and stops at each scan header, leaving the
// position at the scan's entropy-coded data. Tables may be redefined between scans; the
// reader always holds the latest ones.
//
// Every length is checked against the data: a segment that claims more bytes than remain
// ends the walk as if the file ended there.
#pragma once

#include "JpegTables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace lx {

struct JpegComponentSpec {
    int id = 0;
    int h = 1, v = 1;   // sampling factors, 1..4
    int quantTable = 0;  // 0..3
};

struct JpegFrameHeader {
    uint8_t marker = 0;  // 0xC0..0xCF
    int precision = 8;
    int width = 0, height = 0;
    std::vector<JpegComponentSpec> components;

    bool progressive() const { return (marker & 3) == 2; }
    // Huffman-coded, 8-bit, sequential or progressive, not hierarchical, 1, 3 or 4
    // components with factors 1..4.
    bool decodable() const;
};

struct JpegScanHeader {
    int count = 0;
    std::array<int, 4> component{};  // indices into the frame's components
    std::array<int, 4> dcTable{}, acTable{};
    int ss = 0, se = 63, ah = 0, al = 0;
};

class JpegMarkerReader {
public:
    enum class Stop { Frame, Scan, End };

    explicit JpegMarkerReader(std::span<const uint8_t> file) : file_(file) {}

    // Checks the start-of-image marker; false when the data is no JPEG file.
    bool start();
    // Reads segments up to and including the next frame header (Stop::Frame), scan header
    // (Stop::Scan, position at the entropy-coded data), or the end of the image or data
    // (Stop::End, also for a damaged segment or a second frame header).
    Stop next();

    size_t position() const { return pos_; }
    void setPosition(size_t pos) { pos_ = pos < file_.size() ? pos : file_.size(); }

    bool hasFrame() const { return hasFrame_; }
    const JpegFrameHeader& frame() const { return frame_; }
    const JpegScanHeader& scan() const { return scan_; }
    int restartInterval() const { return restartInterval_; }

    const QuantTable* quant(int slot) const { return quantSet_[slot] ? &quant_[slot] : nullptr; }
    const HuffmanSpec* dcSpec(int slot) const { return dcSet_[slot] ? &dc_[slot] : nullptr; }
    const HuffmanSpec* acSpec(int slot) const { return acSet_[slot] ? &ac_[slot] : nullptr; }
    // Motion-JPEG frames leave the example tables out; slots 0 and 1 get them when empty.
    void supplyStandardHuffmanTables();

    // How three or four components are coded, from the JFIF and Adobe markers and the
    // component ids, as the common decoders decide.
    enum class Colour { Grey, YCbCr, Rgb, Cmyk, Ycck, Other };
    Colour colour() const;

private:
    bool readSegment(uint8_t marker, std::span<const uint8_t> body);
    bool readFrame(uint8_t marker, std::span<const uint8_t> body);
    bool readScan(std::span<const uint8_t> body);
    bool readQuant(std::span<const uint8_t> body);
    bool readHuffman(std::span<const uint8_t> body);

    std::span<const uint8_t> file_;
    size_t pos_ = 0;
    bool hasFrame_ = false;
    JpegFrameHeader frame_;
    JpegScanHeader scan_;
    int restartInterval_ = 0;
    bool jfif_ = false, adobe_ = false;
    int adobeTransform_ = -1;
    std::array<QuantTable, 4> quant_{};
    std::array<bool, 4> quantSet_{};
    std::array<HuffmanSpec, 4> dc_{}, ac_{};
    std::array<bool, 4> dcSet_{}, acSet_{};
};

}  // namespace lx
