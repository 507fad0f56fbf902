// Where the results of a resize lie among the sources, column by column and row by row.
#pragma once

#include <algorithm>
#include <cstdint>

#include "kernels.h"
#include "operand.h"
#include "orv.h"

namespace orv {

// One axis of a call.
struct ResizeAxis {
    std::int32_t length = 0, offset = 0, whole = 0; // of the source: its rectangle, and the image
    std::int32_t to = 0, from = 0;                  // the factor, to over from
    std::int32_t count = 0;                         // of results; 0 for none

    double factor() const { return static_cast<double>(to) / from; }
    // Finds how many results there are, at most as many as there is room for.
    void findCount(std::int32_t room);
};

// A way to interpolate samples of one depth.
struct ResizeMethod {
    const Kernel<ResizeAxisKernel> &axis;
    const Kernel<ResizeKernel> &c1, &ac4;
    std::int32_t mode, bufferedBytes; // of a sample in a buffered row
    std::int32_t tapsInPlace;         // what krnResizeShuffles puts side by side

    std::int32_t taps() const { return mode == KRN_NEAREST ? 0 : mode == KRN_LINEAR ? 2 : 4; }
    std::int32_t weights() const { return mode == KRN_NEAREST ? 0 : mode == KRN_LINEAR ? 1 : cubicFactors; }
    // Four bytes a result, and as many a weight.
    std::int64_t axisBytes(std::int64_t count) const { return 4 * count * (1 + weights()); }
    KrnStatus fillAxis(const ResizeAxis &of, std::int32_t *memory) const;
};

// Offsets and weights of the columns, sample by sample.
struct ColumnTable {
    const ResizeMethod &method;
    const Operand &source;
    std::int32_t samplesPerPixel;

    std::int64_t bytes(std::int32_t count) const;
    KrnStatus fill(const ResizeAxis &axis, std::uint8_t *memory, ResizeColumns &columns) const;

private:
    std::int32_t placeBytes() const
    {
        return method.taps() == 0 ? source.sampleBytes : std::max(source.sampleBytes, method.bufferedBytes);
    }
};

} // namespace orv
