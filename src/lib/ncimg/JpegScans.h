// Entropy coding of the quantised coefficients of a whole frame: one sequential scan, or
// the scans of a progressive frame (spectral selection and successive approximation).
//
// Each scan can be run twice: once counting the Huffman symbols it would use (to build
// optimal tables) and once writing bits with the chosen tables.
#pragma once

#include "JpegHuffman.h"
#include "JpegSimd.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace lx {

// One colour component's coefficients, whole MCUs of blocks in raster order, each block
// 64 coefficients in zigzag order.
struct JpegComponent {
    int id = 1;
    int hSampling = 1, vSampling = 1;
    int tableIndex = 0;                        // 0 luminance, 1 chrominance tables
    int widthInBlocks = 0, heightInBlocks = 0;  // blocks covering real samples
    int blocksAcross = 0, blocksDown = 0;       // padded out to whole MCUs
    // The coefficients held: all block rows, or (when coding while transforming) only
    // those of one MCU row, starting at block row firstBlockRow.
    int firstBlockRow = 0;
    // Left uninitialised when made: every block is written before it is coded, and a
    // whole image's worth would otherwise be cleared once for nothing.
    std::unique_ptr<int16_t[]> coefficients;

    int16_t* block(int bx, int by) { return coefficients.get() + offset(bx, by); }
    const int16_t* block(int bx, int by) const { return coefficients.get() + offset(bx, by); }

private:
    size_t offset(int bx, int by) const {
        return (static_cast<size_t>(by - firstBlockRow) * blocksAcross + bx) * 64;
    }
};

struct JpegFrame {
    int width = 0, height = 0;
    int mcusAcross = 0, mcusDown = 0;
    int heldMcuRows = 0;  // mcusDown, or 1 when the coefficients are held one MCU row at a time
    std::vector<JpegComponent> components;
};

// Huffman tables by slot: [0] luminance, [1] chrominance.
struct ScanCodes {
    HuffmanCodes dc[2];
    HuffmanCodes ac[2];
};
struct ScanCounts {
    SymbolCounts dc[2]{};
    SymbolCounts ac[2]{};
};

// The DC predictors of a sequential scan, one per component.
struct DcPredictors {
    int value[4] = {};
};

// The predictors as they stand once MCU row `row` has been coded, so that a later range
// of rows can be coded separately and still join up into one scan.
DcPredictors PredictorsAfterRow(const JpegFrame& frame, int row);

// The sequential scan over MCU rows [rowBegin, rowEnd): all components, interleaved when
// there are several.
void CountSequential(const JpegFrame& frame, int rowBegin, int rowEnd, DcPredictors& predictors, ScanCounts& counts);
void EncodeSequential(const JpegFrame& frame, int rowBegin, int rowEnd, DcPredictors& predictors,
                      const ScanCodes& codes, BitStream& out, JpegSimd simd = BestJpegSimd());

// One scan of a progressive frame.
struct ProgressiveScan {
    std::vector<int> components;  // indexes into JpegFrame::components
    int spectralStart = 0, spectralEnd = 0;
    int bitHigh = 0, bitLow = 0;  // successive approximation: previous and current point transform
};

// The usual progression: DC first at reduced precision, then bands of AC, then refinements.
std::vector<ProgressiveScan> StandardProgression(int componentCount);

void CountProgressive(const JpegFrame& frame, const ProgressiveScan& scan, ScanCounts& counts);
void EncodeProgressive(const JpegFrame& frame, const ProgressiveScan& scan, const ScanCodes& codes, BitStream& out);

}  // namespace lx
