// The kernels that move samples of one width, whatever their type. The frames copy, gather, scatter and apply masks
// with them.
#pragma once

#include <cstdint>

#include "kernels.h"
#include "layout.h"

namespace orv {

struct ChannelKernels {
    LayoutKernels<CopyKernel> copy;
    LayoutKernels<CopyMaskedKernel> copyMasked;
    const Kernel<CopyMaskedKernel> &selectC1, &selectC3, &selectC4;
    LayoutKernels<MirrorKernel> mirror;
    const Kernel<MirrorInPlaceKernel> &mirrorInPlaceC1;
    const Kernel<CopyKernel> &copyC3AC4, &copyAC4C3;
    const Kernel<CopyKernel> &extractC3, &extractC4, &insertC3, &insertC4;
    const Kernel<FillKernel> &fillC1;
    const Kernel<FillPixelsKernel> &fillC3, &fillC4, &fillAC4;
};

// By the bytes of a sample: 1, 2 or 4.
const ChannelKernels &channelKernels(std::int32_t sampleBytes);

} // namespace orv
