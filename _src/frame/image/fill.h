// Filling of pixels with one value for all samples.
#pragma once

#include <cstdint>

#include "area.h"
#include "channel_kernels.h"
#include "constant.h"
#include "loop.h"

namespace orv {

// Fills with the low bits of the value.
inline KrnStatus fill(std::int32_t sampleBytes, std::int32_t value, Layout layout, Raster out, Size size)
{
    const ChannelKernels &kernels = channelKernels(sampleBytes);
    if (layout == Layout::C1)
        return kernels.fillC1(value, out.data, out.step, size.width, size.height);
    const FourValues values(value, sampleBytes);
    const Kernel<FillPixelsKernel> &pixels = layout == Layout::C3   ? kernels.fillC3
                                             : layout == Layout::C4 ? kernels.fillC4
                                                                    : kernels.fillAC4;
    return pixels(values.bytes, out.data, out.step, size.width, size.height);
}

// A loop that fills. It reads no source.
inline auto makeFill(std::int32_t sampleBytes, std::int32_t value)
{
    return [=](const Work &work) { return fill(sampleBytes, value, work.layout, work.destination, work.size); };
}

} // namespace orv
