// The frame of operations that only read: one image, or the same rectangle of two.
#pragma once

#include "area.h"
#include "loop.h"
#include "orv.h"

namespace orv {

// What a loop is given where one channel of interleaved pixels is selected.
enum class Selected {
    Gathered,    // a raster of that channel alone, strip by strip
    WholePixels, // pixels of three or four samples; Work::channel says which of them counts
};

struct MeasureCall {
    const OrvImage *image;
    const OrvImage *other = nullptr; // or none
    Size size;                       // of what is read
    bool masked = false;             // the images' masks are consulted: Work::mask selects pixels
    Selected selected = Selected::Gathered;
};

// Runs the loop over each plane, or over interleaved pixels, one strip after the other. The loop keeps its results and
// folds those of strips, planes and channels into one. An empty rectangle is not read at all.
// 0, or ORV_STATUS_NO_MEMORY. Headers have been validated and agree in their channels to process.
OrvStatus runMeasure(const MeasureCall &call, const Loop &loop);

} // namespace orv
