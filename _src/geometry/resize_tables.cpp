// The tables of resize_tables.h.
#include "geometry/resize_tables.h"

#include <algorithm>
#include <numeric>

namespace orv {
namespace {

constexpr double slack = 1e-7; // what counts may fall short by, as positions may in the kernels

// Rounded to a double, also where the processor calculates with more bits.
double stored(double value)
{
    const volatile double rounded = value;
    return rounded;
}

} // namespace

void ResizeAxis::findCount(std::int32_t room)
{
    const double exact = stored(length * stored(factor()));
    count = static_cast<std::int32_t>(std::min<double>(exact + slack, room));
    if (count < 1)
        count = exact < 0.5 ? 0 : 1;
}

KrnStatus ResizeTable::fill(const ResizeAxis &axis, std::int32_t mode, bool floats, std::uint8_t *memory)
{
    indices = reinterpret_cast<std::int32_t *>(memory);
    weights = indices + axis.count;
    const double factor = stored(axis.factor()), scaled = stored(axis.length * factor);
    const double step = mode == KRN_NEAREST ? 1 / factor : scaled > 1 ? (axis.length - 1) / stored(scaled - 1) : 0;
    const double start = mode == KRN_NEAREST ? stored(step) / 2 : 0;
    const Kernel<ResizeAxisKernel> &kernel = floats ? krnResizeAxis32f : krnResizeAxis32s;
    return kernel(start, stored(step), axis.count, mode, axis.offset, axis.whole - 1, indices, weights);
}

// With the factor as a reduced fraction, a source has as many units as its numerator and a box as many as its
// denominator. The last boxes may pass the end of the rectangle: they have what lies inside.
void BoxTable::fill(const ResizeAxis &axis, std::uint8_t *memory)
{
    const std::int32_t divisor = std::gcd(axis.to, axis.from);
    sourceUnits = axis.to / divisor;
    boxUnits = axis.from / divisor;
    first = reinterpret_cast<std::int32_t *>(memory);
    last = first + axis.count;
    firstWeight = last + axis.count;
    lastWeight = firstWeight + axis.count;
    const std::int64_t most = std::int64_t{axis.length} * sourceUnits;
    for (std::int32_t box = 0; box < axis.count; ++box) {
        const std::int64_t start = std::min(std::int64_t{box} * boxUnits, most - 1);
        const std::int64_t end = std::min(start + boxUnits, most);
        const std::int64_t firstEnd = std::min((start / sourceUnits + 1) * sourceUnits, end);
        first[box] = static_cast<std::int32_t>(start / sourceUnits);
        last[box] = static_cast<std::int32_t>((end - 1) / sourceUnits);
        firstWeight[box] = static_cast<std::int32_t>(firstEnd - start);
        lastWeight[box] = static_cast<std::int32_t>((end - 1) % sourceUnits + 1);
    }
}

double BoxTable::weightsOf(std::int32_t box) const
{
    const std::int32_t pixels = last[box] - first[box];
    return pixels == 0 ? firstWeight[box] : firstWeight[box] + (pixels - 1.0) * sourceUnits + lastWeight[box];
}

} // namespace orv
