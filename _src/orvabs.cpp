// Magnitude.
#include "arith/arithmetic.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvabs";

OrvStatus run(const OrvImage *source, const OrvImage *destination)
{
    switch (destination->depth) {
    case ORV_DEPTH_8S:
        return runPointwise({{source}, destination}, {.run = makeUnary(ORV_LAYOUT_KERNELS(krnAbs8s))});
    case ORV_DEPTH_16S:
        return runPointwise({{source}, destination}, {.run = makeUnary(ORV_LAYOUT_KERNELS(krnAbs16s))});
    case ORV_DEPTH_32S:
        return runPointwise({{source}, destination}, {.run = makeUnary(ORV_LAYOUT_KERNELS(krnAbs32s))});
    case ORV_DEPTH_32F:
        return runPointwise({{source}, destination}, {.run = makeUnary(ORV_LAYOUT_KERNELS(krnAbs32f))});
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvAbs(const OrvImage *srcImage, OrvImage *dstImage)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)))
        return call.report();
    // The magnitude of an unsigned sample is the sample.
    if (dstImage->depth == ORV_DEPTH_8U || dstImage->depth == ORV_DEPTH_16U)
        return orvCopy(srcImage, dstImage);
    return call.result(run(srcImage, dstImage));
}
