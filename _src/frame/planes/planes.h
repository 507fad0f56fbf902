// The frame of operations that need a whole plane, or a whole rectangle of pixels, before they can write any of it.
#pragma once

#include "call_images.h"
#include "loop.h"
#include "orv.h"

namespace orv {

struct PlanesCall {
    const CallImages &images;
    Size size;                         // of what is written
    const Size *sourceSizes = nullptr; // one a source; null where all are the size of what is written
    // Where a call without masks has one raster for both images, the source is the destination's rectangle, wherever
    // that of the source may lie.
    bool inPlaceIfShared = false;
    // The loop takes one channel at a time: it runs once for each channel of interleaved pixels, however many.
    bool byChannel = false;
};

// Runs the loop once for each plane, or once for all interleaved pixels. Under a mask, and for one channel of
// interleaved pixels, the loop reads and writes whole planes in scratch, which are delivered afterwards.
// 0, or ORV_STATUS_NO_MEMORY before anything is written. Headers have been validated and agree in their channels to
// process; the rectangles lie in their images.
OrvStatus runPlanes(const PlanesCall &call, const Loop &loop);

// Runs the loop over strips of the destination, for each plane. The loop computes any row from the whole source, of
// which nothing is copied: it starts at its rectangle, one channel of interleaved pixels at its first sample. The masks
// of both images select pixels of the destination.
// 0, or ORV_STATUS_NO_MEMORY before anything is written.
OrvStatus runRows(const CallImages &images, Size size, const Loop &loop);

} // namespace orv
