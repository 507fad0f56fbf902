// The frame of planes.h.
#include "planes.h"

#include "rectangle_call.h"

namespace orv {

OrvStatus runPlanes(const PlanesCall &call, const Loop &loop)
{
    return statusOf(runRectangles({.images = call.images,
                                   .size = call.size,
                                   .sourceSizes = call.sourceSizes,
                                   .whole = true,
                                   .byChannel = call.byChannel,
                                   .inPlaceIfShared = call.inPlaceIfShared},
                                  loop));
}

OrvStatus runRows(const CallImages &images, Size size, const Loop &loop)
{
    return statusOf(runRectangles({.images = images, .size = size, .sourceSizes = nullptr, .freeSources = true}, loop));
}

} // namespace orv
