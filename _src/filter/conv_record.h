// Records of convolution kernels: their geometry and divisor.
#pragma once

#include <algorithm>
#include <cstdint>

#include "orv.h"
#include "window.h"

namespace orv {

// Whether the record describes no window. Anchors are stored from the right and from below; the bounds are the same.
template <class Record> bool badStructure(const Record &kernel)
{
    return kernel.nRows < 1 || kernel.nCols < 1 || kernel.anchorX < 0 || kernel.anchorY < 0 ||
           kernel.anchorY >= kernel.nRows || kernel.anchorX >= kernel.nCols;
}

// The anchor as it was given.
template <class Record> std::int32_t givenAnchorX(const Record &kernel)
{
    return kernel.nCols - kernel.anchorX - 1;
}
template <class Record> std::int32_t givenAnchorY(const Record &kernel)
{
    return kernel.nRows - kernel.anchorY - 1;
}

// What the record reads. It is flipped: it extends as far to the left as the stored anchor says.
template <class Record> Window windowOf(const Record &kernel)
{
    return {.columns = kernel.nCols, .rows = kernel.nRows, .anchorX = kernel.anchorX, .anchorY = kernel.anchorY};
}

// The call of one record on the samples as they are.
template <class Record> WindowCall callOfOne(const Record &kernel, const OrvImage *source, const OrvImage *destination)
{
    return {.source = source,
            .destination = destination,
            .margins = windowOf(kernel).margins(),
            .startLeft = kernel.anchorX,
            .startAbove = kernel.anchorY,
            .alphaOf = source};
}

// The call of several records, each of which is an argument of add().
inline WindowCall callOfSeveral(const OrvImage *source, const OrvImage *destination)
{
    return {.source = source,
            .destination = destination,
            .margins = {},
            .startLeft = 0,
            .startAbove = 0,
            .alphaOf = source};
}

// Several records have a rule of their own for how far outside the image a rectangle may start.
template <class Record> void add(WindowCall &call, const Record &kernel)
{
    call.margins = larger(call.margins, windowOf(kernel).margins());
    call.startLeft = std::max({call.startLeft, kernel.anchorX - 1, givenAnchorX(kernel)});
    call.startAbove = std::max({call.startAbove, kernel.anchorY - 1, givenAnchorY(kernel)});
}

inline std::int32_t shiftOf(const OrvConvKernel &kernel)
{
    return kernel.nShiftR & 31;
}

inline std::int32_t divisorOf(const OrvConvKernel &kernel)
{
    return static_cast<std::int32_t>(1u << shiftOf(kernel));
}

} // namespace orv
