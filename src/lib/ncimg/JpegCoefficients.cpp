#include "JpegCoefficients.h"

#include "JpegSampling.h"

#include <algorithm>
#include <cstring>

namespace lx {

SourceRows::SourceRows(const PackedDib& dib) : dib_(dib) {
    for (auto& row : scratch_) row.resize(static_cast<size_t>(dib.width()) * 3);
    greyOf_.fill(0);
    const auto palette = dib.palette();
    for (size_t i = 0; i < palette.size() && i < greyOf_.size(); ++i) greyOf_[i] = palette[i].r;
}

const uint8_t* SourceRows::colour(int y, int& pixelBytes, int slot) {
    if (dib_.bitCount() == 24 || (dib_.bitCount() == 32 && dib_.compression() == kBiRgb)) {
        pixelBytes = dib_.bitCount() / 8;
        return dib_.row(y);
    }
    pixelBytes = 3;
    std::vector<uint8_t>& scratch = scratch_[slot];
    for (int x = 0; x < dib_.width(); ++x) {
        const uint32_t p = dib_.pixel(x, y);
        scratch[3 * x] = static_cast<uint8_t>(p);
        scratch[3 * x + 1] = static_cast<uint8_t>(p >> 8);
        scratch[3 * x + 2] = static_cast<uint8_t>(p >> 16);
    }
    return scratch.data();
}

const uint8_t* SourceRows::grey(int y) {
    const uint8_t* row = dib_.row(y);
    std::vector<uint8_t>& scratch = scratch_[0];
    for (int x = 0; x < dib_.width(); ++x)
        scratch[x] = dib_.bitCount() == 8 ? greyOf_[row[x]] : static_cast<uint8_t>(dib_.pixel(x, y));
    return scratch.data();
}

JpegFrame PlanFrame(int width, int height, bool grey, bool wholeImage) {
    auto blocks = [](int samples) { return (samples + 7) / 8; };
    JpegFrame frame;
    frame.width = width;
    frame.height = height;
    const int mcuSide = grey ? 8 : 16;
    frame.mcusAcross = (width + mcuSide - 1) / mcuSide;
    frame.mcusDown = (height + mcuSide - 1) / mcuSide;
    frame.heldMcuRows = wholeImage ? frame.mcusDown : 1;
    const int componentCount = grey ? 1 : 3;
    for (int c = 0; c < componentCount; ++c) {
        JpegComponent comp;
        comp.id = c + 1;
        comp.hSampling = comp.vSampling = (c == 0 && !grey) ? 2 : 1;
        comp.tableIndex = c == 0 ? 0 : 1;
        // Chroma of a colour image has half the samples each way, rounded up.
        const int divisor = grey ? 1 : 2 / comp.hSampling;
        comp.widthInBlocks = blocks((width + divisor - 1) / divisor);
        comp.heightInBlocks = blocks((height + divisor - 1) / divisor);
        comp.blocksAcross = frame.mcusAcross * comp.hSampling;
        comp.blocksDown = frame.mcusDown * comp.vSampling;
        comp.coefficients.reset(new int16_t[static_cast<size_t>(comp.blocksAcross) * frame.heldMcuRows * comp.vSampling * 64]);
        frame.components.push_back(std::move(comp));
    }
    return frame;
}

CoefficientMaker::CoefficientMaker(const PackedDib& dib, JpegFrame& frame, const DctQuantizer (&quantizers)[2], int smoothing)
    : source_(dib), frame_(frame), quantizers_(quantizers), smoothing_(smoothing) {
    const JpegComponent& full = frame.components[0];
    rows_ = 8 * full.vSampling;
    width_ = 8 * full.blocksAcross;
    for (size_t c = 0; c < frame.components.size(); ++c) planes_[c].resize(static_cast<size_t>(rows_ + 2) * width_);
    work_.resize(static_cast<size_t>(rows_) * width_);
}

void CoefficientMaker::make(int mcuRow) {
    if (frame_.heldMcuRows == 1)
        for (JpegComponent& comp : frame_.components) comp.firstBlockRow = mcuRow * comp.vSampling;
    if (frame_.components.size() == 3 && smoothing_ == 0) return makeSubsampled(mcuRow);
    readRows(mcuRow);
    JpegComponent& full = frame_.components[0];
    const uint8_t* luma = plane(0, 0);
    if (smoothing_ > 0) {
        for (int r = 0; r < rows_; ++r)
            SmoothRow(plane(0, r - 1), plane(0, r), plane(0, r + 1), width_, smoothing_, work_.data() + r * width_);
        luma = work_.data();
    }
    transform(full, mcuRow, luma, width_);
    if (frame_.components.size() == 1) return;

    // Smoothed colour: the chroma planes are smoothed and halved in one step.
    const int half = width_ / 2;
    for (int c = 1; c < 3; ++c) {
        for (int r = 0; r < 8; ++r)
            SmoothDownsampleRow(plane(c, 2 * r - 1), plane(c, 2 * r), plane(c, 2 * r + 1), plane(c, 2 * r + 2), half,
                                smoothing_, work_.data() + r * half);
        transform(frame_.components[c], mcuRow, work_.data(), half);
    }
    fillPaddingBlocks(full, mcuRow);
}

void CoefficientMaker::makeSubsampled(int mcuRow) {
    const int half = width_ / 2;
    uint8_t* cb = work_.data();
    uint8_t* cr = work_.data() + static_cast<size_t>(8) * half;
    for (int r = 0; r < 8; ++r) {
        // Rows past the picture's bottom repeat the last row.
        const int top = std::min(mcuRow * rows_ + 2 * r, frame_.height - 1);
        const int bottom = std::min(top + 1, frame_.height - 1);
        int pixelBytes = 3;
        const uint8_t* topRow = source_.colour(top, pixelBytes, 0);
        const uint8_t* bottomRow = source_.colour(bottom, pixelBytes, 1);
        ConvertRowPairTo420(topRow, bottomRow, pixelBytes, frame_.width, width_, plane(0, 2 * r), plane(0, 2 * r + 1),
                            cb + r * half, cr + r * half);
    }
    JpegComponent& full = frame_.components[0];
    transform(full, mcuRow, plane(0, 0), width_);
    transform(frame_.components[1], mcuRow, cb, half);
    transform(frame_.components[2], mcuRow, cr, half);
    fillPaddingBlocks(full, mcuRow);
}

uint8_t* CoefficientMaker::plane(int c, int r) { return planes_[c].data() + static_cast<size_t>(r + 1) * width_; }

void CoefficientMaker::readRows(int mcuRow) {
    const int margin = smoothing_ > 0 ? 1 : 0;
    for (int r = -margin; r < rows_ + margin; ++r) {
        // Rows past the picture's edges repeat the edge row.
        const int y = std::clamp(mcuRow * rows_ + r, 0, frame_.height - 1);
        if (frame_.components.size() == 1) {
            uint8_t* out = plane(0, r);
            std::memcpy(out, source_.grey(y), frame_.width);
            std::fill(out + frame_.width, out + width_, out[frame_.width - 1]);
        } else {
            int pixelBytes = 3;
            const uint8_t* bgr = source_.colour(y, pixelBytes);
            ConvertRowToYcc(bgr, pixelBytes, frame_.width, width_, plane(0, r), plane(1, r), plane(2, r));
        }
    }
}

void CoefficientMaker::transform(JpegComponent& comp, int mcuRow, const uint8_t* samples, int stride) {
    const DctQuantizer& q = quantizers_[comp.tableIndex];
    for (int y = 0; y < comp.vSampling; ++y) {
        const uint8_t* band = samples + static_cast<size_t>(y * 8) * stride;
        const int by = mcuRow * comp.vSampling + y;
        ForwardDctQuantizeRow(band, stride, comp.blocksAcross, q, comp.block(0, by));
    }
}

void CoefficientMaker::fillPaddingBlocks(JpegComponent& comp, int mcuRow) {
    for (int y = 0; y < comp.vSampling; ++y) {
        const int by = mcuRow * comp.vSampling + y;
        for (int bx = 0; bx < comp.blocksAcross; ++bx) {
            const bool right = bx >= comp.widthInBlocks, below = by >= comp.heightInBlocks;
            if (!right && !below) continue;
            int16_t* block = comp.block(bx, by);
            const int16_t dc = below ? comp.block(bx, by - 1)[0] : block[-64];
            std::fill(block, block + 64, int16_t{0});
            block[0] = dc;
        }
    }
}

}  // namespace lx
