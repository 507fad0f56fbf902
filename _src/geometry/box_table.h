// The boxes of which a resize takes means, column by column or row by row.
#pragma once

#include <cstdint>

#include "geometry/resize_tables.h"

namespace orv {

// A box among the sources of an axis: its ends, and what they weigh. A box of one source has the first weight alone.
struct Box {
    std::int32_t first, last, firstWeight, lastWeight;
};

// The boxes of an axis, in units of which sources and boxes have whole numbers.
class BoxTable {
public:
    explicit BoxTable(const ResizeAxis &axis);

    std::int32_t sourceUnits() const { return sourceUnits_; }
    std::int32_t boxUnits() const { return boxUnits_; }
    Box operator[](std::int32_t box) const;
    double weightsOf(const Box &box) const;
    // The most sources that a box has.
    std::int32_t taps() const;

private:
    std::int64_t units_; // of all sources
    std::int32_t sourceUnits_, boxUnits_;
};

} // namespace orv
