// The frame of operations that compute each pixel from the same place of the sources.
#pragma once

#include "call_images.h"
#include "loop.h"
#include "orv.h"

namespace orv {

// Runs the loop over the rectangle that the images and their masks have in common. The result is 0, or
// ORV_STATUS_NO_MEMORY before anything is written.
//
// Headers have been validated and agree in their channels to process. Which results a loop gives where rasters overlap
// at different positions is open, but under a mask and for a single channel of pixels the whole result is there before
// any of it is written.
OrvStatus runPointwise(const CallImages &images, const Loop &loop);

} // namespace orv
