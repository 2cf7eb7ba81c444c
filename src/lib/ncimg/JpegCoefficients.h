// The first half of JPEG encoding: from a DIB's pixels to quantised DCT coefficients.
//
// PlanFrame lays out the frame (components, sampling, block counts) for an image;
// CoefficientMaker fills it one MCU row at a time: colour conversion (or grey samples
// from a grey palette), optional smoothing, 4:2:0 chroma downsampling, DCT and
// quantisation. Each maker has its own scratch rows, so separate threads can make
// separate rows of the same frame.
#pragma once

#include "JpegDct.h"
#include "JpegScans.h"
#include "PackedDib.h"

#include <array>
#include <cstdint>
#include <vector>

namespace lx {

// The frame's geometry, with room for the coefficients of every MCU row, or of one
// (`wholeImage` false) when each row is coded as soon as it is transformed.
JpegFrame PlanFrame(int width, int height, bool grey, bool wholeImage);

// The DIB's rows as blue-green-red pixels or as grey samples, whatever its depth. The
// common depths are read in place; the others are converted one row at a time.
class SourceRows {
public:
    explicit SourceRows(const PackedDib& dib);

    // Rows that need converting land in one of two scratch rows (`slot` 0 or 1), so two
    // rows can be held at once.
    const uint8_t* colour(int y, int& pixelBytes, int slot = 0);

    // Only for grey-palette images, where every colour's red equals its grey level.
    const uint8_t* grey(int y);

private:
    const PackedDib& dib_;
    std::vector<uint8_t> scratch_[2];
    std::array<uint8_t, 256> greyOf_;
};

// Turns one MCU row of the image at a time into quantised coefficients: conversion to
// the components, optional smoothing, chroma downsampling, DCT. Each worker thread has
// its own, so rows can be made in any order.
class CoefficientMaker {
public:
    CoefficientMaker(const PackedDib& dib, JpegFrame& frame, const DctQuantizer (&quantizers)[2], int smoothing);

    void make(int mcuRow);

private:
    // Row r of the MCU row in component c's full-resolution plane; -1 and rows_ are the
    // neighbours the smoothing filter reads.
    uint8_t* plane(int c, int r);

    void readRows(int mcuRow);

    // Colour without smoothing: luma rows and half-size chroma rows straight from pairs of
    // source rows, then all three transformed.
    void makeSubsampled(int mcuRow);

    void transform(JpegComponent& comp, int mcuRow, const uint8_t* samples, int stride);

    // Blocks that an MCU needs but no picture sample reaches carry only a DC value, the
    // same as their neighbour's, which costs the fewest bits.
    void fillPaddingBlocks(JpegComponent& comp, int mcuRow);

    SourceRows source_;
    JpegFrame& frame_;
    const DctQuantizer (&quantizers_)[2];
    int smoothing_;
    int rows_ = 0, width_ = 0;
    std::vector<uint8_t> planes_[3];
    std::vector<uint8_t> work_;
};

}  // namespace lx
