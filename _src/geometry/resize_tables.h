// Where the results of a resize lie among the sources, column by column and row by row.
#pragma once

#include <cstdint>

#include "area.h"
#include "kernels.h"
#include "orv.h"
#include "scratch.h"

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

// Indices and weights of an axis.
struct ResizeTable {
    std::int32_t *indices = nullptr;
    void *weights = nullptr;

    static std::int64_t bytes(std::int32_t count) { return 4 * std::int64_t{count} * (1 + cubicFactors); }
    KrnStatus fill(const ResizeAxis &axis, std::int32_t mode, bool floats, std::uint8_t *memory);
};

} // namespace orv
