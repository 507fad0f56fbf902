// Conversions around a call that computes in floats.
#include "float_samples.h"

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

std::int64_t samplesAcross(const PaddedSource &source, Layout layout)
{
    return source.wholeWidth() * samplesPerPixel(layout);
}

} // namespace

FloatRaster takeFloats(std::uint8_t *&work, Size samples)
{
    const FloatRaster floats = {{work, static_cast<std::int32_t>(FloatRaster::stepOf(samples.width))}, samples};
    work += FloatRaster::bytes(samples.width, samples.height);
    return floats;
}

FloatRaster wholeAsFloats(const PaddedSource &source, Layout layout, std::int32_t depth, std::uint8_t *&work)
{
    const Size samples = {static_cast<std::int32_t>(samplesAcross(source, layout)),
                          static_cast<std::int32_t>(source.wholeHeight())};
    const Raster whole = source.whole(samplesPerPixel(layout) * sampleBytes(depth));
    if (depth == ORV_DEPTH_32F)
        return {whole, samples};
    const FloatRaster floats = takeFloats(work, samples);
    conversionsOf(depth).toFloats(whole.data, whole.step, floats.raster.data, floats.raster.step, samples.width,
                                  samples.height);
    return floats;
}

std::int64_t wholeAsFloatsBytes(const PaddedSource &source, Layout layout, std::int32_t depth)
{
    return depth == ORV_DEPTH_32F ? 0 : FloatRaster::bytes(samplesAcross(source, layout), source.wholeHeight());
}

void fromFloats(const FloatRaster &floats, Layout layout, std::int32_t depth, const Raster &destination)
{
    constexpr std::int32_t toNearestEven = 1;
    const Raster &from = floats.raster;
    const Size size = {floats.size.width / samplesPerPixel(layout), floats.size.height};
    if (depth == ORV_DEPTH_32F)
        channelKernels(4).copy[layout](from.data, from.step, destination.data, destination.step, size.width,
                                       size.height);
    else
        conversionsOf(depth).fromFloats[layout](from.data, from.step, destination.data, destination.step, size.width,
                                                size.height, toNearestEven);
}

Raster firstComputed(const FloatRaster &whole, const PaddedSource &source, Layout layout)
{
    Raster first = whole.raster.fromRow(source.margins.top);
    first.data += std::ptrdiff_t{4} * source.margins.left * samplesPerPixel(layout);
    return first;
}

} // namespace orv
