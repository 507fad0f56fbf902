// Magnitude.
#include <cstdint>
#include <limits>

#include "arith/plain_rows.h"
#include "pointwise.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvabs";

// |sample| with saturation: the lowest value counts as the next one before it is negated.
template <class Sample> inline Sample magnitude(Sample sample)
{
    constexpr Sample lowest = std::numeric_limits<Sample>::min() + 1;
    const Sample bounded = sample > lowest ? sample : lowest;
    const Sample negated = static_cast<Sample>(-bounded);
    return sample > negated ? sample : negated;
}

template <class Sample> void absolute(Layout layout, const Raster *sources, Raster destination, Size size)
{
    plainRows<Sample>(layout, *sources, destination, size, [](Sample sample) { return magnitude(sample); });
}

void absoluteFloats(Layout layout, const Raster *sources, Raster destination, Size size)
{
    constexpr LayoutKernels<CopyKernel> kernels = ORV_LAYOUT_KERNELS(krnAbs32f);
    kernels[layout](sources->data, sources->step, destination.data, destination.step, size.width, size.height);
}

} // namespace

extern "C" OrvStatus orvAbs(const OrvImage *srcImage, OrvImage *dstImage)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    switch (dstImage->depth) {
    case ORV_DEPTH_8U:
    case ORV_DEPTH_16U:
        return orvCopy(srcImage, dstImage);
    case ORV_DEPTH_8S:
        ORV_RETURN_RUN(pointwise(absolute<std::int8_t>, dstImage, srcImage));
    case ORV_DEPTH_16S:
        ORV_RETURN_RUN(pointwise(absolute<std::int16_t>, dstImage, srcImage));
    case ORV_DEPTH_32S:
        ORV_RETURN_RUN(pointwise(absolute<std::int32_t>, dstImage, srcImage));
    case ORV_DEPTH_32F:
        ORV_RETURN_RUN(pointwise(absoluteFloats, dstImage, srcImage));
    default:
        return ORV_REPORT(ORV_STATUS_NOT_IMPLEMENTED, "");
    }
}
