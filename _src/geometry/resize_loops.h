// The loops of a resize. Each has tables and row buffers, which are taken before anything is written.
#pragma once

#include <cstdint>

#include "geometry/resize_tables.h"
#include "loop.h"
#include "operand.h"
#include "orv.h"

namespace orv {

// What a loop must know of a call.
struct ResizeCall {
    const OrvImage &source;
    Operand operand; // the same
    ResizeAxis x, y;
    std::int32_t mode; // of kernels
};

// The nearest pixel, or two or four of them in both directions.
class Interpolation {
public:
    explicit Interpolation(const ResizeCall &call) : call_(call) {}

    // Takes memory for pixels of at most this many samples.
    KrnStatus prepare(std::int32_t samplesPerPixel);
    KrnStatus run(const Work &work);

private:
    std::int32_t taps() const { return call_.mode == KRN_NEAREST ? 0 : call_.mode == KRN_LINEAR ? 2 : 4; }
    bool floats() const { return call_.mode == KRN_CUBIC || call_.source.depth == ORV_DEPTH_32F; }
    KrnStatus gatherRow(const Work &work, std::int32_t row) const;
    KrnStatus interpolateRow(const Work &work, std::int32_t sourceRow, const void *&buffer);
    KrnStatus blendRow(const Work &work, std::int32_t row);

    static constexpr std::int32_t mostTaps = 4;

    const ResizeCall &call_;
    Scratch scratch_;
    ResizeTable columns_, rows_;
    std::uint8_t *buffers_[mostTaps] = {};
    std::int32_t held_[mostTaps] = {};    // the source row in each buffer, counted from the image's first; -1 for none
    const std::uint8_t *plane_ = nullptr; // whose rows they are; strips of one plane share them
};

} // namespace orv
