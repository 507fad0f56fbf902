// The tables of resize_tables.h.
#include "geometry/resize_tables.h"

#include <algorithm>

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

} // namespace orv
