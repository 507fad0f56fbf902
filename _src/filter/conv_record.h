// Records of convolution kernels: what their users and their tests share.
#pragma once

#include <algorithm>
#include <cstddef>

#include "window.h"

namespace orv {

// Whether no window can be made of the record. Anchors are stored from the right and from below, which changes nothing
// here.
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

// The window is flipped: it reaches as far to the left as the stored anchor says.
template <class Record> Margins reachOf(const Record &kernel)
{
    return {kernel.anchorX, givenAnchorX(kernel), kernel.anchorY, givenAnchorY(kernel)};
}

// The call of one kernel that works on the samples as they are.
template <class Record>
Neighbourhood neighbourhoodOf(const Record &kernel, const OrvImage *source, const OrvImage *destination)
{
    return {source, destination, reachOf(kernel), kernel.anchorX, kernel.anchorY, source->alphaChannel != 0};
}

// What several kernels reach together, and how far from the image a rectangle may start then: a rule of its own.
template <class Record> void unite(Neighbourhood &call, const Record &kernel)
{
    const Margins reach = reachOf(kernel);
    call.reach = {std::max(call.reach.left, reach.left), std::max(call.reach.right, reach.right),
                  std::max(call.reach.top, reach.top), std::max(call.reach.bottom, reach.bottom)};
    call.rimLeft = std::max({call.rimLeft, kernel.anchorX - 1, kernel.nCols - kernel.anchorX - 1});
    call.rimTop = std::max({call.rimTop, kernel.anchorY - 1, kernel.nRows - kernel.anchorY - 1});
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
