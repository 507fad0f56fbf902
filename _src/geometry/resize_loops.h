// The loops of a resize. Each has tables and row buffers, which are taken before anything is written.
#pragma once

#include <cstdint>

#include "geometry/resize_tables.h"
#include "loop.h"
#include "operand.h"
#include "orv.h"
#include "scratch.h"

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
    explicit Interpolation(const ResizeCall &call) : call_(call), method_(methodOf(call.mode, call.source.depth)) {}

    // Takes memory for pixels of so many samples.
    KrnStatus prepare(std::int32_t samplesPerPixel);
    KrnStatus run(const Work &work);

private:
    static const ResizeMethod &methodOf(std::int32_t mode, std::int32_t depth);

    const ResizeCall &call_;
    const ResizeMethod &method_;
    Scratch scratch_;
    ResizeColumns columns_ = {};
    ResizeRows rows_ = {};
    const std::uint8_t *plane_ = nullptr; // whose rows are buffered; strips of one plane share them
};

} // namespace orv
