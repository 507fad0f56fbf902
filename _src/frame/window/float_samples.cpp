// Conversions to floats and back.
#include "float_samples.h"

#include "channel_kernels.h"
#include "window.h"

namespace orv {
namespace {

struct Conversions {
    const Kernel<CopyKernel> &toFloats;
    LayoutKernels<ConvertRoundKernel> fromFloats;
};

#define ORV_CONVERSIONS(samples)                                             \
    {                                                                        \
        krnConvert##samples##32f, ORV_LAYOUT_KERNELS(krnConvert32f##samples) \
    }

constexpr Conversions bytes = ORV_CONVERSIONS(8u), signedBytes = ORV_CONVERSIONS(8s), words = ORV_CONVERSIONS(16u),
                      signedWords = ORV_CONVERSIONS(16s), longWords = ORV_CONVERSIONS(32s);

const Conversions &conversionsOf(std::int32_t depth)
{
    switch (depth) {
    case ORV_DEPTH_8U:
        return bytes;
    case ORV_DEPTH_8S:
        return signedBytes;
    case ORV_DEPTH_16U:
        return words;
    case ORV_DEPTH_16S:
        return signedWords;
    default:
        return longWords;
    }
}

} // namespace

KrnStatus withMarginsAsFloats(const Work &work, std::int32_t depth, std::uint8_t *&scratch, ConstRaster &floats)
{
    const std::int32_t samplesPer = samplesPerPixel(work.layout);
    const ConstRaster whole = withMargins(work, samplesPer * sampleBytes(depth));
    floats = whole;
    if (depth == ORV_DEPTH_32F)
        return KRN_OK;
    const std::int64_t samples = paddedWidth(work) * samplesPer, rows = paddedHeight(work);
    const Raster converted = takeFloatRows(scratch, samples, rows);
    floats = converted;
    return conversionsOf(depth).toFloats(whole.data, whole.step, converted.data, converted.step,
                                         static_cast<std::int32_t>(samples), static_cast<std::int32_t>(rows));
}

std::int64_t withMarginsAsFloatsBytes(const Work &work, std::int32_t depth)
{
    return depth == ORV_DEPTH_32F
               ? 0
               : floatRowsBytes(paddedWidth(work) * samplesPerPixel(work.layout), paddedHeight(work));
}

KrnStatus fromFloats(ConstRaster floats, Layout layout, std::int32_t depth, Raster destination, Size size)
{
    constexpr std::int32_t toNearestEven = 1;
    if (depth == ORV_DEPTH_32F)
        return channelKernels(4).copy[layout](floats.data, floats.step, destination.data, destination.step, size.width,
                                              size.height);
    return conversionsOf(depth).fromFloats[layout](floats.data, floats.step, destination.data, destination.step,
                                                   size.width, size.height, toNearestEven);
}

} // namespace orv
