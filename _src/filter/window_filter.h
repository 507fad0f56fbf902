// What the filters with a window share: the call of the frame, the shape that kernels ask for.
#pragma once

#include <cstdint>

#include "area.h"
#include "comparisons.h"
#include "kernels.h"
#include "layout.h"
#include "loop.h"
#include "window.h"

namespace orv {

// Sides and anchor as the application gave them.
inline Refusal checkWindow(const Window &window)
{
    return firstOf({{window.rows < 0 || window.columns < 0, ORV_STATUS_BAD_ARGUMENT, "(nRows<0||nCols<0)"},
                    {window.anchorX < 0 || window.anchorY < 0, ORV_STATUS_BAD_ARGUMENT, "(anchorX<0||anchorY<0)"},
                    {window.anchorX >= window.columns || window.anchorY >= window.rows, ORV_STATUS_BAD_ARGUMENT,
                     "(anchorX>=nCols||anchorY>=nRows)"}});
}

// A filter whose window is honoured in full. The destination says which channel is its alpha channel.
inline WindowCall callOf(const Window &window, const OrvImage *source, const OrvImage *destination)
{
    return {.source = source,
            .destination = destination,
            .margins = window.margins(),
            .startLeft = window.anchorX,
            .startAbove = window.anchorY,
            .alphaOf = destination};
}

// The depths of filters that compute, and the kernels of each.
inline bool isFilterDepth(std::int32_t depth)
{
    return depth == ORV_DEPTH_8U || depth == ORV_DEPTH_16S || depth == ORV_DEPTH_32F;
}
template <class Kernels> struct FilterKernels {
    Kernels bytes, words, floats;

    const Kernels &operator[](std::int32_t depth) const
    {
        return depth == ORV_DEPTH_8U ? bytes : depth == ORV_DEPTH_16S ? words : floats;
    }
};

inline WindowShape shapeOf(const Work &work, const Window &window, std::int32_t sampleBytes)
{
    return {work.size.width, samplesPerPixel(work.layout), sampleBytes, window.columns, window.rows};
}

} // namespace orv
