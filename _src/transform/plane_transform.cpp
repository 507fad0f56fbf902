// From samples to floats, through the transform, and back.
#include "plane_transform.h"

#include "float_conversions.h"
#include "planes.h"
#include "scratch.h"

namespace orv {
namespace {

std::int32_t planeStep(Size size)
{
    return static_cast<std::int32_t>(roundedUp(std::int64_t{size.width} * 4));
}

// Float results are computed where they are stored; others in a plane of their own.
KrnStatus transformChannel(const TransformImages &images, const PlaneTransform &transform, const Work &work)
{
    const std::int32_t from = images.source().depth, to = images.destination().depth;
    const std::int64_t workBytes = roundedUp(transform.workBytes);
    const Raster plane =
        to == ORV_DEPTH_32F ? work.destination : Raster{work.scratch + workBytes, planeStep(work.size)};
    void *const scratch = workBytes > 0 ? work.scratch : nullptr;
    ConstRaster floats = work.sources[0];
    if (from != ORV_DEPTH_32F) {
        if (const KrnStatus status = toFloats(floats, from, plane, work.size); status != KRN_OK)
            return status;
        floats = plane;
    }
    if (const KrnStatus status = transform.run(floats, plane, scratch); status != KRN_OK)
        return status;
    return to == ORV_DEPTH_32F ? KrnStatus{KRN_OK} : fromFloats(plane, Layout::C1, to, work.destination, work.size);
}

} // namespace

void transformPlanes(const TransformImages &images, const PlaneTransform &transform)
{
    const auto run = [&](const Work &work) { return transformChannel(images, transform, work); };
    const auto bytes = [&](const Work &work) {
        const std::int64_t plane = std::int64_t{planeStep(work.size)} * work.size.height;
        return roundedUp(transform.workBytes) + (images.destination().depth == ORV_DEPTH_32F ? 0 : plane);
    };
    runPlanes({.images = images.images(), .size = images.size(), .byChannel = true},
              {.run = run, .scratchBytes = bytes});
}

} // namespace orv
