// The boxes of box_table.h.
#include "geometry/box_table.h"

#include <algorithm>
#include <numeric>

namespace orv {

// With the factor as a reduced fraction, a source has as many units as its numerator and a box as many as its
// denominator. The last boxes may pass the end of the rectangle: they have what lies inside.
BoxTable::BoxTable(const ResizeAxis &axis)
    : sourceUnits_(axis.to / std::gcd(axis.to, axis.from)), boxUnits_(axis.from / std::gcd(axis.to, axis.from))
{
    units_ = std::int64_t{axis.length} * sourceUnits_;
}

Box BoxTable::operator[](std::int32_t box) const
{
    const std::int64_t start = std::min(std::int64_t{box} * boxUnits_, units_ - 1);
    const std::int64_t end = std::min(start + boxUnits_, units_);
    const std::int64_t firstEnd = std::min((start / sourceUnits_ + 1) * sourceUnits_, end);
    return {static_cast<std::int32_t>(start / sourceUnits_), static_cast<std::int32_t>((end - 1) / sourceUnits_),
            static_cast<std::int32_t>(firstEnd - start), static_cast<std::int32_t>((end - 1) % sourceUnits_ + 1)};
}

double BoxTable::weightsOf(const Box &box) const
{
    const std::int32_t sources = box.last - box.first;
    return sources == 0 ? box.firstWeight : box.firstWeight + (sources - 1.0) * sourceUnits_ + box.lastWeight;
}

// A box that starts within a source has a part of one more.
std::int32_t BoxTable::taps() const
{
    const std::int64_t most = (std::int64_t{boxUnits_} + sourceUnits_ - 2) / sourceUnits_ + 1;
    return static_cast<std::int32_t>(std::min(most, (units_ + sourceUnits_ - 1) / sourceUnits_));
}

} // namespace orv
