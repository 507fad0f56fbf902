// Magnitude.
#include <cstddef>
#include <cstdint>
#include <limits>

#include "frame/checks.h"
#include "frame/pointwise.h"
#include "frame/report.h"

namespace {

#include "rows.h"

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
    const std::int32_t samples = samplesPerPixel(layout);
    const std::int32_t pixelBytes = samples * static_cast<std::int32_t>(sizeof(Sample));
    const auto allSamples = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        const std::size_t count = pixels * static_cast<std::size_t>(samples);
        ORV_INDEPENDENT
        ORV_UNROLLED
        for (std::size_t i = 0; i < count; ++i)
            store(out, i, magnitude(load<Sample>(in, i)));
    };
    const auto threeOfFour = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i)
            for (std::size_t channel = 0; channel < 3; ++channel)
                store(out, 4 * i + channel, magnitude(load<Sample>(in, 4 * i + channel)));
    };
    const auto source = from(sources->data, sources->step, pixelBytes);
    const auto target = to(destination.data, destination.step, pixelBytes);
    if (layout == Layout::AC4)
        overRows(size.width, size.height, threeOfFour, source, target);
    else
        overRows(size.width, size.height, allSamples, source, target);
}

void absoluteFloats(Layout layout, const Raster *sources, Raster destination, Size size)
{
    constexpr LayoutKernels<AbsKernel> kernels = {krnAbs32fC1, krnAbs32fC3, krnAbs32fC4, krnAbs32fAC4};
    kernels[layout](sources->data, sources->step, destination.data, destination.step, size.width, size.height);
}

} // namespace

extern "C" OrvStatus orvAbs(const OrvImage *srcImage, OrvImage *dstImage)
{
    ORV_CHECK_HEADER(srcImage);
    ORV_CHECK_HEADER(dstImage);
    ORV_REFUSE_IF(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth != dstImage->depth)");
    ORV_REFUSE_IF(srcImage->depth != ORV_DEPTH_1U && srcImage->dataOrder != dstImage->dataOrder,
                  ORV_STATUS_BAD_ARGUMENT, "(srcImage->dataOrder != dstImage->dataOrder)");
    ORV_REFUSE_IF(channelsToProcess(*srcImage) != channelsToProcess(*dstImage), ORV_STATUS_BAD_CHANNELS, "");
    ORV_REFUSE_IF(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "");
    switch (dstImage->depth) {
    case ORV_DEPTH_8U:
    case ORV_DEPTH_16U:
        return orvCopy(srcImage, dstImage);
    case ORV_DEPTH_8S:
        ORV_RETURN_LOOP(pointwise(absolute<std::int8_t>, dstImage, srcImage));
    case ORV_DEPTH_16S:
        ORV_RETURN_LOOP(pointwise(absolute<std::int16_t>, dstImage, srcImage));
    case ORV_DEPTH_32S:
        ORV_RETURN_LOOP(pointwise(absolute<std::int32_t>, dstImage, srcImage));
    case ORV_DEPTH_32F:
        ORV_RETURN_LOOP(pointwise(absoluteFloats, dstImage, srcImage));
    default:
        return ORV_REPORT(ORV_STATUS_NOT_IMPLEMENTED, "");
    }
}
