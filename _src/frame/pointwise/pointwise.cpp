// The frame of pointwise.h.
#include "pointwise.h"

#include "rectangle_call.h"

namespace orv {

OrvStatus runPointwise(const CallImages &images, const Loop &loop)
{
    return statusOf(runRectangles({.images = images, .size = images.commonSize(), .sourceSizes = nullptr}, loop));
}

} // namespace orv
