// The loop that fills pixels.
#pragma once

#include <cstdint>

#include "area.h"
#include "channel_kernels.h"
#include "constant.h"

namespace orv {

// A value for all samples of one width. Sources, if there are any, are not read.
struct FillSamples {
    const ChannelKernels &kernels;
    std::int32_t value;

    void operator()(Layout layout, const Raster *, Raster out, Size size) const
    {
        if (layout == Layout::C1) {
            kernels.fillC1(value, out.data, out.step, size.width, size.height);
            return;
        }
        const FourValues values(value, &kernels == &channelKernels(1) ? 1 : &kernels == &channelKernels(2) ? 2 : 4);
        const Kernel<FillPixelsKernel> &fill = layout == Layout::C3   ? kernels.fillC3
                                               : layout == Layout::C4 ? kernels.fillC4
                                                                      : kernels.fillAC4;
        fill(values.bytes, out.data, out.step, size.width, size.height);
    }
};

} // namespace orv
