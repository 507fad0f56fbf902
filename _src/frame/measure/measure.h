// The frame of operations that only read: one image, or the same rectangle of two.
#pragma once

#include <cstddef>

#include "area.h"
#include "loop.h"
#include "orv.h"

namespace orv {

// What a loop is given where one channel of interleaved pixels is selected.
enum class Selected {
    Gathered,    // a raster of that channel alone, strip by strip
    WholePixels, // pixels of three or four samples; Work::channel says which of them counts
};

// What a loop is given of pixels that no mask selects.
enum class Unselected { AsTheyAre, Zeroed };

constexpr std::size_t mostMeasured = 2; // images, and their masks

struct MeasureCall {
    const OrvImage *image;
    const OrvImage *other = nullptr;          // or none
    Size size;                                // of what is read
    const OrvImage *masks[mostMeasured] = {}; // those that are consulted; Work::mask is their bitwise AND
    Unselected unselected = Unselected::Zeroed;
    Selected selected = Selected::Gathered;
};

// Runs the loop over each plane, or over interleaved pixels, one strip after the other. The loop keeps its results and
// folds those of strips, planes and channels into one; the last strip of a plane has no rows below it. An empty
// rectangle is not read at all, but the scratch of its masks, or of a gathered channel without rows, cannot be
// allocated.
// 0, or ORV_STATUS_NO_MEMORY. Headers have been validated and agree in their channels to process.
OrvStatus runMeasure(const MeasureCall &call, const Loop &loop);

} // namespace orv
