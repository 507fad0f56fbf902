// One call of a loop that reads rectangles of its sources and writes one of the destination: plane by plane, over whole
// pixels, or through scratch where the loop cannot run from image to image. Frames are made of it.
#pragma once

#include "call_images.h"
#include "loop.h"

namespace orv {

struct RectangleCall {
    const CallImages &images;
    Size size;               // of what is written
    const Size *sourceSizes; // of what is read of each source, or null where that is the same size
    // The loop takes all rows of a rectangle at once, and must not write where it still reads.
    bool whole = false;
    // The loop reads where it likes: sources are neither gathered nor cut into strips. They start at their rectangle,
    // one channel of interleaved pixels at its first sample. Work::rowsAbove tells the rows of a strip.
    bool freeSources = false;
    // The loop takes one channel at a time, of interleaved pixels too.
    bool byChannel = false;
    // Where a straight call has one raster for the first source and the destination, the loop is given the
    // destination's rectangle as that source.
    bool inPlaceIfShared = false;
};

// The status of the first kernel that refuses ends the call, and its strip is not delivered.
KrnStatus runRectangles(const RectangleCall &call, const Loop &loop);

} // namespace orv
