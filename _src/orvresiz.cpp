// Resize.
#include <algorithm>
#include <cstdint>

#include "call.h"
#include "geometry/box_means.h"
#include "geometry/resize_loops.h"
#include "kernels.h"
#include "planes.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvresiz";

bool isKnownDepth(std::int32_t depth)
{
    return depth == ORV_DEPTH_1U || depth == ORV_DEPTH_8U || depth == ORV_DEPTH_16U || depth == ORV_DEPTH_32F;
}

// Small sources have no neighbours for the longer methods.
std::int32_t modeFor(std::int32_t interpolate, const OrvImage &source)
{
    const std::int32_t side = std::min(source.width, source.height);
    if (interpolate == ORV_INTERPOLATE_NEAREST || side < 2)
        return KRN_NEAREST;
    return interpolate == ORV_INTERPOLATE_LINEAR || side < 4 ? KRN_LINEAR : KRN_CUBIC;
}

template <class Loops> OrvStatus runLoops(const ResizeCall &call, const CallImages &images)
{
    Loops loops(call);
    // Exhausted memory is a failure on every path, whichever memory it was.
    if (loops.prepare(images.inPlanes() ? 1 : channelsToProcess(images.destination())) != KRN_OK)
        return ORV_STATUS_NO_MEMORY;
    return runRows(images, {call.x.count, call.y.count}, {.run = [&](const Work &work) { return loops.run(work); }});
}

// Masks lie over the destination, whichever image has them.
OrvStatus run(const OrvImage &source, const OrvImage &destination, std::int32_t xDst, std::int32_t xSrc,
              std::int32_t yDst, std::int32_t ySrc, std::int32_t interpolate)
{
    const CallImages images({&source}, &destination);
    Size from = {0, 0}, mask = {0, 0}, room = maskedRoiSize(destination);
    roiSize(source, from);
    if (source.maskROI != nullptr && roiSize(*source.maskROI, mask))
        room = smaller(room, mask);
    if (room.empty())
        return images.masked() ? ORV_STATUS_NO_MEMORY : ORV_STATUS_OK;
    const OrvROI *const roi = source.roi;
    ResizeCall call = {.source = source,
                       .operand = resolve(source, false),
                       .x = {.length = from.width,
                             .offset = roi != nullptr ? roi->xOffset : 0,
                             .whole = source.width,
                             .to = xDst,
                             .from = xSrc},
                       .y = {.length = from.height,
                             .offset = roi != nullptr ? roi->yOffset : 0,
                             .whole = source.height,
                             .to = yDst,
                             .from = ySrc},
                       .mode = modeFor(interpolate, source)};
    const bool boxes = interpolate == ORV_INTERPOLATE_SUPER;
    // Enlarging boxes, and a rectangle beside the image, are no failure.
    if (from.empty() || (boxes && (xDst > xSrc || yDst > ySrc)))
        return ORV_STATUS_OK;
    call.x.findCount(room.width);
    call.y.findCount(room.height);
    if (call.x.count < 1 || call.y.count < 1)
        return ORV_STATUS_OK;
    return boxes ? runLoops<BoxMeans>(call, images) : runLoops<Interpolation>(call, images);
}

} // namespace

extern "C" void orvResize(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t xDst, std::int32_t xSrc,
                          std::int32_t yDst, std::int32_t ySrc, std::int32_t interpolate)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(interpolate < ORV_INTERPOLATE_NEAREST || interpolate > ORV_INTERPOLATE_SUPER,
                     ORV_STATUS_BAD_ARGUMENT,
                     "(interpolate != 0) && (interpolate != 1) && (interpolate != 2) && (interpolate != 3)") ||
        call.refuses(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->depth != dstImage->depth") ||
        call.refuses(srcImage->origin != dstImage->origin, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->origin != dstImage->origin") ||
        call.refuses(srcImage->dataOrder != dstImage->dataOrder, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->dataOrder != dstImage->dataOrder") ||
        call.refuses(channelsToProcess(*srcImage) != channelsToProcess(*dstImage), ORV_STATUS_BAD_CHANNELS, "") ||
        call.refuses(!isKnownDepth(srcImage->depth), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->depth != 1) && (srcImage->depth != 8) && (srcImage->depth != 16) && "
                     "(srcImage->depth != 32)") ||
        call.refuses(xDst <= 0 || xSrc <= 0, ORV_STATUS_BAD_ARGUMENT, "(xDst<=0) || (xSrc<=0)") ||
        call.refuses(yDst <= 0 || ySrc <= 0, ORV_STATUS_BAD_ARGUMENT, "(yDst<=0) || (ySrc<=0)") ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(srcImage->depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, ""))
        call.report();
    else
        call.result(run(*srcImage, *dstImage, xDst, xSrc, yDst, ySrc, interpolate));
}
