// The square of an image.
#include <algorithm>
#include <cstdint>

#include "arith/arithmetic.h"
#include "arith/plain_rows.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsqr";

auto makeSquare(const LayoutKernels<UnaryScaledKernel> &kernels)
{
    return [&kernels](const Work &work) {
        const ConstRaster &in = work.sources[0];
        return kernels[work.layout](in.data, in.step, work.destination.data, work.destination.step, work.size.width,
                                    work.size.height, unscaled);
    };
}

OrvStatus run(const OrvImage *source, const OrvImage *destination)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return runPointwise({{source}, destination}, {.run = makeSquare(ORV_LAYOUT_KERNELS(krnSqr8u))});
    case ORV_DEPTH_8S:
        return runPointwise({{source}, destination},
                            {.run = makePlain<std::int8_t>([](std::int8_t x) { return std::min(x * x, 127); })});
    case ORV_DEPTH_16U:
        return runPointwise({{source}, destination}, {.run = makeSquare(ORV_LAYOUT_KERNELS(krnSqr16u))});
    case ORV_DEPTH_16S:
        return runPointwise({{source}, destination}, {.run = makeSquare(ORV_LAYOUT_KERNELS(krnSqr16s))});
    case ORV_DEPTH_32F:
        return runPointwise({{source}, destination}, {.run = makeUnary(ORV_LAYOUT_KERNELS(krnSqr32f))});
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvSquare(const OrvImage *src, OrvImage *dst)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(src, dst)) || call.refuses(comparePair(*src, *dst, textsWithAlpha)))
        return call.report();
    return call.result(run(src, dst));
}
