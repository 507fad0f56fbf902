// The tables of float_conversions.h.
#include "float_conversions.h"

#include "channel_kernels.h"

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

KrnStatus toFloats(ConstRaster samples, std::int32_t depth, Raster floats, Size size)
{
    if (depth == ORV_DEPTH_32F)
        return krnCopy32sC1(samples.data, samples.step, floats.data, floats.step, size.width, size.height);
    return conversionsOf(depth).toFloats(samples.data, samples.step, floats.data, floats.step, size.width, size.height);
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
