// The square of an image.
#include <algorithm>
#include <cstdint>

#include "arith/arithmetic.h"
#include "arith/binary_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsqr";

auto runSquare(const LayoutKernels<UnaryScaledKernel> &kernels)
{
    return [kernels](Layout layout, const Raster *in, Raster out, Size size) {
        kernels[layout](in->data, in->step, out.data, out.step, size.width, size.height, unscaled);
    };
}

void squareSignedBytes(Layout layout, const Raster *in, Raster out, Size size)
{
    plainRows<std::int8_t>(layout, *in, out, size, [](std::int8_t x) { return std::min(x * x, 127); });
}

void squareFloats(Layout layout, const Raster *in, Raster out, Size size)
{
    constexpr LayoutKernels<CopyKernel> kernels = ORV_LAYOUT_KERNELS(krnSqr32f);
    kernels[layout](in->data, in->step, out.data, out.step, size.width, size.height);
}

OrvStatus run(const OrvImage *src, const OrvImage *dst)
{
    switch (dst->depth) {
    case ORV_DEPTH_8U:
        return pointwise(runSquare(ORV_LAYOUT_KERNELS(krnSqr8u)), dst, src);
    case ORV_DEPTH_8S:
        return pointwise(squareSignedBytes, dst, src);
    case ORV_DEPTH_16U:
        return pointwise(runSquare(ORV_LAYOUT_KERNELS(krnSqr16u)), dst, src);
    case ORV_DEPTH_16S:
        return pointwise(runSquare(ORV_LAYOUT_KERNELS(krnSqr16s)), dst, src);
    case ORV_DEPTH_32F:
        return pointwise(squareFloats, dst, src);
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvSquare(const OrvImage *src, OrvImage *dst)
{
    ORV_REFUSE(checkHeaders(src, dst));
    ORV_REFUSE(comparePair(*src, *dst, textsWithAlpha));
    ORV_RETURN_RUN(run(src, dst));
}
